#include "bench/BenchTexts.h"

#include <charconv>
#include <cmath>

#include "text/Numbers.h"
#include "text/Pattern.h"

namespace hylden {
namespace {

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
