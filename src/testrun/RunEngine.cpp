#include "testrun/RunEngine.h"

#include <algorithm>
#include <utility>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "run/RunDisplay.h"
#include "run/RunQuestions.h"
#include "run/TimeText.h"
#include "shell/FormInput.h"
#include "shell/Shell.h"
#include "testrun/RunDataJournal.h"
#include "testrun/RunFacts.h"
#include "testrun/RunLoader.h"
#include "testrun/StepRunner.h"
#include "testrun/TestParts.h"
#include "testrun/TestTimes.h"
#include "text/ExistingPath.h"

namespace hylden {

namespace {

/// The step of a row: the one behind the last, or one that manual mode went back to. Steps().size(): none.
std::size_t StepOf(double frequencyMHz, std::size_t expected, std::size_t reached, const std::vector<PlanStep>& steps) {
  if (expected < steps.size() && steps[expected].Freq == frequencyMHz) return expected;
  const auto end = steps.begin() + static_cast<std::ptrdiff_t>(reached);
  const auto found = std::find_if(steps.begin(), end, [&](const PlanStep& s) { return s.Freq == frequencyMHz; });
  return found == end ? steps.size() : static_cast<std::size_t>(found - steps.begin());
}

/// The steps that these rows have reached; nothing where they are not rows of the plan.
std::optional<std::vector<ReachedStep>> ReachedBy(const RunData& rows, const std::vector<PlanStep>& steps) {
  std::vector<ReachedStep> reached;
  std::size_t expected = 0;
  int row = 0;
  for (const RunEntry& entry : rows.Entries()) {
    ++row;
    if (IsThreshold(entry)) continue;
    const auto& step = std::get<StepEntry>(entry);
    const std::size_t at = StepOf(step.Freq, expected, reached.size(), steps);
    if (!step.Result || at == steps.size()) return std::nullopt;
    if (at == reached.size()) reached.emplace_back();
    reached[at] = {step.Freq, step.Result->SigGenLevel, step.Result->TestLevel, std::nullopt, row};
    expected = at + 1;
  }
  return reached;
}

}  // namespace

RunEngine::RunEngine(Shell& shell, Instruments& instruments, Documents& documents, RunDisplay& display,
                     ManualControls& controls)
    : shell_(shell),
      documents_(documents),
      instruments_(instruments),
      display_(display),
      guard_(shell, instruments.sigGen),
      up_(shell, instruments, documents.testSetup.Definition, documents.equip.Record, display, guard_),
      unsaved_(
          shell.dialogs,
          {question::kSaveRunData, "Would you like to save the testrun data?",
           "The run data has not been saved.\r\nSave it?"},
          [this] { return !data_.IsEmpty(); }, [this] { return SaveRunData(shell_, data_, info_, &savedFile_); }),
      inputs_(std::make_unique<RunInputs>(shell)),
      manual_(shell, instruments, documents.testSetup.Definition, documents.equip.Record, display, controls, guard_,
              data_, reached_),
      elapsed_(shell.clock),
      times_(shell, display),
      journal_(shell, unsaved_) {
  data_.onRow = [this](int row) {
    info_.RowTimes[row] = TimeText(shell_.clock.Now());
    journal_.Row(row, JournalLineOf(data_.Entries()[static_cast<std::size_t>(row - 1)]));
  };
}

RunEngine::~RunEngine() = default;

RunReadiness RunEngine::Prepare() {
  if (IsRunning()) return RunReadiness::NotReady;
  ready_ = false;
  continues_ = false;
  stepRunner_.reset();
  inputs_ = std::make_unique<RunInputs>(shell_);
  RunLoader loader(shell_, documents_, display_, *inputs_);
  display_.Status("State: Idle");
  loader.PlanSteps();
  if (inputs_->Steps.empty()) {
    shell_.dialogs.Tell("Error, no frequencies to test? Check setup.");
    return RunReadiness::NoSteps;
  }
  if (inputs_->ListReadable && loader.LoadCalibration()) {
    data_.Clear();
    reached_.clear();
    display_.RowChanged(0);
    ready_ = loader.LoadFactors();
  }
  display_.Status(ready_ ? "State: Idle" : "State: Not ready");
  if (!ready_) return RunReadiness::NotReady;
  firstStep_ = 1;
  ExpectTimes();
  display_.Phase(RunPhase::Ready);
  return RunReadiness::Ready;
}

std::vector<RunAim> RunEngine::Aims() const {
  std::vector<double> frequencies;
  frequencies.reserve(Steps().size());
  for (const PlanStep& step : Steps()) frequencies.push_back(step.Freq);
  return AimsOf(documents_.testSetup.Definition, inputs_->Calibration, frequencies);
}

Done RunEngine::Continue(FormerRun<RunData> former) {
  continues_ = false;
  if (IsRunning() || !ready_) return Because("No run is prepared.");
  if (Done same = MayContinue(former.Head, Head()); !same) return same;
  auto reached = ReachedBy(former.Recorded, Steps());
  if (!reached) return Because(kOtherRows);
  if (reached->size() == Steps().size()) return Because(kNothingToContinue);
  data_.Clear();
  for (const int seam : former.Recorded.Seams()) data_.AddSeam(seam);
  for (const RunEntry& entry : former.Recorded.Entries()) data_.Add(entry);
  reached_ = std::move(*reached);
  info_ = {};
  info_.Started = former.Head.Started;
  journal_.Take(std::move(former.Head), std::move(former.Journal));
  unsaved_.Keep();
  continues_ = true;
  ShowRows();
  display_.Status(ContinuesText(reached_.size() + 1, Steps()[reached_.size()].Freq));
  return {};
}

std::optional<std::size_t> RunEngine::Unfinished() {
  const bool someAreMissing = ready_ && !reached_.empty() && reached_.size() < Steps().size();
  if (!someAreMissing || !MayContinue(journal_.Head(), Head())) return std::nullopt;
  return reached_.size() + 1;
}

void RunEngine::ConfirmAndRun() {
  if (IsRunning() || !MayBegin()) return;
  if (shell_.end.MayStart() && Confirm()) RunCdiTest();
  // Of a run that did not come to its start, what the operator said about this one is forgotten.
  continues_ = continues_ && unsaved_.AreKept();
}

bool RunEngine::MayBegin() {
  if (continues_) return true;
  if (const auto step = Unfinished()) {
    const MessageAnswer answer = AskToContinue(shell_.dialogs, *step, Steps()[*step - 1].Freq);
    if (answer != MessageAnswer::No) return continues_ = answer == MessageAnswer::Yes;
  }
  return unsaved_.MayDrop();
}

bool RunEngine::Confirm() {
  const CalInfoRec& calibration = documents_.calInfo.Record;
  const MessageAnswer answer = shell_.dialogs.Show(
      {"Make sure proper amp is hooked up,\r\n" + calibration.AmpUsed +
           "\r\nand proper coupling device and cables are connected,\r\n" + calibration.DeviceDescription,
       question::kMakeSure, MessageIcon::Exclamation, MessageButtons::OkCancel});
  return answer == MessageAnswer::Ok;
}

void RunEngine::RunCdiTest() {
  if (IsRunning() || !ready_) return;
  guard_.Run(
      "frmRunTest.RunCDI", [this] { RunTest(); }, [this] { EndRun(); });
}

void RunEngine::RequestManual() {
  if (IsRunning()) stepRunner_->CutDwells();
}

void RunEngine::Reset() {
  stepRunner_ = std::make_unique<StepRunner>(shell_, instruments_, documents_.testSetup.Definition,
                                             documents_.equip.Record, *inputs_, display_, guard_);
  shell_.delay.ClearHalt();
  // Until the instruments are up, the rows and the journal of a run that is continued stay as they are.
  if (!continues_) BeginAfresh();
  currentStep_ = timedSteps_ = 0;
  firstStep_ = CompletedSteps() + 1;
  ExpectTimes();
}

void RunEngine::BeginAfresh() {
  data_.Clear();
  unsaved_.Reset();
  reached_.clear();
  info_ = FactsOf(shell_, documents_, instruments_, *inputs_);
  ShowRows();
  journal_.Begin(Head());
}

void RunEngine::GoOn() {
  RunInfo former = std::move(info_);
  data_.DropIncomplete();
  unsaved_.Reset();
  // The set-up may have been touched since.
  for (ReachedStep& step : reached_) step.KeptOffset.reset();
  const int rows = static_cast<int>(data_.Entries().size());
  data_.AddSeam(rows + 1);
  ShowRows();
  if (!journal_.GoOn())
    for (int row = 1; row <= rows; ++row) data_.onRow(row);
  for (const int seam : data_.Seams()) journal_.Seam(seam);
  RunInfo facts = FactsOf(shell_, documents_, instruments_, *inputs_);
  facts.Started = std::move(former.Started);
  facts.RowTimes = std::move(former.RowTimes);
  info_ = std::move(facts);
}

void RunEngine::ShowRows() {
  display_.RowChanged(0);
  for (std::size_t row = 1; row <= data_.Entries().size(); ++row) display_.RowChanged(static_cast<int>(row));
}

void RunEngine::ExpectTimes() {
  const TestDefinition& test = documents_.testSetup.Definition;
  times_.Expect(KindOf(test), documents_.equip.EquipFileName,
                ExpectedSteps(Steps(), static_cast<std::size_t>(firstStep_ - 1), test, documents_.equip.Record));
}

JournalHead RunEngine::Head() {
  return {.Kind = JournalKind::Test,
          .Name = FileNameOnly(documents_.testSetup.TestFileName),
          .File = FullPath(documents_.testSetup.TestFileName),
          .Equipment = FullPath(documents_.equip.EquipFileName),
          .Planned = Steps().size(),
          .Notice = shell_.runNotice,
          .Parts = PartsOf(*inputs_, documents_, instruments_)};
}

void RunEngine::RunTest() {
  Reset();
  display_.Phase(RunPhase::BringingUp);
  times_.Start();
  if (!up_.BringUp() || shell_.delay.HaltRequested()) return;
  if (std::exchange(continues_, false)) GoOn();
  info_.PredictedSeconds = times_.PredictedSeconds();
  display_.Phase(RunPhase::Running);
  times_.InstrumentsUp();
  shell_.log.LogFile("Test run started\r\n" + documents_.testSetup.StringPrintTestSetup());
  const bool continues = firstStep_ > 1;
  if (continues) {
    const auto first = static_cast<std::size_t>(firstStep_);
    shell_.log.LogFile(ContinuedText(first, Steps()[first - 1].Freq));
  }
  shell_.log.Hold();
  Sweep();
}

void RunEngine::Sweep() {
  const int count = static_cast<int>(Steps().size());
  for (currentStep_ = firstStep_; currentStep_ <= count; ++currentStep_) {
    if (shell_.delay.HaltRequested()) return;
    if (currentStep_ > firstStep_ && timedSteps_ == 0) elapsed_.Start();
    if (!RunStep()) return;
    if (currentStep_ > firstStep_) ++timedSteps_;
    const auto& [waits, readings] = stepRunner_->Timing();
    times_.StepDone(OfThisRun(currentStep_), waits, readings, !stepRunner_->DwellsAreCut());
    if (stepRunner_->DwellsAreCut() && !ManualPhase()) return;
    if (timedSteps_ >= 2) ShowTimes();
    display_.StepDone(currentStep_);
    journal_.TellTrouble(display_);
    times_.ShowAhead(OfThisRun(currentStep_ + 1));
  }
  guard_.Finish();
  journal_.Complete();
  up_.SwitchRfOff();
  shell_.log.LogFile("Frequency sweep finished");
  display_.Show(Readout::Remaining, 0);
}

bool RunEngine::RunStep() {
  const auto index = static_cast<std::size_t>(currentStep_ - 1);
  const PlanStep& planned = Steps()[index];
  display_.Step(currentStep_);
  const int row = data_.AddStep(planned.Freq);
  display_.RowChanged(row);
  const std::optional<ReachedLevel> level = stepRunner_->Run(planned, Previous());
  if (!level) return false;
  const StepResult& applied = level->Applied;
  data_.FillStep(row, applied);
  display_.RowChanged(row);
  if (index == reached_.size()) reached_.emplace_back();
  reached_[index] = {planned.Freq, applied.SigGenLevel, applied.TestLevel, level->KeptOffset, row};
  return true;
}

PreviousStep RunEngine::Previous() const {
  if (currentStep_ == 1) return {};
  const ReachedStep& reached = reached_[static_cast<std::size_t>(currentStep_ - 2)];
  return reached.KeptOffset ? PreviousStep{reached.Freq, *reached.KeptOffset} : PreviousStep();
}

void RunEngine::ShowTimes() {
  const double minutes = elapsed_.Minutes();
  const double left = static_cast<double>(Steps().size()) - (currentStep_ - 1);
  display_.Show(Readout::Elapsed, minutes);
  display_.Show(Readout::Remaining, left * minutes / timedSteps_);
}

bool RunEngine::ManualPhase() {
  elapsed_.Pause();
  times_.Pause();
  const std::optional<int> returnStep = manual_.Run(currentStep_);
  elapsed_.Resume();
  times_.Resume();
  if (!returnStep) return false;
  currentStep_ = *returnStep;
  stepRunner_->GoOn(manual_.ModulationMayBeOff());
  return true;
}

void RunEngine::NoteEnd(double seconds) {
  info_.ActualSeconds = seconds;
  info_.Ended = TimeText(shell_.clock.Now());
  info_.Outcome = guard_.Outcome() == RunOutcome::Finished ? runend::kFinished : runend::kEndedEarly;
  info_.Seams = data_.Seams();
  info_.CompletedSteps = CompletedSteps();
}

void RunEngine::EndRun() {
  const bool inOrder = guard_.Outcome() == RunOutcome::Finished || shell_.delay.HaltRequested();
  times_.TakingDown();
  guard_.Attempt([&] { up_.SwitchRfOff(); });
  // Stamped now, before dead instruments and boxes; written below, since the log may lie on a share that stalls.
  shell_.log.Hold();
  shell_.log.LogFile("Instruments taken offline");
  guard_.Attempt([&] { display_.Phase(RunPhase::TakingDown); });
  guard_.Attempt([&] { up_.TakeDown(); });
  guard_.Attempt([&] { times_.Ended(inOrder); });
  const double seconds = times_.Seconds();
  guard_.Attempt([&] { shell_.log.Release(); });
  guard_.Attempt([&] { manual_.Close(); });
  guard_.Attempt([&] { shell_.speaker.Beep(1000, 2000); });
  shell_.delay.RequestHalt();
  if (!continues_) NoteEnd(seconds);  // of one that did not come to it the former end stands
  guard_.Attempt([&] { journal_.TellTrouble(display_); });
  guard_.Attempt([&] { display_.Phase(RunPhase::Asking); });
  guard_.Attempt([&] {
    if (!data_.IsEmpty() && !continues_) unsaved_.AskAtTheEnd();
  });
  guard_.Attempt([&] {
    if (!instruments_.sigGen.RfIsOn()) times_.Keep();
  });
  guard_.Attempt([&] { display_.Phase(RunPhase::Ready); });
}

}  // namespace hylden
