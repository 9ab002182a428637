#pragma once

#include <optional>

#include "measure/Conversions.h"
#include "shell/Failure.h"

namespace hylden {

class clsCalFile;
struct TestDefinition;

/// What the power targets lie above the calibrated powers, in dB. While the level is reached with AM on, the power
/// meter sees the mean power, 1 + m^2/2 times the carrier's; an adjusted test level moves the targets with it.
double PowerCorrection(const TestDefinition& test);

/// Carrier change in dB (0 or below) that keeps the peak of the modulated signal at the calibrated level:
/// -20 log10(1 + m); 0 unless the test holds the peak constant.
float ConstPeakOffset(const TestDefinition& test);

/// Largest raise of one ramp step in dB: the test's increment, or 6 dB where it has none.
double MaximumIncrement(const TestDefinition& test);

/// Whether the induced current holds the level.
bool LimitsCurrent(const TestDefinition& test);

/// What a calibration record says at one frequency; -999 where it has no value or was not asked.
struct CalibratedLevels {
  float SigGenLevel = -999;  ///< dBm
  float TestLevel = -999;    ///< dBuV
  float FwdPwr = -999;       ///< dBm
  float NetPwr = -999;       ///< dBm
};
/// Looks up what the test's levelling method needs.
CalibratedLevels LookUpLevels(clsCalFile& calibration, const TestDefinition& test, double frequencyMHz);

/// The levels that a step aims at. Offsets below are dB under SigGenCal.
struct StepTargets {
  float SigGenCal = 0;           ///< the calibrated generator level, adjusted, dBm
  float TestLevel = 0;           ///< dBuV at the coupling device
  double PowerTarget = 0;        ///< forward or net power, dBm, by levelling method
  double ForwardReference = 0;   ///< calibrated forward power, dBm
  double InducedLimit = 0;       ///< highest induced current, dBuA; kNoValue where none can be told
  float ConstantPeakOffset = 0;  ///< dB
};
/// It fails where the record lacks what the method needs.
Result<StepTargets> TargetsFor(const TestDefinition& test, const CalibratedLevels& levels);

/// Highest induced current in dBuA: what the test level drives through the circuit impedance, plus the margin. Nothing
/// for an impedance that is not above 0 or a missing test level.
std::optional<double> InducedCurrentLimit(const TestDefinition& test, float calibratedTestLevelDbuv);

/// Whether the generator can go as low as the calibrated level.
Done GeneratorGoesDownTo(float sigGenCalDbm, float generatorMinimumDbm);

/// The last completed step: its frequency and the offset that it ended with. A frequency of 0: there is none.
struct PreviousStep {
  double Freq = 0;
  double Offset = 0;
};
/// Offset at which a step begins. The first step starts far below, since nothing is known of the set-up yet; later
/// ones below where the step before ended, where power holds the level by 20 dB per decade of the frequency change
/// more. No step begins above its calibrated level: gain that was missing before may be back.
double StartingOffset(const TestDefinition& test, const PreviousStep& previous, double frequencyMHz);

/// The next raise of a ramp that aims at a reading: 0.1 dB past the headroom, at most the increment; a raise below
/// 0.1 dB, finer than generators set, becomes 0.2 dB.
double RampStep(double headroomDb, double maximumIncrementDb);

/// How far above the calibrated level the generator may go before the amplifier is suspected, dB.
inline constexpr double kMostDriveDb = 3;
/// Gain that may be missing in a net power ramp, dB.
inline constexpr double kMostGainDeficitDb = 3.5;
/// What the forward power may exceed its calibrated value by in a net power ramp, dB.
inline constexpr double kForwardCapDb = 2;
/// Headroom below which a capped forward power counts as held.
inline constexpr double kLeastCapHeadroomDb = 0.1;

/// Where a power ramp stands: offset and largest increment, dB.
struct Drive {
  double Offset = 0;
  double MaximumIncrement = 6;
};
/// The drive after a raise. One that would take the generator more than 3 dB above its calibrated level goes there in
/// steps of at most 1 dB instead, first to the calibrated level.
Drive Raise(Drive drive, double stepDb);

/// Forward power from which on the reverse power is judged, dB below the calibrated forward power. Further down both
/// sensors may show no more than their own noise.
inline constexpr double kReverseJudgedDb = 20;
/// What goes into the load, dBm, of a forward and a reverse power. A reverse power that is not below the forward power
/// counts as none far below the calibrated forward power; otherwise nothing: the sensors can't be right.
std::optional<double> NetPower(double forwardDbm, double reverseDbm, double forwardReferenceDbm);

/// What the amplifier's gain is short of its calibration, dB: the forward power still missing plus the extra drive.
double GainDeficit(double forwardReferenceDbm, double forwardDbm, double offsetDb);

}  // namespace hylden
