#pragma once

#include <cstdint>

#include "bench/BenchConfig.h"
#include "measure/Conversions.h"

/// The physics between the generator's output and the meters: pure functions, dB in and dB out, 50 ohm unless said.
namespace hylden {

enum class BenchModulation : int { None, Am, Fm, Pulse };

/// The virtual generator's output.
struct GeneratorState {
  bool RfOn = false;
  double FreqMHz = 0;
  double LevelDbm = 0;  ///< of the carrier
  /// In force at this moment; the settings below may be older than it.
  BenchModulation Modulation = BenchModulation::None;
  double AmDepthPercent = 0, AmFreqKHz = 0;
  double FmDeviationKHz = 0, FmFreqKHz = 0;
  double PulseFreqKHz = 0, PulseWidthMs = 0;

  bool operator==(const GeneratorState&) const = default;
};

/// One signal looked at in three ways: its carrier (within a pulse), the peak of its envelope, its average power. Each
/// as the level of the unmodulated signal that would read the same.
struct Signal {
  double Carrier = kNoValue, Peak = kNoValue, Average = kNoValue;
  bool Present() const { return !IsMissing(Carrier); }
};

/// The signal behind a linear two-port; an absent one stays absent.
Signal Raised(const Signal& signal, double db);

/// Two powers that add, dBm.
double PowerSum(double firstDbm, double secondDbm);

/// Output of an amplifier whose linear output would be linearDbm. The voltage follows v / (1 + (v / vsat)^k)^(1/k),
/// with k chosen so that 1 dB is lost where the output is 3 dB below saturation.
double Compressed(double linearDbm, double saturationDbm);

/// The modulated drive behind the amplifier. AM of depth m swings the voltage between 1 - m and 1 + m and raises the
/// average power by 1 + m²/2; where the peaks run into saturation they, and so carrier and average, give way. A pulse
/// has its carrier for width times frequency of the time.
Signal Amplified(const GeneratorState& drive, double gainDb, double saturationDbm);

/// What comes back to the directional coupler, dB below the forward power. A coupling device of source impedance Zs is
/// a series resistor of Zs - 50 ohm before the load, so that the 50-ohm line ends in Zs - 50 + load; the pad is passed
/// twice.
double ReturnLossDb(double loadOhm, double sourceOhm, double padDb);

/// Current that an open-circuit test voltage drives through the product and the coupling device's source impedance,
/// dBuA.
double InducedCurrent(double testLevelDbuv, double sourceOhm, double productOhm);

/// Which amplifier carries the signal. With an IFI pair of which no band is selected it is None: only leakage passes.
enum class Amplifier : int { Generic, IfiLow, IfiHigh, None };

/// What is switched and plugged.
struct Cabling {
  hylden::Amplifier Amplifier = hylden::Amplifier::Generic;
  MeterAt Meter = MeterAt::Port;
  bool Protection = false;  ///< the amplifier protects itself: 20 dB less gain

  /// With the meter at the port the adapter stands in the product's place.
  bool ProductConnected() const { return Meter != MeterAt::Port; }
  bool operator==(const Cabling&) const = default;
};

/// Threshold where no product is connected.
inline constexpr double kNeverDisturbed = 1e9;

/// Everything about the path that depends on frequency and cabling only.
struct PathFactors {
  bool Driven = true;  ///< the generator feeds the amplifier
  double GainDb = 0, SaturationDbm = 0;
  double ForwardPortDb = 0, ReversePortDb = 0;  ///< coupling
  double ReturnLossDb = 0, DirectivityDb = 0;
  double TestLevelDb = 0;  ///< forward power in dBm to test level in dBuV
  double CurrentDb = 0;    ///< test level in dBuV to induced current in dBuA
  double MeterDb = 0;      ///< what the meter is connected to (test level, induced current, or generator) to dBuV
  double DisturbedDbuv = kNeverDisturbed;  ///< the product's threshold
  MeterAt Meter = MeterAt::Port;
};

/// Levels along the path; absent without RF.
struct PathLevels {
  Signal ForwardDbm;              ///< at the directional coupler
  Signal TestLevelDbuv;           ///< open-circuit level at the coupling device, comparable with the calibrated level
  double ReverseDbm = kNoValue;   ///< average
  double InducedDbua = kNoValue;  ///< carrier
  double ForwardPortDbm = kNoValue, ReversePortDbm = kNoValue;  ///< at the sensors, average
  Signal MeterDbuv;                                             ///< at the meter's input
};

/// What a level calibration would find at one frequency without noise.
struct CalibrationReading {
  double MeterDbuv = 0, TestLevelDbuv = 0, ForwardDbm = 0, ReverseDbm = 0;
};

/// The tables of the RF path.
class RfPath {
 public:
  /// The configuration must outlive the path.
  explicit RfPath(const BenchConfig& config) : config_(config) {}

  PathFactors At(double freqMHz, const Cabling& cabling) const;
  /// The calibration of one point: the unmodulated generator, the meter at the calibration port.
  CalibrationReading CalibrationPort(double freqMHz, double generatorDbm,
                                     Amplifier amplifier = Amplifier::Generic) const;

 private:
  double GainDb(double freqMHz, Amplifier amplifier) const;
  double SaturationDbm(Amplifier amplifier) const;
  double MeterDb(double freqMHz, MeterAt place) const;

  const BenchConfig& config_;
};

PathLevels LevelsOf(const PathFactors& factors, const GeneratorState& generator);

}  // namespace hylden
