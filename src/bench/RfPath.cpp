#include "bench/RfPath.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace hylden {
namespace {

constexpr double kDbuvPerDbm = 106.98970004336019;  // 0 dBm in 50 ohm
constexpr double kLineOhm = 50;
constexpr double kKnee = 3.32;
constexpr double kProtectionDb = 20;
constexpr double kNoSaturation = 200;
constexpr double kBestReturnLossDb = 40;

double VoltageDb(double ratio) {
  return 20 * std::log10(ratio);
}

/// The envelope of AM, sampled at the angles 0, 45 ... 180 degrees of the modulating tone: enough for its mean and its
/// mean square to be exact while the amplifier is linear.
Signal AmplifiedAm(double linearDbm, double depth, double saturationDbm) {
  constexpr std::array<double, 5> kCosine = {1, 0.70710678118654752, 0, -0.70710678118654752, -1};
  constexpr std::array<double, 5> kWeight = {0.125, 0.25, 0.25, 0.25, 0.125};
  double mean = 0, meanSquare = 0, peak = 0;
  for (std::size_t i = 0; i < kCosine.size(); ++i) {
    const double swing = 1 + depth * kCosine[i];
    if (swing < 1e-9) continue;
    const double voltage = std::pow(10, (Compressed(linearDbm + VoltageDb(swing), saturationDbm) - linearDbm) / 20);
    mean += kWeight[i] * voltage;
    meanSquare += kWeight[i] * voltage * voltage;
    peak = std::max(peak, voltage);
  }
  return {linearDbm + VoltageDb(mean), linearDbm + VoltageDb(peak), linearDbm + VoltageDb(meanSquare) / 2};
}

}  // namespace

Signal Raised(const Signal& signal, double db) {
  if (!signal.Present()) return signal;
  return {signal.Carrier + db, signal.Peak + db, signal.Average + db};
}

double PowerSum(double firstDbm, double secondDbm) {
  const double higher = std::max(firstDbm, secondDbm), lower = std::min(firstDbm, secondDbm);
  return higher + 10 * std::log10(1 + std::pow(10, (lower - higher) / 10));
}

double Compressed(double linearDbm, double saturationDbm) {
  const double overDb = linearDbm - saturationDbm;
  if (overDb < -60) return linearDbm;
  return linearDbm - 20 / kKnee * std::log10(1 + std::pow(10, kKnee * overDb / 20));
}

Signal Amplified(const GeneratorState& drive, double gainDb, double saturationDbm) {
  const double linear = drive.LevelDbm + gainDb;
  if (drive.Modulation == BenchModulation::Am && drive.AmDepthPercent > 0)
    return AmplifiedAm(linear, drive.AmDepthPercent / 100, saturationDbm);
  const double level = Compressed(linear, saturationDbm);
  Signal signal{level, level, level};
  if (drive.Modulation == BenchModulation::Pulse) {
    const double duty = std::clamp(drive.PulseWidthMs * drive.PulseFreqKHz, 1e-6, 1.0);
    signal.Average += 10 * std::log10(duty);
  }
  return signal;
}

double ReturnLossDb(double loadOhm, double sourceOhm, double padDb) {
  const double end = sourceOhm - kLineOhm + loadOhm;
  const double reflection = std::abs(end - kLineOhm) / (end + kLineOhm);
  const double bare = reflection > 0 ? -VoltageDb(reflection) : kBestReturnLossDb;
  return std::min(bare + 2 * padDb, kBestReturnLossDb);
}

double InducedCurrent(double testLevelDbuv, double sourceOhm, double productOhm) {
  return testLevelDbuv - VoltageDb(sourceOhm + productOhm);
}

double RfPath::GainDb(double freqMHz, Amplifier amplifier) const {
  switch (amplifier) {
    case Amplifier::Generic:
      return config_.AmplifierGain.At(freqMHz);
    case Amplifier::IfiLow:
      return config_.IfiLowGain.At(freqMHz);
    case Amplifier::IfiHigh:
      return config_.IfiHighGain.At(freqMHz);
    case Amplifier::None:
      break;
  }
  return -config_.IfiLeakageDb;
}

