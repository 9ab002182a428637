#include "testrun/ManualMode.h"

#include <algorithm>
#include <utility>

#include "documents/EquipRecord.h"
#include "documents/TestDefinition.h"
#include "instruments/Instruments.h"
#include "platform/FlagRaised.h"
#include "run/RunDisplay.h"
#include "run/RunGuard.h"
#include "shell/Shell.h"
#include "testrun/LevelTargets.h"
#include "testrun/ManualControls.h"
#include "testrun/RunData.h"

namespace hylden {

ManualMode::ManualMode(Shell& shell, Instruments& instruments, const TestDefinition& test, const EquipRecord& equipment,
                       RunDisplay& display, ManualControls& controls, RunGuard& guard, RunData& data,
                       const std::vector<ReachedStep>& reached)
    : shell_(shell),
      instruments_(instruments),
      test_(test),
      equipment_(equipment),
      display_(display),
      controls_(controls),
      guard_(guard),
      data_(data),
      reached_(reached) {}

bool ManualMode::Halted() const {
  return shell_.delay.HaltRequested();
}

std::optional<int> ManualMode::Run(int step) {
  try {
    Open(step);
    while (state_ == State::Open && !Halted()) shell_.delay.Yield();
  } catch (...) {
    state_ = State::Left;  // the form stays until the run has ended, and may not bring RF back meanwhile
    throw;
  }
  const bool halted = Halted();
  if (!halted) shell_.log.LogFile("Manual mode exited, test continued");
  Close();
  if (halted) return std::nullopt;
  guard_.GoOn();
  return step_;
}

void ManualMode::Open(int step) {
  state_ = State::Open;
  step_ = step;
  levelOffset_ = exposedOffset_ = 0;
  standing_ = {StepNow().Freq, 0};
  const bool modulates = test_.ModType != Modulation::None;
  modulation_ = modulates ? Modulated::On : Modulated::Off;
  ShowStep();
  controls_.OpenManual({.Step = step,
                        .HighestStep = static_cast<int>(reached_.size()),
                        .Freq = StepNow().Freq,
                        .ModEnabled = modulates,
                        .ModOn = modulates,
                        .RfOn = instruments_.sigGen.RfIsOn()});
  display_.Status("Manual Mode");
  shell_.log.LogFile("Manual mode entered");
}

void ManualMode::Close() {
  if (std::exchange(state_, State::Closed) != State::Closed) controls_.CloseManual();
}

float ManualMode::MostRise() const {
  return static_cast<float>(MaximumIncrement(test_));
}

bool ManualMode::Handle(const std::function<Done()>& change) {
  if (state_ != State::Open || busy_ || Halted()) return false;
  const FlagRaised busy(busy_);
  bool applied = false;
  try {
    guard_.GoOn();
    const Done changed = change();
    if (!changed) SwitchRfOff();
    applied = guard_.Ok(changed);
    controls_.ManualRf(instruments_.sigGen.RfIsOn());
  } catch (const std::exception& error) {
    Trap(error);
  }
  return applied;
}

/// The operator's events come in from the windows, so an exception ends here: RF off, and the run is halted.
void ManualMode::Trap(const std::exception& error) {
  shell_.delay.RequestHalt();
  shell_.ReportError(error, "frmRunTest.RunCDI");
}

/// RF that can't be switched off here is left to the end of the run, which takes the instruments down.
void ManualMode::SwitchRfOff() {
  guard_.RfOff();
  if (instruments_.sigGen.RfIsOn()) shell_.delay.RequestHalt();
}

Done ManualMode::SetLevel() {
  if (Halted()) return {};
  const double frequency = StepNow().Freq;
  const float level = StepNow().SigGenLevel + levelOffset_ + ConstPeakOffset(test_);
  if (Done set = instruments_.sigGen.SetFreqLevel(frequency, level); !set) return set;
  standing_ = {frequency, levelOffset_};
  if (instruments_.sigGen.RfIsOn()) exposedOffset_ = levelOffset_;
  display_.Show(Readout::SigGenLevel, level);
  display_.Show(Readout::TestLevel, StepNow().TestLevel + levelOffset_);
  return {};
}

/// Also where the generator refuses the step: it is the one that RF comes back with.
void ManualMode::ShowStep() {
  display_.Show(Readout::Frequency, StepNow().Freq);
  controls_.ManualStep(step_, StepNow().Row, StepNow().Freq);
}

bool ManualMode::manStepNumChange(int step) {
  return Handle([&] { return GoToStep(step); });
}

Done ManualMode::GoToStep(int step) {
  if (step < 1 || step > static_cast<int>(reached_.size())) return {};
  step_ = step;
  ShowStep();
  if (!equipment_.HasIfiAmplifier()) return SetLevel();
  const Done changedOver = instruments_.ifiAmp.IfiSetBand(StepNow().Freq);
  if (!changedOver) shell_.delay.RequestHalt();
  return changedOver ? SetLevel() : changedOver;
}

bool ManualMode::manLevOffsetChange(float offsetDb) {
  return Handle([&] {
    const float before = std::exchange(levelOffset_, offsetDb);
    Done taken = SetLevel();
    if (!taken) levelOffset_ = before;
    return taken;
  });
}

void ManualMode::manRfOn(bool on) {
  if (!on && busy_)
    SwitchRfOff();  // never kept waiting
  else
    Handle([&] { return SwitchRf(on); });
  controls_.ManualRf(instruments_.sigGen.RfIsOn());  // also where the switch was taken no notice of
}

Done ManualMode::SwitchRf(bool on) {
  if (!on) return instruments_.sigGen.SilenceRf() ? Done() : Because();
  // What was raised while RF was off comes by the increment, too.
  levelOffset_ = std::min(levelOffset_, exposedOffset_ + MostRise());
  // A generator without an RF-off command fell back to its minimum level: the level is asked for again.
  return SetLevel().and_then([&] { return instruments_.sigGen.RfOn(); }).map([&] { exposedOffset_ = levelOffset_; });
}

void ManualMode::manModOn(bool on) {
  Handle([&] { return SwitchModulation(on); });
  controls_.ManualMod(modulation_ != Modulated::Off);
}

Done ManualMode::SwitchModulation(bool on) {
  SigGen& sigGen = instruments_.sigGen;
  if (!on) {
    if (modulation_ == Modulated::On) modulation_ = Modulated::Unknown;
    return sigGen.ModOff().map([&] { modulation_ = Modulated::Off; });
  }
  const bool constantPeak = test_.ModType == Modulation::Am && test_.ConstPeak;
  const Done levelled = constantPeak ? SetLevel() : Done();
  return levelled.and_then([&] { return sigGen.ModOn(test_.ModType); }).map([&] { modulation_ = Modulated::On; });
}

void ManualMode::manThresholdClick(double frequencyMHz, float offsetDb) {
  if (state_ != State::Open || busy_) return;
  try {
    const int row = data_.AddThreshold(frequencyMHz, double{offsetDb});
    display_.RowChanged(row);
    const auto comment = shell_.dialogs.InputBox("Enter comments", "Threshold Comment");
    if (!comment) return;
    data_.SetComment(row, *comment);
    display_.RowChanged(row);
  } catch (const std::exception& error) {
    Trap(error);
  }
}

void ManualMode::manExitClick() {
  if (state_ == State::Open) state_ = State::Left;
}

}  // namespace hylden
