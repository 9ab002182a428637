#include "testrun/ManualMode.h"

#include <utility>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "measure/Conversions.h"
#include "platform/FlagRaised.h"
#include "shell/Shell.h"
#include "testrun/StepRunner.h"
#include "text/Pattern.h"

namespace hylden {

namespace {

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
  active_ = true;
}

void ManualMode::Handle(const std::function<bool()>& change) {
  if (!active_ || busy_ || run_.shell.delay.HaltRequested()) return;
  const FlagRaised busy(busy_);
  try {
    run_.shell.ForgetFailure();
    if (!change()) SwitchRfOff();
    run_.shell.ShowFailure();
    run_.controls.ManualRf(run_.instruments.sigGen.RfIsOn());
  } catch (const std::exception& error) {
    Trap(error);
  }
}

/// The operator's events come in from the windows, so an exception ends here: RF off, and the run is halted.
void ManualMode::Trap(const std::exception& error) {
  run_.shell.delay.RequestHalt();
  SwitchRfOff();
  run_.shell.ReportError(error, "frmRunTest.RunCDI");
}

/// RF that can't be switched off here is left to the end of the run, which takes the instruments down.
void ManualMode::SwitchRfOff() {
  try {
    if (run_.instruments.sigGen.SilenceRf()) return;
  } catch (const std::exception&) {
  }
  run_.shell.delay.RequestHalt();
}

bool ManualMode::SetLevel() {
  if (run_.shell.delay.HaltRequested()) return true;
  const float level = StepNow().SigGenLevel + levelOffset_ + constantPeakOffset_;
  if (!run_.instruments.sigGen.SetFreqLevel(StepNow().Freq, level)) return false;
  run_.display.SigGenLevel(level);
  return true;
}

void ManualMode::manStepNumChange(int step) {
  Handle([&] { return GoToStep(step); });
}

bool ManualMode::GoToStep(int step) {
  const bool reached = step >= 1 && step <= highestStep_ && step <= static_cast<int>(run_.steps.size());
  if (!reached || IsMissing(run_.steps[static_cast<std::size_t>(step - 1)].SigGenLevel)) return true;
  returnStep_ = step;
  const double frequency = StepNow().Freq;
  if (run_.documents.equip.Record.HasIfiAmplifier() && !run_.instruments.ifiAmp.IfiSetBand(frequency)) {
    run_.shell.delay.RequestHalt();
    return false;
  }
  if (!SetLevel()) return false;
  run_.controls.ManualFreq(frequency);
  run_.display.Frequency(frequency);
  return true;
}

void ManualMode::manLevOffsetChange(float offsetDb) {
  Handle([&] {
    levelOffset_ = offsetDb;
    return SetLevel();
  });
}

void ManualMode::manRfOn(bool on) {
  if (!on && busy_) {
    SwitchRfOff();  // never kept waiting
    return;
  }
  Handle([&] { return SwitchRf(on); });
}

bool ManualMode::SwitchRf(bool on) {
  if (!on) return run_.instruments.sigGen.SilenceRf();
  // A generator without an RF-off command fell back to its minimum level: the level is asked for again.
  return SetLevel() && run_.instruments.sigGen.RfOn();
}

void ManualMode::manModOn(bool on) {
  Handle([&] { return SwitchModulation(on); });
}

bool ManualMode::SwitchModulation(bool on) {
  SigGen& sigGen = run_.instruments.sigGen;
  const TestDefinition& test = run_.documents.testSetup.Definition;
  if (!on) {
    run_.modulationSilenced = true;
    return sigGen.ModOff();
  }
  const bool constantPeak = test.ModType == static_cast<int>(Modulation::Am) && test.ConstPeak;
  if (constantPeak && !SetLevel()) return false;
  if (!StepRunner::SwitchModulationOn(sigGen, test)) return false;
  run_.modulationSilenced = false;
  return true;
}

void ManualMode::manThresholdClick(const std::string& frequencyText, float offsetDb) {
  if (!active_) return;
  try {
    const int row = run_.data.AddThreshold(frequencyText, double{offsetDb});
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
  stepChanged_ = levelChanged_ = false;
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
  if (std::exchange(stepChanged_, false)) mode_.manStepNumChange(scroll_.Step);
  if (std::exchange(levelChanged_, false)) mode_.manLevOffsetChange(OffsetDb());
}

std::string ManualPanel::OffsetText() const {
  return Format(OffsetDb(), "#0.0");
}

}  // namespace hylden