double RfPath::SaturationDbm(Amplifier amplifier) const {
  switch (amplifier) {
    case Amplifier::Generic:
      return config_.SaturationDbm;
    case Amplifier::IfiLow:
      return config_.IfiLowSaturationDbm;
    case Amplifier::IfiHigh:
      return config_.IfiHighSaturationDbm;
    case Amplifier::None:
      break;
  }
  return kNoSaturation;
}

double RfPath::MeterDb(double freqMHz, MeterAt place) const {
  switch (place) {
    case MeterAt::Port:
      return -config_.CouplingFactorDb - config_.Cable.At(freqMHz);
    case MeterAt::Probe:
      return -config_.Probe.At(freqMHz) - config_.Cable.At(freqMHz);
    case MeterAt::Generator:
      return kDbuvPerDbm;
    case MeterAt::Cable:
      return kDbuvPerDbm - config_.CableUnderTest.At(freqMHz);
  }
  return 0;
}

PathFactors RfPath::At(double freqMHz, const Cabling& cabling) const {
  const bool product = cabling.ProductConnected();
  const double productOhm = product ? config_.ProductOhm.At(freqMHz) : config_.SourceOhm;
  const double padAndCouplerDb = config_.PadDb + config_.CouplerLossDb;
  PathFactors factors;
  factors.Driven = cabling.Meter == MeterAt::Port || cabling.Meter == MeterAt::Probe;
  factors.GainDb =
      GainDb(freqMHz, cabling.Amplifier) - config_.DriveCable.At(freqMHz) - (cabling.Protection ? kProtectionDb : 0);
  factors.SaturationDbm = SaturationDbm(cabling.Amplifier);
  factors.ForwardPortDb = config_.ForwardCoupling.At(freqMHz);
  factors.ReversePortDb = config_.ReverseCoupling.At(freqMHz);
  factors.ReturnLossDb = hylden::ReturnLossDb(productOhm, config_.SourceOhm, padAndCouplerDb);
  factors.DirectivityDb = config_.DirectivityDb;
  factors.TestLevelDb = kDbuvPerDbm - padAndCouplerDb - config_.CouplingLoss.At(freqMHz) + config_.CouplingFactorDb;
  factors.CurrentDb = InducedCurrent(0, config_.SourceOhm, productOhm);
  factors.MeterDb = MeterDb(freqMHz, cabling.Meter);
  if (product) factors.DisturbedDbuv = config_.Susceptibility.At(freqMHz);
  factors.Meter = cabling.Meter;
  return factors;
}

PathLevels LevelsOf(const PathFactors& factors, const GeneratorState& generator) {
  PathLevels levels;
  if (!generator.RfOn) return levels;
  if (!factors.Driven) {
    levels.MeterDbuv = Raised(Amplified(generator, 0, kNoSaturation), factors.MeterDb);
    return levels;
  }
  levels.ForwardDbm = Amplified(generator, factors.GainDb, factors.SaturationDbm);
  const double forward = levels.ForwardDbm.Average;
  levels.ReverseDbm = forward - factors.ReturnLossDb;
  levels.ForwardPortDbm = forward - factors.ForwardPortDb;
  // Directivity: a little of the forward power comes out of the reverse port, and is read as reverse power.
  levels.ReversePortDbm = PowerSum(levels.ReverseDbm, forward - factors.DirectivityDb) - factors.ReversePortDb;
  levels.TestLevelDbuv = Raised(levels.ForwardDbm, factors.TestLevelDb);
  levels.InducedDbua = levels.TestLevelDbuv.Carrier + factors.CurrentDb;
  const double toMeter = factors.Meter == MeterAt::Probe ? factors.CurrentDb + factors.MeterDb : factors.MeterDb;
  levels.MeterDbuv = Raised(levels.TestLevelDbuv, toMeter);
  return levels;
}

CalibrationReading RfPath::CalibrationPort(double freqMHz, double generatorDbm, Amplifier amplifier) const {
  const PathFactors factors = At(freqMHz, {amplifier, MeterAt::Port, config_.Protection});
  const PathLevels levels = LevelsOf(factors, {.RfOn = true, .FreqMHz = freqMHz, .LevelDbm = generatorDbm});
  return {levels.MeterDbuv.Carrier, levels.TestLevelDbuv.Carrier, levels.ForwardPortDbm + factors.ForwardPortDb,
          levels.ReversePortDbm + factors.ReversePortDb};
}

}  // namespace hylden
