#include "calibration/CableCalibration.h"

#include <algorithm>
#include <iterator>

#include "calibration/FrequencyPlan.h"
#include "calibration/InsertionLossText.h"
#include "calibration/WarbleAlarm.h"
#include "instruments/Instruments.h"
#include "run/JournalValues.h"
#include "run/RunDisplay.h"
#include "shell/ProposedName.h"
#include "shell/Shell.h"
#include "text/Numbers.h"

namespace hylden {

std::vector<CablePoint> CompletePoints(const std::vector<CablePoint>& points) {
  std::vector<CablePoint> complete;
  std::copy_if(points.begin(), points.end(), std::back_inserter(complete), [](const auto& p) { return p.HasBoth(); });
  return complete;
}

RunCablCal::RunCablCal(Shell& shell, Instruments& instruments)
    : shell_(shell),
      instruments_(instruments),
      guard_(shell, instruments.sigGen),
      up_(shell, instruments, guard_),
      unsaved_(
          shell.dialogs,
          {"Save Insertion Loss", {}, "The insertion loss that was measured has not been saved.\r\nSave it?"},
          [this] { return !CompletePoints(points_).empty(); }, [this] { return WriteFile(); }),
      elapsed_(shell.clock),
      journal_(shell, unsaved_) {}

bool RunCablCal::Halted() const {
  return shell_.delay.HaltRequested();
}

bool RunCablCal::BuildPlan() {
  if (IsRunning()) return false;
  FrequencyRequest request = RequestOf(Setup);
  const auto plan = PlanFrequencies(request);
  if (!shell_.Ok(plan)) return false;
  if (plan->empty()) {
    shell_.dialogs.Tell("Error, no frequencies to calibrate? Check setup.");
    return false;
  }
  if (Keeps(*plan)) return true;
  if (!MayDropReadings(true)) return false;
  points_.clear();
  journal_.Remove();
  for (const double frequency : *plan) points_.push_back({frequency, Setup.Level});
  return true;
}

bool RunCablCal::Keeps(const std::vector<double>& plan) const {
  if (points_.empty() || !points_.front().HasDirect() || (IsComplete() && !unsaved_.Any())) return false;
  return std::equal(
      points_.begin(), points_.end(), plan.begin(), plan.end(),
      [&](const CablePoint& p, double frequency) { return p.Freq == frequency && p.SigGenLevel == Setup.Level; });
}

bool RunCablCal::IsComplete() const {
  return !points_.empty() && std::all_of(points_.begin(), points_.end(), [](const auto& p) { return p.HasBoth(); });
}

bool RunCablCal::HasAllDirect() const {
  return !points_.empty() && std::all_of(points_.begin(), points_.end(), [](const auto& p) { return p.HasDirect(); });
}

bool RunCablCal::MayDropReadings(bool dropsDirect) {
  if (unsaved_.Any()) return unsaved_.MayDrop();
  if (!dropsDirect || IsComplete() || !HasAllDirect()) return true;
  const MessageAnswer answer = shell_.dialogs.Show({"The direct readings wait for their insert pass.\r\nDrop them?",
                                                    "Direct Readings", MessageIcon::Question, MessageButtons::YesNo});
  return answer == MessageAnswer::Yes;
}

void RunCablCal::DirectPass(RunDisplay& display) {
  if (IsRunning() || points_.empty() || !MayDropReadings(true)) return;
  RunPass({display, false}, "RunCblCal.DirectPass");
}

void RunCablCal::InsertPass(RunDisplay& display) {
  if (IsRunning()) return;
  if (!HasAllDirect()) {
    shell_.dialogs.Tell("You must take direct readings first");
    return;
  }
  if (!MayDropReadings(false)) return;
  RunPass({display, true}, "RunCblCal.InsertPass");
}

void RunCablCal::RunPass(const Pass& pass, const char* context) {
  ExpectTimes(pass);
  const auto run = [&] {
    current_ = 0;
    shell_.delay.ClearHalt();
    pass.Display.Phase(RunPhase::BringingUp);
    times_->Start();
    if (!BringUp(pass)) return;
    pass.Display.Phase(RunPhase::Running);
    times_->InstrumentsUp();
    ShowPlan(pass);
    Sweep(pass);
  };
  guard_.Run(context, run, [&] { EndPass(pass); });
}

void RunCablCal::ExpectTimes(const Pass& pass) {
  std::vector<ExpectedStep> steps(points_.size(),
                                  {.Kind = StepKind::Next, .Dwell = 0, .Wait = Setup.Dwell, .Waits = 1});
  steps.front().Kind = StepKind::First;
  times_.emplace(shell_, pass.Display);
  times_->Expect(pass.Inserted ? "insert pass" : "direct pass",
                 instruments_.sigGen.FileName() + ", " + instruments_.meter.FileName(), std::move(steps));
}

bool RunCablCal::BringUp(const Pass& pass) {
  pass.Display.Status("Initializing instruments...");
  return up_.BringUpSigGen() && up_.BringUpMeter();
}

void RunCablCal::ShowPlan(const Pass& pass) {
  std::vector<double> plan;
  plan.reserve(points_.size());
  for (const CablePoint& point : points_) plan.push_back(point.Freq);
  pass.Display.Plan(RunPlanOf(plan, Setup, static_cast<double>(instruments_.meter.SettlingTime())));
  pass.Display.RowChanged(0);
}

void RunCablCal::Sweep(const Pass& pass) {
  elapsed_.Start();
  for (std::size_t i = 0; i < points_.size(); ++i) {
    current_ = i + 1;
    if (!MeasurePoint(pass, i)) return;
  }
  guard_.Finish();
  up_.SwitchRfOff();
  WarbleAlarm(shell_.speaker);
}

bool RunCablCal::MeasurePoint(const Pass& pass, std::size_t index) {
  CablePoint& point = points_[index];
  const float levelDbm = pass.Inserted ? point.SigGenLevel : Setup.Level;
  const int row = static_cast<int>(index) + 1;
  pass.Display.Step(row);
  pass.Display.Show(Readout::Frequency, point.Freq);
  pass.Display.Show(Readout::SigGenLevel, levelDbm);
  pass.Display.RowChanged(row);
  if (Halted() || !Tune(point.Freq, levelDbm)) return false;
  pass.Display.Status("Dwelling...");
  shell_.delay.StartDelay(Setup.Dwell);
  if (!shell_.delay.WaitDelay(true, &pass.Display)) return false;
  pass.Display.Status("Reading...");
  const std::optional<double> reading = Read();
  if (!reading) return false;
  Store(pass, point, levelDbm, *reading);
  Journal(pass);
  pass.Display.Show(Readout::MeterLevel, reading);
  pass.Display.RowChanged(row);
  const double minutes = elapsed_.Minutes();
  pass.Display.Show(Readout::Elapsed, minutes);
  pass.Display.Show(Readout::Remaining, minutes / row * static_cast<double>(points_.size() - current_));
  pass.Display.StepDone(row);
  journal_.TellTrouble(pass.Display);
  times_->StepDone(index, 1, 0, true);
  times_->ShowAhead(index + 1);
  if (pass.Inserted) shell_.delay.Yield();
  return !Halted();
}

bool RunCablCal::Tune(double frequencyMHz, float levelDbm) {
  return guard_.Ok(instruments_.sigGen.SetFreqLevel(frequencyMHz, levelDbm)
                       .and_then([&] { return instruments_.sigGen.RfOn(); })
                       .and_then([&] { return instruments_.meter.MeterSetFreq(frequencyMHz); })
                       .and_then([&] { return instruments_.meter.MeterTrigger(); }));
}

std::optional<double> RunCablCal::Read() {
  const Result<double> reading = instruments_.meter.MeterRead(ReadMode::AutoRange);
  if (Halted()) {
    guard_.Ok(reading);
    return std::nullopt;
  }
  if (reading) return guard_.Reading(reading);
  up_.CloseSigGen();
  guard_.Ok(reading, "Run halted due to errors");
  return std::nullopt;
}

void RunCablCal::Store(const Pass& pass, CablePoint& point, float levelDbm, double reading) {
  unsaved_.Reset();
  // Readings of two passes of a kind are never mixed.
  if (current_ == 1)
    for (CablePoint& p : points_) p = {p.Freq, p.SigGenLevel, pass.Inserted ? p.Direct : kNoValue};
  if (pass.Inserted) {
    point.Insert = reading;
    point.Loss = point.Direct - point.Insert;
    return;
  }
  // Level and reading change together: an insert pass drives what the direct reading was taken with.
  point = {point.Freq, levelDbm, reading};
}

/// A journal has both passes of its points. An insert pass behind one that was saved, or let go, begins it anew.
void RunCablCal::Journal(const Pass& pass) {
  const auto add = [this](std::size_t number) {
    journal_.Row(static_cast<int>(number), RowLineOf(points_[number - 1]));
  };
  const bool begins = current_ == 1 && (!pass.Inserted || !journal_.IsOn());
  if (begins) {
    journal_.Begin({.Kind = JournalKind::InsertionLoss, .Planned = points_.size()});
    for (std::size_t number = 2; pass.Inserted && number <= points_.size(); ++number) add(number);
  }
  add(current_);
}

void RunCablCal::EndPass(const Pass& pass) {
  const bool inOrder = guard_.Outcome() == RunOutcome::Finished || Halted();
  times_->TakingDown();
  guard_.Attempt([&] { up_.SwitchRfOff(); });
  guard_.Attempt([&] { pass.Display.Status("Shutting down instruments..."); });
  guard_.Attempt([&] { pass.Display.Phase(RunPhase::TakingDown); });
  guard_.Attempt([&] { RunAll({[&] { up_.CloseSigGen(); }, [&] { up_.TakeDown(); }}); });
  guard_.Attempt([&] { times_->Ended(inOrder); });
  guard_.Attempt([&] { pass.Display.Status(""); });
  guard_.Attempt([&] { journal_.TellTrouble(pass.Display); });
  guard_.Attempt([&] {
    if (!instruments_.sigGen.RfIsOn()) times_->Keep();
  });
  guard_.Attempt([&] { pass.Display.Phase(RunPhase::Ready); });
}

bool RunCablCal::WriteFile() {
  const std::vector<CablePoint> complete = CompletePoints(points_);
  if (complete.empty()) {
    shell_.dialogs.Tell("Need to run Direct and Insert before file can be saved");
    return false;
  }
  const std::string name = ProposedName("insertion loss", shell_.clock, ".los");
  const auto path = shell_.dialogs.SaveFile(InsertionLossRequest(shell_.settings, name));
  if (!path) return false;
  if (!shell_.Ok(FileInsertionLoss(complete, *path))) return false;
  shell_.Saved(*path);
  if (complete.size() < points_.size())
    shell_.dialogs.Tell("The insert pass ended early: the file holds " + ShortestText(complete.front().Freq) + " - " +
                        ShortestText(complete.back().Freq) + " MHz only.");
  return true;
}

}  // namespace hylden
