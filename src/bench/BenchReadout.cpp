#include "bench/BenchReadout.h"

namespace hylden {
namespace {

using Conversions::MeterUnits;
using Conversions::PowerUnits;

const char* UnitName(MeterUnits units) {
  switch (units) {
    case MeterUnits::Volts:
      return "V";
    case MeterUnits::Dbuv:
      return "dBuV";
    case MeterUnits::Millivolts:
      return "mV";
    case MeterUnits::Dbmv:
      return "dBmV";
    case MeterUnits::Dbm:
      return "dBm";
  }
  return "?";
}

const char* UnitName(PowerUnits units) {
  switch (units) {
    case PowerUnits::Watts:
      return "W";
    case PowerUnits::Dbm:
      return "dBm";
    case PowerUnits::Dbuv:
      return "dBuV";
    case PowerUnits::Millivolts:
      return "mV";
    case PowerUnits::Volts:
      return "V";
    case PowerUnits::Dbmv:
      return "dBmV";
  }
  return "?";
}

template <class Units>
std::optional<BenchReading> Reading(std::optional<double> value, std::int32_t code) {
  if (!value) return std::nullopt;
  const auto units = static_cast<Units>(code);
  return BenchReading{*value, UnitName(units), Conversions::IsLinear(units)};
}

InstrumentReadout InstrumentAt(const Bench& bench, int address, const std::string& name) {
  return {true, bench.Bus().Listens(address), name, address};
}

void ReadMeter(const Bench& bench, BenchReadout& readout) {
  const VirtualMeter* const meter = bench.Meter();
  if (!meter) return;
  const MeterDefinition& definition = *bench.Equipment().Meter;
  readout.Meter = InstrumentAt(bench, bench.Equipment().MeterAddress, definition.InstrumentName);
  readout.MeterTunable = meter->IsTunable();
  readout.MeterTunedMHz = meter->TunedMHz();
  readout.MeterRangeTopDbuv = meter->RangeTopDbuv();
  readout.MeterReading = Reading<MeterUnits>(meter->LastReading(), definition.Units);
}

void ReadPowerMeter(const Bench& bench, BenchReadout& readout) {
  const VirtualPowerMeter* const meter = bench.PowerMeter();
  if (!meter) return;
  const PowerMeterDefinition& definition = *bench.Equipment().PowerMeter;
  readout.PowerMeter = InstrumentAt(bench, bench.Equipment().PowerMeterAddress, definition.InstrumentName);
  readout.Sensors = bench.Equipment().Sensors;
  for (int channel = 1; channel <= 2; ++channel)
    readout.PowerReadings[static_cast<std::size_t>(channel - 1)] =
        Reading<PowerUnits>(meter->LastReading(channel), definition.Units);
}

ProductReadout ReadProduct(const Bench& bench) {
  const BenchState& state = bench.State();
  ProductReadout product;
  product.TestLevelDbuv = state.TestLevelDbuv;
  product.PeakTestLevelDbuv = state.PeakTestLevelDbuv;
  product.ForwardDbm = state.ForwardDbm;
  product.ReverseDbm = state.ReverseDbm;
  product.LastDisturbance = bench.LastDisturbance();
  if (!state.Cabling.ProductConnected()) {
    product.State = ProductState::NotConnected;
    return product;
  }
  product.InducedDbua = state.InducedDbua;
  if (state.Generator.FreqMHz > 0)
    product.ThresholdDbuv = bench.Path().At(state.Generator.FreqMHz, state.Cabling).DisturbedDbuv;
  if (IsMissing(state.PeakTestLevelDbuv)) return product;
  product.State = state.ProductDisturbed ? ProductState::Disturbed : ProductState::Passes;
  if (!IsMissing(product.ThresholdDbuv)) product.MarginDb = product.ThresholdDbuv - state.PeakTestLevelDbuv;
  return product;
}

}  // namespace

BenchReadout ReadBench(const Bench& bench) {
  const BenchEquipment& equipment = bench.Equipment();
  const BenchState& state = bench.State();
  BenchReadout readout;
  if (equipment.SigGen)
    readout.Generator = InstrumentAt(bench, equipment.SigGenAddress, equipment.SigGen->InstrumentName);
  readout.Output = state.Generator;
  ReadMeter(bench, readout);
  ReadPowerMeter(bench, readout);
  if (equipment.IfiAmplifier) {
    readout.IfiLow = InstrumentAt(bench, kIfiLowAddress, "IFI low band");
    readout.IfiHigh = InstrumentAt(bench, kIfiHighAddress, "IFI high band");
  }
  readout.Amplifier = state.Cabling.Amplifier;
  readout.Protection = state.Cabling.Protection;
  readout.Product = ReadProduct(bench);
  readout.Cabling = state.Cabling.Meter;
  return readout;
}

}  // namespace hylden
