#include "testrun/ManualMode.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "measure/Conversions.h"
#include "platform/FlagRaised.h"
#include "shell/Shell.h"
#include "testrun/LevelTargets.h"
#include "testrun/TestModulation.h"
#include "text/Pattern.h"

namespace hylden {

namespace {

constexpr float kTenthMargin = 1e-3F;  ///< 2.3 is 2.2999999 as a single

bool InRange(const ManualScroll& scroll, int highestStep) {
  return scroll.Step >= 1 && scroll.Step <= highestStep && scroll.OffsetTenths >= kLowestOffsetTenths &&
         scroll.OffsetTenths <= kHighestOffsetTenths;
}

}  // namespace

ManualScroll MoveByKey(ManualScroll now, ArrowKey key, int highestStep) {
  ManualScroll moved = now;
  switch (key) {
    case ArrowKey::Right:
      ++moved.Step;
      break;
    case ArrowKey::Left:
      --moved.Step;
      break;
    case ArrowKey::Up:
      ++moved.OffsetTenths;
      break;
    case ArrowKey::Down:
      --moved.OffsetTenths;
      break;
  }
  return InRange(moved, highestStep) ? moved : now;
}

void ManualMode::Enter(int step, int highestStep, float constantPeakOffset) {
  returnStep_ = step;
  highestStep_ = highestStep;
  levelOffset_ = 0;
  constantPeakOffset_ = constantPeakOffset;
  standing_ = {FreqNow(), 0};
  exposedOffset_ = 0;
  modulationOn_ = run_.documents.testSetup.Definition.ModType != Modulation::None && !run_.modulationSilenced;
  active_ = true;
  ShowStep();
}

float ManualMode::MostRise() const {
  return static_cast<float>(MaximumIncrement(run_.documents.testSetup.Definition));
}

bool ManualMode::Handle(const std::function<Done()>& change) {
  if (!active_ || busy_ || run_.shell.delay.HaltRequested()) return false;
  const FlagRaised busy(busy_);
  bool applied = false;
  try {
    run_.guard.GoOn();
    const Done changed = change();
    if (!changed) SwitchRfOff();
    applied = run_.guard.Ok(changed);
    run_.manual.ManualRf(run_.instruments.sigGen.RfIsOn());
  } catch (const std::exception& error) {
    Trap(error);
  }
  return applied;
}

/// The operator's events come in from the windows, so an exception ends here: RF off, and the run is halted.
void ManualMode::Trap(const std::exception& error) {
  run_.shell.delay.RequestHalt();
  run_.shell.ReportError(error, "frmRunTest.RunCDI");
}

/// RF that can't be switched off here is left to the end of the run, which takes the instruments down.
void ManualMode::SwitchRfOff() {
  run_.guard.RfOff();
  if (run_.instruments.sigGen.RfIsOn()) run_.shell.delay.RequestHalt();
}

Done ManualMode::SetLevel() {
  if (run_.shell.delay.HaltRequested()) return {};
  const float level = StepNow().SigGenLevel + levelOffset_ + constantPeakOffset_;
  if (Done set = run_.instruments.sigGen.SetFreqLevel(FreqNow(), level); !set) return set;
  standing_ = {FreqNow(), levelOffset_};
  if (run_.instruments.sigGen.RfIsOn()) exposedOffset_ = levelOffset_;
  run_.display.Show(Readout::SigGenLevel, level);
  ShowLevel();
  return {};
}

/// Also where the generator refuses the step: it is the one that RF comes back with.
void ManualMode::ShowStep() {
  run_.display.Show(Readout::Frequency, FreqNow());
  run_.manual.ManualStep(returnStep_, StepNow().Row, FreqNow());
}

void ManualMode::ShowLevel() {
  run_.display.Show(Readout::TestLevel, StepNow().TestLevel + levelOffset_);
}

bool ManualMode::manStepNumChange(int step) {
  return Handle([&] { return GoToStep(step); });
}

Done ManualMode::GoToStep(int step) {
  const bool inRange = step >= 1 && step <= highestStep_ && step <= static_cast<int>(run_.inputs->Steps.size());
  if (!inRange || !run_.reached[static_cast<std::size_t>(step - 1)]) return {};
  returnStep_ = step;
  ShowStep();
  if (!run_.documents.equip.Record.HasIfiAmplifier()) return SetLevel();
  const Done changedOver = run_.instruments.ifiAmp.IfiSetBand(FreqNow());
  if (!changedOver) run_.shell.delay.RequestHalt();
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
  if (!on && busy_) {
    SwitchRfOff();  // never kept waiting
    return;
  }
  Handle([&] { return SwitchRf(on); });
}

Done ManualMode::SwitchRf(bool on) {
  if (!on) return run_.instruments.sigGen.SilenceRf() ? Done() : Because();
  // What was raised while RF was off comes by the increment, too.
  levelOffset_ = std::min(levelOffset_, exposedOffset_ + MostRise());
  // A generator without an RF-off command fell back to its minimum level: the level is asked for again.
  return SetLevel().and_then([&] { return run_.instruments.sigGen.RfOn(); }).map([&] {
    exposedOffset_ = levelOffset_;
  });
}

void ManualMode::manModOn(bool on) {
  Handle([&] { return SwitchModulation(on); });
  run_.manual.ManualMod(modulationOn_);
}

Done ManualMode::SwitchModulation(bool on) {
  SigGen& sigGen = run_.instruments.sigGen;
  const TestDefinition& test = run_.documents.testSetup.Definition;
  if (!on) {
    run_.modulationSilenced = true;
    return sigGen.ModOff().map([&] { modulationOn_ = false; });
  }
  const bool constantPeak = test.ModType == Modulation::Am && test.ConstPeak;
  const Done levelled = constantPeak ? SetLevel() : Done();
  return levelled.and_then([&] { return SwitchModulationOn(sigGen, test); }).map([&] {
    run_.modulationSilenced = false;
    modulationOn_ = true;
  });
}

void ManualMode::manThresholdClick(double frequencyMHz, float offsetDb) {
  if (!active_ || busy_) return;
  try {
    const int row = run_.data.AddThreshold(frequencyMHz, double{offsetDb});
    run_.display.RowChanged(row);
    const auto comment = run_.shell.dialogs.InputBox("Enter comments", "Threshold Comment");
    if (!comment) return;
    run_.data.SetComment(row, *comment);
    run_.display.RowChanged(row);
  } catch (const std::exception& error) {
    Trap(error);
  }
}

void ManualMode::manExitClick() {
  active_ = false;
}

void ManualPanel::Open(const ManualStart& start) {
  highestStep_ = start.HighestStep;
  scroll_ = {start.Step, static_cast<int>(start.LevelOffset * 10)};
  stepChanged_ = levelChanged_ = rising_ = false;
}

bool ManualPanel::MoveStep(int step) {
  const ManualScroll moved{step, scroll_.OffsetTenths};
  if (moved == scroll_ || !InRange(moved, highestStep_)) return false;
  scroll_ = moved;
  return stepChanged_ = true;
}

bool ManualPanel::MoveOffset(int tenths) {
  const ManualScroll moved{scroll_.Step, tenths};
  if (moved == scroll_ || !InRange(moved, highestStep_)) return false;
  scroll_ = moved;
  return levelChanged_ = true;
}

bool ManualPanel::Key(ArrowKey key) {
  const ManualScroll moved = MoveByKey(scroll_, key, highestStep_);
  return MoveStep(moved.Step) || MoveOffset(moved.OffsetTenths);
}

void ManualPanel::Tick() {
  if (mode_.IsBusy()) return;
  const bool step = std::exchange(stepChanged_, false);
  const bool level = std::exchange(levelChanged_, false) || OffsetDb() > mode_.LevelOffset();
  if (Apply(step, level))
    rising_ = OffsetDb() > mode_.LevelOffset();
  else
    EndRise();
}

bool ManualPanel::Apply(bool step, bool level) {
  const float offset = std::min(OffsetDb(), mode_.LevelOffset() + mode_.MostRise());
  // The higher of two levels never stands at the step that it was not meant for.
  const bool levelFirst = offset < mode_.LevelOffset();
  if (level && levelFirst && !mode_.manLevOffsetChange(offset)) return false;
  if (step && !mode_.manStepNumChange(scroll_.Step)) return false;
  return !level || levelFirst || mode_.manLevOffsetChange(offset);
}

void ManualPanel::EndRise() {
  levelChanged_ = rising_ = false;
  // Never above what stands: the next tick would raise it.
  scroll_.OffsetTenths = static_cast<int>(std::floor(mode_.LevelOffset() * 10 + kTenthMargin));
}

std::optional<ManualStanding> ManualPanel::Threshold() {
  if (mode_.IsBusy()) return std::nullopt;
  if (!rising_) Tick();
  EndRise();
  return mode_.Standing();
}

void ManualPanel::Leave() {
  if (mode_.IsBusy()) return;
  if (OffsetDb() > mode_.LevelOffset()) EndRise();
  Tick();
}

std::string ManualPanel::OffsetText() const {
  return Format(OffsetDb(), "#0.0");
}

}  // namespace hylden
