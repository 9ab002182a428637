#include "testrun/LevelRamp.h"

#include <algorithm>

#include "documents/TestDefinition.h"
#include "text/Pattern.h"

namespace hylden {

namespace {
constexpr const char* kLowGainText =
    "Warning, amplifier gain is more than 3dB lower\r\nthan it should be.  Check setup.";
}  // namespace

std::optional<ReachedLevel> LevelRamp::From(double offset) {
  drive_ = {offset, MaximumIncrement(test_)};
  reached_ = {};
  const bool byPower = test_.LevelsByPower();
  const bool levelled = byPower ? ByPower() : LimitsCurrent(test_) ? ByGeneratorWithLimit() : ByGenerator();
  if (!levelled) return std::nullopt;
  StepMarks& marks = reached_.Applied.Marks;
  if (!byPower && drive_.Offset <= 0) Mark(marks.SigGenAtCalibration, Readout::SigGenLevel);
  reached_.KeptOffset += drive_.Offset;
  reached_.Applied.SigGenLevel = Level();
  reached_.Applied.TestLevel = targets_.TestLevel;
  return reached_;
}

bool LevelRamp::ByGenerator() {
  while (drive_.Offset > 0) {
    drive_.Offset -= std::min(drive_.MaximumIncrement, drive_.Offset);
    if (!station_.Raise(Level())) return false;
  }
  station_.StartDwell();
  return !test_.MonitorProbe || ReadProbe();
}

bool LevelRamp::ByGeneratorWithLimit() {
  if (!ReadProbe()) return false;
  station_.StartDwell();
  while (drive_.Offset > 0 && Induced() < targets_.InducedLimit) {
    const double step = RampStep(targets_.InducedLimit - Induced(), drive_.MaximumIncrement);
    drive_.Offset = std::max(0.0, drive_.Offset - step);
    if (!station_.Raise(Level())) return false;
    station_.StartDwell();
    if (!ReadProbe()) return false;
  }
  if (Induced() > targets_.InducedLimit) Mark(reached_.Applied.Marks.InducedAboveLimit, Readout::InducedLevel);
  return true;
}

bool LevelRamp::ByPower() {
  station_.StartDwell();
  if (!ReadPower()) return false;
  while (!(power_ > targets_.PowerTarget)) {
    const std::optional<double> step = PowerStep();
    if (!step) return false;
    if (*step == 0) break;
    if (!RaisePower(*step)) return false;
  }
  return ConcludePower();
}

std::optional<double> LevelRamp::PowerStep() {
  StepMarks& marks = reached_.Applied.Marks;
  double headroom = targets_.PowerTarget - power_;
  if (LimitsCurrent(test_)) {
    if (!ReadProbe()) return std::nullopt;
    if (Induced() > targets_.InducedLimit) return Hold(marks.InducedAboveLimit, Readout::InducedLevel);
    headroom = std::min(headroom, targets_.InducedLimit - Induced());
  }
  const double step = RampStep(headroom, drive_.MaximumIncrement);
  if (!test_.LevelsBy(LevelingMethod::NetPower)) return step;
  const double cap = targets_.ForwardReference - *reached_.Applied.FwdPwr + kForwardCapDb;
  return cap < kLeastCapHeadroomDb ? Hold(marks.ForwardCapHeld, Readout::ForwardPower) : std::min(step, cap);
}

bool LevelRamp::RaisePower(double stepDb) {
  drive_ = Raise(drive_, stepDb);
  if (!MayDrive() || !station_.Raise(Level())) return false;
  station_.StartDwell();
  return ReadPower() && GainSuffices();
}

/// By forward power alone the drive tells of missing gain, before the generator is taken there.
bool LevelRamp::MayDrive() {
  if (!test_.LevelsBy(LevelingMethod::ForwardPower) || !(drive_.Offset < -kMostDriveDb)) return true;
  return station_.FailAloud(std::string(kLowGainText) + "\r\nCal SigGen = " + Format(targets_.SigGenCal, "#0.0") +
                            "dBm and Cal FwdPwr = " + Format(targets_.PowerTarget, "#0.0") + "dBm");
}

bool LevelRamp::GainSuffices() {
  if (!test_.LevelsBy(LevelingMethod::NetPower) || !(drive_.Offset < 0)) return true;
  const double deficit = GainDeficit(targets_.ForwardReference, *reached_.Applied.FwdPwr, drive_.Offset);
  return deficit <= kMostGainDeficitDb || station_.Fail(kLowGainText);
}

bool LevelRamp::ConcludePower() {
  StepMarks& marks = reached_.Applied.Marks;
  if (test_.MonitorProbe && !ReadProbe()) return false;
  if (LimitsCurrent(test_) && Induced() > targets_.InducedLimit) Mark(marks.InducedAboveLimit, Readout::InducedLevel);
  const double overshoot = power_ - targets_.PowerTarget;
  if (!(overshoot > 0)) return true;
  Mark(marks.PowerAboveTarget, Readout::ForwardPower);
  reached_.KeptOffset = overshoot;  // the next step starts correspondingly lower
  return true;
}

bool LevelRamp::ReadPower() {
  reached_.Applied.FwdPwr = station_.ReadForward();
  if (!reached_.Applied.FwdPwr) return false;
  const auto power = test_.LevelsBy(LevelingMethod::NetPower) ? ReadNet() : reached_.Applied.FwdPwr;
  power_ = power.value_or(0);
  return power.has_value();
}

std::optional<double> LevelRamp::ReadNet() {
  StepResult& applied = reached_.Applied;
  applied.RevPwr = station_.ReadReverse();
  if (!applied.RevPwr) return std::nullopt;
  const auto net = NetPower(*applied.FwdPwr, *applied.RevPwr, targets_.ForwardReference);
  if (!net) station_.Fail("Error, reverse power reading greater than forward power,\r\ncheck setup carefully.");
  return net;
}

bool LevelRamp::ReadProbe() {
  reached_.Applied.Induced = station_.ReadProbe();
  return reached_.Applied.Induced.has_value();
}

void LevelRamp::Mark(bool& mark, Readout by) {
  mark = true;
  station_.Held(by);
}

double LevelRamp::Hold(bool& mark, Readout by) {
  station_.StartDwell();
  Mark(mark, by);
  return 0;
}

}  // namespace hylden
