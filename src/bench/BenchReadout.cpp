#include "bench/BenchReadout.h"

#include <charconv>
#include <cmath>

#include "text/Numbers.h"
#include "text/Pattern.h"

namespace hylden {
namespace {

using Conversions::MeterUnits;
using Conversions::PowerUnits;

/// The codes of meters and power meters differ; this is what they have in common.
struct Unit {
  const char* Name = "?";
  bool Linear = false;
};

Unit UnitOf(MeterUnits units) {
  switch (units) {
    case MeterUnits::Volts:
      return {"V", true};
    case MeterUnits::Dbuv:
      return {"dBuV"};
    case MeterUnits::Millivolts:
      return {"mV", true};
    case MeterUnits::Dbmv:
      return {"dBmV"};
    case MeterUnits::Dbm:
      return {"dBm"};
  }
  return {};
}

Unit UnitOf(PowerUnits units) {
  switch (units) {
    case PowerUnits::Watts:
      return {"W", true};
    case PowerUnits::Dbm:
      return {"dBm"};
    case PowerUnits::Dbuv:
      return {"dBuV"};
    case PowerUnits::Millivolts:
      return {"mV", true};
    case PowerUnits::Volts:
      return {"V", true};
    case PowerUnits::Dbmv:
      return {"dBmV"};
  }
  return {};
}

template <class Units>
std::optional<BenchReading> Reading(std::optional<double> value, std::int32_t units) {
  if (!value) return std::nullopt;
  const Unit unit = UnitOf(static_cast<Units>(units));
  return BenchReading{*value, unit.Name, unit.Linear};
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
  const bool connected = state.Cabling.Meter != MeterAt::Port;
  ProductReadout product;
  product.TestLevelDbuv = state.TestLevelDbuv;
  product.PeakTestLevelDbuv = state.PeakTestLevelDbuv;
  product.ForwardDbm = state.ForwardDbm;
  product.ReverseDbm = state.ReverseDbm;
  product.LastDisturbance = bench.LastDisturbance();
  if (!connected) {
    product.State = ProductState::NotConnected;
    return product;
  }
  product.InducedDbua = state.InducedDbua;
  if (bench.Equipment().SigGen)
    product.ThresholdDbuv = bench.Path().At(state.Generator.FreqMHz, state.Cabling).DisturbedDbuv;
  if (IsMissing(state.PeakTestLevelDbuv)) return product;
  product.MarginDb = product.ThresholdDbuv - state.PeakTestLevelDbuv;
  product.State = state.ProductDisturbed ? ProductState::Disturbed : ProductState::Passes;
  return product;
}

/// Four digits are what a front panel shows; a small value has its exponent.
std::string FourDigits(double value) {
  char buffer[64];
  return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 4).ptr};
}

std::string Setting(double value, const char* unit) {
  return ShortestText(value) + " " + unit;
}

std::string WithRate(const std::string& text, double freqKHz) {
  return freqKHz > 0 ? text + ", " + Setting(freqKHz, "kHz") : text;
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

std::string InstrumentText(const InstrumentReadout& instrument) {
  if (!instrument.Present) return "not on the bus";
  const std::string address = "Address " + std::to_string(instrument.Address);
  if (!instrument.Listens) return address + " does not answer: " + instrument.Name;
  return address + ": " + instrument.Name;
}

std::string ModulationText(const GeneratorState& output) {
  switch (output.Modulation) {
    case BenchModulation::Am:
      return WithRate("AM " + Setting(output.AmDepthPercent, "%"), output.AmFreqKHz);
    case BenchModulation::Fm:
      return WithRate("FM " + Setting(output.FmDeviationKHz, "kHz deviation"), output.FmFreqKHz);
    case BenchModulation::Pulse:
      return WithRate("Pulse " + Setting(output.PulseWidthMs, "ms"), output.PulseFreqKHz);
    case BenchModulation::None:
      break;
  }
  return "none";
}

std::string MeterSettingText(const BenchReadout& bench) {
  if (!bench.Meter.Present) return {};
  std::string text = !bench.MeterTunable       ? "broadband"
                     : bench.MeterTunedMHz > 0 ? Setting(bench.MeterTunedMHz, "MHz")
                                               : "not tuned yet";
  if (bench.MeterRangeTopDbuv) text += ", up to " + Format(*bench.MeterRangeTopDbuv, "0.0") + " dBuV";
  return text;
}

std::string ReadingText(const std::optional<BenchReading>& reading) {
  if (!reading) return "nothing yet";
  return (reading->Linear ? FourDigits(reading->Value) : Format(reading->Value, "0.00")) + " " + reading->Unit;
}

std::string SensorText(PowerSensors sensors, int channel) {
  switch (sensors) {
    case PowerSensors::Forward:
      return channel == 1 ? "forward" : "no sensor";
    case PowerSensors::ForwardReverse:
      return channel == 1 ? "forward" : "reverse";
    case PowerSensors::ByBand:
      return channel == 1 ? "low band" : "high band";
  }
  return {};
}

std::string AmplifierText(const BenchReadout& bench) {
  std::string text = bench.IfiLow.Present ? "IFI pair, no band selected" : "One for all bands, not on the bus";
  if (bench.Amplifier == Amplifier::IfiLow) text = InstrumentText(bench.IfiLow);
  if (bench.Amplifier == Amplifier::IfiHigh) text = InstrumentText(bench.IfiHigh);
  return bench.Protection ? "IN PROTECTION; " + text : text;
}

std::string ProductStateText(ProductState state) {
  switch (state) {
    case ProductState::NotConnected:
      return "No product";
    case ProductState::WithoutRf:
      return "Without RF";
    case ProductState::Passes:
      return "PASSES";
    case ProductState::Disturbed:
      return "DISTURBED";
  }
  return {};
}

std::string MarginText(const ProductReadout& product) {
  if (!product.MarginDb) return {};
  const std::string distance = Format(std::abs(*product.MarginDb), "0.0") + " dB ";
  return distance + (product.State == ProductState::Disturbed ? "above" : "below") + " the threshold";
}

std::string CablingText(MeterAt place) {
  switch (place) {
    case MeterAt::Port:
      return "Level calibration: adapter and meter stand in the product's place.";
    case MeterAt::Probe:
      return "Test: the product is connected, the probe is around its cable.";
    case MeterAt::Generator:
      return "Insertion loss, direct: the amplifier has no drive.";
    case MeterAt::Cable:
      return "Insertion loss, insert: the amplifier has no drive.";
  }
  return {};
}

}  // namespace hylden
