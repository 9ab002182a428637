#include "calibration/LevelCalibration.h"

#include <algorithm>
#include <utility>

#include "calibration/FrequencyPlan.h"
#include "calibration/RecordQuestion.h"
#include "calibration/WarbleAlarm.h"
#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "measure/Conversions.h"
#include "run/FactorLoading.h"
#include "run/JournalValues.h"
#include "run/RunDisplay.h"
#include "run/RunQuestions.h"
#include "shell/FormInput.h"
#include "shell/ProposedName.h"
#include "shell/Shell.h"
#include "text/ExistingPath.h"
#include "text/Numbers.h"
#include "text/RecordFile.h"

namespace hylden {

LevelCalibration::LevelCalibration(Shell& shell, Instruments& instruments, Documents& documents, RunDisplay& display)
    : shell_(shell),
      instruments_(instruments),
      documents_(documents),
      display_(display),
      guard_(shell, instruments.sigGen),
      up_(shell, instruments, guard_),
      sensor_(shell, instruments, documents.equip.Record),
      unsaved_(
          shell.dialogs,
          {question::kSaveCalibration, "Would you like to save the calibration data?",
           "The calibration data has not been saved.\r\nSave it?"},
          [this] { return CompleteRows(rows_).size() >= 2; }, [this] { return WriteRecord(); }),
      elapsed_(shell.clock),
      cableLoss_(shell),
      testLevels_(shell),
      forwardPort_(shell),
      reversePort_(shell),
      setup_(documents.calSetup.Record),
      times_(shell, display),
      journal_(shell, unsaved_) {}

bool LevelCalibration::Halted() const {
  return shell_.delay.HaltRequested();
}

bool LevelCalibration::Prepare() {
  if (IsRunning()) return false;
  setup_ = documents_.calSetup.Record;
  couplingFactor_ = documents_.calSetup.CouplingFactor();
  ForgetRows();
  continues_ = false;
  ready_ = false;  // should planning throw
  ready_ = PlanRun() && LoadTables() && CheckTestLevels();
  if (ready_) ExpectTimes(0);
  return ready_;
}

std::vector<CurvePoint> LevelCalibration::Targets() {
  std::vector<double> rising = plan_;
  std::sort(rising.begin(), rising.end());
  std::vector<CurvePoint> targets;
  targets.reserve(rising.size());
  for (const double freq : rising)
    if (const auto target = TargetDbuv(setup_, testLevels_, freq)) targets.push_back({freq, *target});
  return targets;
}

bool LevelCalibration::NotReady(const Failure& failure) {
  shell_.Tell(failure);
  const std::string text = failure.Boxes().back().text;
  display_.Status("Not ready: " + text.substr(0, text.find('\r')));
  return false;
}

void LevelCalibration::ForgetRows() {
  rows_.clear();
  unsaved_.Reset();
  display_.RowChanged(0);
}

bool LevelCalibration::PlanRun() {
  FrequencyRequest request = RequestOf(setup_, documents_.equip.Record);
  const auto plan = PlanFrequencies(request);
  plan_ = shell_.Ok(plan) ? *plan : std::vector<double>();
  setup_.StartFreq = request.StartMHz;
  setup_.StopFreq = request.StopMHz;
  if (plan_.empty()) return NotReady(Failure("Error, no frequencies to calibrate? Check setup."));
  ShowPlan();
  return true;
}

void LevelCalibration::ShowPlan() {
  display_.Plan(RunPlanOf(plan_, setup_));
}

bool LevelCalibration::LoadTables() {
  const EquipRecord& equipment = documents_.equip.Record;
  const bool linear = setup_.StepType == StepType::Linear;
  PlanRange range(plan_, linear ? std::optional(setup_.StopFreq) : std::nullopt);
  const Done loaded = LoadCoveringTables(
      {
          {true, cableLoss_, equipment.CableLossFile, "Error loading cable loss file",
           "Cable loss file does not cover frequency range"},
          {setup_.HasLevelFile(), testLevels_, setup_.LimitFile, "Error loading test level file",
           "Test Level file does not cover frequency range"},
          {setup_.RecordsForward(), forwardPort_, equipment.FwdPortFile, "Error loading foward coupling port file",
           "Forward port file does not cover frequency range"},
          {setup_.RecordsReverse(), reversePort_, equipment.RevPortFile, "Error loading reverse coupling port file",
           "Reverse port file does not cover frequency range"},
      },
      range);
  if (!loaded) return NotReady(loaded.error());
  if (range.LeftOut()) LeaveOutLast(range);
  return true;
}

void LevelCalibration::LeaveOutLast(const PlanRange& range) {
  plan_.pop_back();
  setup_.StopFreq = range.Highest();
  ShowPlan();
  shell_.dialogs.Tell(range.LeftOutText());
}

bool LevelCalibration::CheckTestLevels() {
  for (const double frequency : plan_)
    if (!TargetDbuv(setup_, testLevels_, frequency))
      return NotReady(
          Failure("The test level file gives no level at " + ShortestText(frequency) + " MHz:\r\n" + setup_.LimitFile));
  return true;
}

JournalHead LevelCalibration::Head() {
  JournalHead head{.Kind = JournalKind::LevelCalibration,
                   .Name = FileNameOnly(documents_.calSetup.FileName),
                   .File = FullPath(documents_.calSetup.FileName),
                   .Equipment = FullPath(documents_.equip.EquipFileName),
                   .Planned = plan_.size(),
                   .Notice = shell_.runNotice,
                   .Parts = Parts()};
  LineReader info(RecordText(CalInfoOf(setup_), true));
  while (!info.AtEnd()) head.Info.push_back(info.ReadLine());
  return head;
}

RunParts LevelCalibration::Parts() {
  const EquipRecord& equipment = documents_.equip.Record;
  RunParts parts = {PartOf(FileKind(setup_), documents_.calSetup.FileName, ContentOf(setup_))};
  AddStation(parts, documents_, instruments_);
  parts.push_back(PartOf("cable loss file", equipment.CableLossFile, ContentOf(cableLoss_)));
  parts.push_back(PartOf("test level file", setup_.LimitFile, ContentOf(testLevels_)));
  parts.push_back(PartOf("forward port file", equipment.FwdPortFile, ContentOf(forwardPort_)));
  parts.push_back(PartOf("reverse port file", equipment.RevPortFile, ContentOf(reversePort_)));
  // Behind the setup it can differ by the list only.
  std::string frequencies;
  for (const double frequency : plan_) frequencies += ShortestText(frequency) + "\n";
  parts.push_back(PartOf("frequency list", setup_.ListFile, frequencies));
  return parts;
}

Done LevelCalibration::Continue(FormerRun<CalRows> former) {
  continues_ = false;
  if (IsRunning() || !ready_) return Because("No run is prepared.");
  if (Done same = MayContinue(former.Head, Head()); !same) return same;
  const CalRows& rows = former.Recorded;
  const auto isPlanned = [](const CalRow& row, double frequency) { return row.Complete && row.Freq == frequency; };
  if (rows.size() > plan_.size() || !std::equal(rows.begin(), rows.end(), plan_.begin(), isPlanned))
    return Because(kOtherRows);
  if (rows.size() == plan_.size()) return Because(kNothingToContinue);
  rows_ = std::move(former.Recorded);
  journal_.Take(std::move(former.Head), std::move(former.Journal));
  unsaved_.Keep();
  continues_ = true;
  ShowRows();
  display_.Status(ContinuesText(rows_.size() + 1, plan_[rows_.size()]));
  return {};
}

std::optional<std::size_t> LevelCalibration::Unfinished() {
  const std::size_t complete = CompleteRows(rows_).size();
  const bool someAreMissing = ready_ && complete > 0 && complete < plan_.size();
  if (!someAreMissing || !MayContinue(journal_.Head(), Head())) return std::nullopt;
  return complete + 1;
}

void LevelCalibration::BeginAfresh() {
  ForgetRows();
  journal_.Begin(Head());
}

void LevelCalibration::GoOn() {
  if (!rows_.back().Complete) rows_.pop_back();
  unsaved_.Reset();
  ShowRows();
  if (!journal_.GoOn())
    for (std::size_t i = 0; i < rows_.size(); ++i) journal_.Row(static_cast<int>(i + 1), RowLineOf(rows_[i]));
  const std::size_t first = rows_.size() + 1;
  journal_.Seam(static_cast<int>(first));
  shell_.log.LogFile(ContinuedText(first, plan_[first - 1]));
}

void LevelCalibration::ShowRows() {
  display_.RowChanged(0);
  for (std::size_t row = 1; row <= rows_.size(); ++row) display_.RowChanged(static_cast<int>(row));
}

void LevelCalibration::Run() {
  if (IsRunning() || !ready_ || !MayBegin()) return;
  guard_.Run(
      "frmRunCal.RunCal", [this] { RunPlan(); }, [this] { End(); });
  // Of a run that did not come to its start, what the operator said about this one is forgotten.
  continues_ = continues_ && unsaved_.AreKept();
}

bool LevelCalibration::MayBegin() {
  if (continues_) return true;
  if (const auto step = Unfinished()) {
    const MessageAnswer answer = AskToContinue(shell_.dialogs, *step, plan_[*step - 1]);
    if (answer != MessageAnswer::No) return continues_ = answer == MessageAnswer::Yes;
  }
  return unsaved_.MayDrop();
}

void LevelCalibration::RunPlan() {
  started_ = false;
  ExpectTimes(continues_ ? rows_.size() : 0);
  display_.Phase(RunPhase::BringingUp);
  times_.Start();
  shell_.delay.ClearHalt();
  if (!BringUp()) return;
  started_ = true;
  display_.Phase(RunPhase::Running);
  times_.InstrumentsUp();
  // Up to here the points of an earlier run are kept: a run that did not get to its first point costs nothing.
  if (Halted()) return;
  std::exchange(continues_, false) ? GoOn() : BeginAfresh();
  Sweep();
}

bool LevelCalibration::BringUp() {
  display_.Status("Initializing instruments...");
  if (!up_.BringUpSigGen()) return false;
  if (setup_.RecordsForward()) {
    if (!up_.BringUpPowerMeter()) return false;
    sensor_.Reset();
  }
  return up_.BringUpMeter() && up_.BringUpAmplifier(documents_.equip.Record);
}

void LevelCalibration::Sweep() {
  sigGenLevel_ = setup_.InitLevel;
  elapsed_.Start();
  const std::size_t former = rows_.size();
  for (std::size_t i = former; i < plan_.size(); ++i) {
    display_.Step(static_cast<int>(i + 1));
    if (!CalibratePoint(plan_[i])) return;
    times_.StepDone(i - former, tries_, 0, true);
    ShowTimes(i + 1, former);
    times_.ShowAhead(i + 1 - former);
  }
  guard_.Finish();
  journal_.Complete();
}

void LevelCalibration::ShowTimes(std::size_t done, std::size_t former) {
  const double minutes = elapsed_.Minutes();
  display_.Show(Readout::Elapsed, minutes);
  display_.Show(Readout::Remaining,
                minutes / static_cast<double>(done - former) * static_cast<double>(plan_.size() - done));
  display_.StepDone(static_cast<int>(done));
  journal_.TellTrouble(display_);
}

bool LevelCalibration::CalibratePoint(double frequencyMHz) {
  point_ = {};
  tries_ = 0;
  point_.Freq = frequencyMHz;
  display_.Show(Readout::Frequency, frequencyMHz);
  const bool hasBands = documents_.equip.Record.HasIfiAmplifier();
  if (hasBands && !guard_.Ok(instruments_.ifiAmp.IfiSetBand(frequencyMHz))) return false;
  if (!FindTarget() || !TuneMeter() || !TuneGenerator() || !TunePowerMeter() || !FindLevel()) return false;
  if (Halted()) {
    shell_.delay.ClearHalt();
    return false;
  }
  return Record();
}

bool LevelCalibration::FindTarget() {
  const std::optional<double> target = TargetDbuv(setup_, testLevels_, point_.Freq);
  if (!target) return guard_.Fail("Error interpolating limit");
  const auto loss = cableLoss_.InterpVal(point_.Freq, FreqScale::Linear);
  if (!guard_.Ok(loss, "error interpolating cable loss")) return false;
  point_.Target = *target;
  point_.CableLoss = double{*loss};
  display_.Show(Readout::CableLoss, point_.CableLoss);
  return true;
}

bool LevelCalibration::TuneMeter() {
  Meter& meter = instruments_.meter;
  return guard_.Ok(meter.MeterSetFreq(point_.Freq)) &&
         guard_.Ok(meter.MeterSetLevel(point_.Target - point_.CableLoss - couplingFactor_));
}

bool LevelCalibration::TuneGenerator() {
  if (Halted() || (setup_.RecordsForward() && !guard_.Ok(sensor_.Place(point_.Freq)))) return false;
  SigGen& sigGen = instruments_.sigGen;
  return guard_.Ok(sigGen.SetFreqLevel(point_.Freq, sigGenLevel_)) && guard_.Ok(sigGen.RfOn());
}

bool LevelCalibration::TunePowerMeter() {
  if (!setup_.RecordsForward()) return true;
  if (!guard_.Ok(instruments_.pm.PwrMtrSetFreq(point_.Freq))) return false;
  const auto forward = forwardPort_.InterpVal(point_.Freq, FreqScale::Linear);
  if (!guard_.Ok(forward, "Error interpolating forward coupler factor")) return false;
  point_.ForwardFactor = double{*forward};
  if (!setup_.RecordsReverse()) return true;
  const auto reverse = reversePort_.InterpVal(point_.Freq, FreqScale::Linear);
  if (!guard_.Ok(reverse, "Error interpolating reverse coupler factor")) return false;
  point_.ReverseFactor = double{*reverse};
  return true;
}

bool LevelCalibration::FindLevel() {
  Convergence convergence;
  for (;;) {
    if (!SetLevelAndDwell() || !ReadLevel()) return false;
    if (InTolerance(point_.Level, point_.Target, kToleranceDb)) return true;
    if (Halted()) return false;
    const double step = std::min(NextLevelStep(point_.Level, point_.Target, kToleranceDb), double{setup_.MaxStep});
    if (!convergence.GoesOn(step))
      return guard_.Fail("The level does not settle within the tolerance band, check setup");
    if (!ChangeLevel(step)) return false;
  }
}

bool LevelCalibration::SetLevelAndDwell() {
  ++tries_;
  display_.Status("Setting level...");
  const Done set = instruments_.sigGen.SetFreqLevel(point_.Freq, sigGenLevel_);
  display_.Show(Readout::SigGenLevel, sigGenLevel_);
  if (!guard_.Ok(set)) return false;
  display_.Status("Dwelling...");
  shell_.delay.StartDelay(setup_.Dwell);
  return shell_.delay.WaitDelay(true, &display_);
}

bool LevelCalibration::ReadLevel() {
  display_.Status("Reading...");
  // On a shared address the trigger would disturb the power reading.
  const bool shared = instruments_.meter.Address() == instruments_.pm.Address();
  if (!shared && !guard_.Ok(instruments_.meter.MeterTrigger())) return false;
  const EquipRecord& equipment = documents_.equip.Record;
  const bool readsAmplifier = equipment.HasIfiAmplifier() && equipment.IfiPower;
  if (readsAmplifier && !guard_.Ok(instruments_.ifiAmp.IfiReadPower())) return false;
  return (!setup_.RecordsForward() || ReadForwardPower()) && ReadMeter();
}

bool LevelCalibration::ReadForwardPower() {
  const std::optional<double> reading = guard_.Reading(sensor_.Read());
  if (!reading) return false;
  const double powerDbm = *reading + point_.ForwardFactor;
  point_.ForwardDbm = IsMissing(*reading) ? std::nullopt : std::optional(powerDbm);
  point_.ForwardWatts = Conversions::DbmToWatts(powerDbm);
  display_.Show(Readout::ForwardPower, powerDbm);
  if (!setup_.LimitsForward() || point_.ForwardWatts <= double{setup_.FwdPwrLimit}) return true;
  return guard_.Fail("Forward power limit exceeded");
}

bool LevelCalibration::ReadMeter() {
  const std::optional<double> reading = guard_.Reading(instruments_.meter.MeterRead(ReadMode::Single));
  if (!reading) return false;
  display_.Show(Readout::MeterLevel, reading);
  point_.Level = *reading + couplingFactor_ + point_.CableLoss;
  display_.Show(Readout::TestLevel, point_.Level);
  return true;
}

bool LevelCalibration::ChangeLevel(double stepDb) {
  if (setup_.LimitsForward() && ForwardHeadroom(double{setup_.FwdPwrLimit}, point_.ForwardWatts) < stepDb)
    return guard_.Fail("Not able to increase power the necessary amount, check setup");
  sigGenLevel_ = static_cast<float>(double{sigGenLevel_} + stepDb);
  return sigGenLevel_ <= setup_.MaxLevel ||
         guard_.Fail("Level requested is higher than defined in the calibrations setup");
}

bool LevelCalibration::Record() {
  // The record holds what gives the middle of the tolerance band.
  const double excessDb = point_.Level - point_.Target - kToleranceDb / 2;
  const double levelDbm = double{sigGenLevel_} - excessDb;
  // A test could not replay it.
  if (levelDbm > double{instruments_.sigGen.MaximumLevel()})
    return guard_.Fail("The level found is above the signal generator's maximum level, check setup");
  CalRow& row = rows_.emplace_back(CalRow{point_.Freq, levelDbm, point_.Target});
  const int number = static_cast<int>(rows_.size());
  if (point_.ForwardDbm) row.FwdPwr = *point_.ForwardDbm - excessDb;
  row.Reached = point_.Level;
  row.Complete = !setup_.RecordsReverse();
  display_.RowChanged(number);
  if (!row.Complete && !ReadReversePower(excessDb, row)) return false;
  display_.RowChanged(number);
  journal_.Row(number, RowLineOf(row));
  // The correction never takes the next frequency above the highest level allowed.
  sigGenLevel_ = std::min(static_cast<float>(levelDbm), setup_.MaxLevel);
  return true;
}

bool LevelCalibration::ReadReversePower(double excessDb, CalRow& row) {
  if (!documents_.equip.Record.Is(AmpConfig::DualFwdRev))
    return guard_.Fail("Equipment file says power meter not configured for reverse power readings.");
  const std::optional<double> reading = guard_.Reading(instruments_.pm.ReadPower(2));
  if (!reading) return false;
  if (!IsMissing(*reading)) row.RevPwr = *reading + point_.ReverseFactor - excessDb;
  return row.Complete = true;
}

void LevelCalibration::End() {
  const bool inOrder = guard_.Outcome() == RunOutcome::Finished || Halted();
  times_.TakingDown();
  guard_.Attempt([&] { up_.SwitchRfOff(); });
  guard_.Attempt([&] { display_.Status("Shutting down instruments..."); });
  guard_.Attempt([&] { display_.Phase(RunPhase::TakingDown); });
  guard_.Attempt([&] { up_.TakeDown(); });
  guard_.Attempt([&] { times_.Ended(inOrder); });
  guard_.Attempt([&] { display_.Phase(RunPhase::Asking); });
  guard_.Attempt([&] { display_.Status(""); });
  guard_.Attempt([&] { journal_.TellTrouble(display_); });
  if (started_) {
    guard_.Attempt([&] { WarbleAlarm(shell_.speaker); });
    guard_.Attempt([&] {
      if (!rows_.empty()) unsaved_.AskAtTheEnd();
    });
  }
  guard_.Attempt([&] {
    if (!instruments_.sigGen.RfIsOn()) times_.Keep();
  });
  guard_.Attempt([&] { display_.Phase(RunPhase::Ready); });
}

void LevelCalibration::ExpectTimes(std::size_t first) {
  const EquipRecord& equipment = documents_.equip.Record;
  const auto isHigh = [&](double frequency) { return frequency > equipment.IfiBandSwitch; };
  std::vector<ExpectedStep> steps;
  steps.reserve(plan_.size());
  for (std::size_t i = first; i < plan_.size(); ++i) {
    const bool changes = i > first && equipment.HasIfiAmplifier() && isHigh(plan_[i - 1]) != isHigh(plan_[i]);
    const StepKind kind = i == first ? StepKind::First : changes ? StepKind::Change : StepKind::Next;
    steps.push_back({.Kind = kind, .Dwell = 0, .Wait = setup_.Dwell, .Waits = 1});
  }
  const char* const powers = setup_.RecordsReverse()   ? ", forward and reverse power"
                             : setup_.RecordsForward() ? ", forward power"
                                                       : "";
  times_.Expect(std::string("calibration") + powers, documents_.equip.EquipFileName, std::move(steps));
}

bool LevelCalibration::WriteRecord() {
  const std::string name = ProposedName(documents_.calSetup.FileName, shell_.clock, ".cal");
  const auto path = shell_.dialogs.SaveFile(RecordRequest(shell_.settings, name));
  if (!path || !MayReplaceInfo(shell_.dialogs, *path)) return false;
  const CalRows rows = CompleteRows(rows_);
  const CalInfoRec info = InfoOfRows(CalInfoOf(setup_), rows, plan_.size());
  if (!shell_.Ok(SaveCal(*path, rows, info))) return false;
  documents_.calSetup.RecordSaved = InfoFileBeside(*path).value_or("");
  shell_.Saved(*path);
  if (rows.size() < plan_.size())
    shell_.dialogs.Tell("The calibration ended early: its record holds " + info.FreqRange + " MHz only.");
  return true;
}

}  // namespace hylden
