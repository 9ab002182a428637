#include "calibration/LevelCalibration.h"

#include "calibration/CalibrationDisplay.h"
#include "calibration/FactorLoading.h"
#include "calibration/FrequencyPlan.h"
#include "calibration/RunQuestions.h"
#include "calibration/WarbleAlarm.h"
#include "documents/Documents.h"
#include "documents/clsCalFile.h"
#include "instruments/Instruments.h"
#include "platform/FlagRaised.h"
#include "shell/Shell.h"

namespace hylden {

LevelCalibration::LevelCalibration(Shell& shell, Instruments& instruments, Documents& documents,
                                   CalibrationDisplay& display)
    : shell_(shell),
      instruments_(instruments),
      documents_(documents),
      display_(display),
      guard_(shell, instruments.sigGen),
      up_(shell, instruments),
      sensor_(shell, instruments, documents.equip.Record),
      elapsed_(shell.clock),
      cableLoss_(shell),
      testLevels_(shell),
      forwardPort_(shell),
      reversePort_(shell) {}

bool LevelCalibration::Halted() const {
  return shell_.delay.HaltRequested();
}

bool LevelCalibration::Prepare() {
  if (IsRunning()) return false;
  setup_ = documents_.calSetup.Record;
  couplingFactor_ = documents_.calSetup.CouplingFactor();
  ForgetRows();
  ready_ = false;  // should planning throw
  ready_ = PlanRun() && LoadTables();
  return ready_;
}

void LevelCalibration::ForgetRows() {
  rows_.clear();
  wanted_ = saved_ = false;
  display_.TableCut(0);
}

bool LevelCalibration::PlanRun() {
  const EquipRecord& equipment = documents_.equip.Record;
  const auto type = static_cast<StepType>(setup_.StepType);
  FrequencyRequest request{type,
                           setup_.StartFreq,
                           setup_.StopFreq,
                           type == StepType::Log ? setup_.LogStep : setup_.LinearStep,
                           setup_.ListFile,
                           {equipment.HasIfiAmplifier(), equipment.IfiBandSwitch}};
  plan_ = PlanFrequencies(shell_, request).value_or(std::vector<double>());
  setup_.StartFreq = request.StartMHz;
  setup_.StopFreq = request.StopMHz;
  if (plan_.empty()) {
    shell_.dialogs.Tell("Error, no frequencies to calibrate? Check setup.");
    return false;
  }
  display_.Plan({static_cast<int>(plan_.size()), setup_.StartFreq, setup_.StopFreq, setup_.Dwell});
  return true;
}

bool LevelCalibration::LoadTables() {
  const EquipRecord& equipment = documents_.equip.Record;
  const struct {
    bool wanted;
    InterpClass& table;
    const std::string& file;
    const char* loadText;
    const char* coverText;
  } tables[] = {
      {true, cableLoss_, equipment.CableLossFile, "Error loading cable loss file",
       "Cable loss file does not cover frequency range"},
      {setup_.HasLevelFile(), testLevels_, setup_.LimitFile, "Error loading test level file",
       "Test Level file does not cover frequency range"},
      {setup_.RecordsForward(), forwardPort_, equipment.FwdPortFile, "Error loading foward coupling port file",
       "Forward port file does not cover frequency range"},
      {setup_.RecordsReverse(), reversePort_, equipment.RevPortFile, "Error loading reverse coupling port file",
       "Reverse port file does not cover frequency range"},
  };
  const FrequencyRange range{setup_.StartFreq, setup_.StopFreq};
  for (const auto& t : tables)
    if (t.wanted && !LoadCoveringTable(shell_, t.table, t.file, range, t.loadText, t.coverText)) return false;
  return true;
}

void LevelCalibration::Run() {
  if (IsRunning() || !ready_) return;
  guard_.Run(
      "frmRunCal.RunCal", [this] { RunPlan(); }, [this] { End(); });
}

void LevelCalibration::RunPlan() {
  started_ = false;
  outcome_ = RunOutcome::EndedEarly;
  display_.Running(true);
  shell_.delay.ClearHalt();
  if (!BringUp()) return;
  started_ = true;
  // Up to here the points of an earlier run are kept: a run that did not get to its first point costs nothing.
  if (Halted()) return;
  ForgetRows();
  Sweep();
}

bool LevelCalibration::BringUp() {
  const BusyDisplay busy(display_);
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
  for (std::size_t i = 0; i < plan_.size(); ++i) {
    if (!CalibratePoint(plan_[i])) return;
    ShowTimes(i + 1);
  }
  outcome_ = RunOutcome::Finished;
}

void LevelCalibration::ShowTimes(std::size_t done) {
  const double minutes = elapsed_.Minutes();
  display_.Elapsed(minutes);
  display_.Remaining(minutes / static_cast<double>(done) * static_cast<double>(plan_.size() - done));
  display_.Step(static_cast<int>(done));
}

void LevelCalibration::End() {
  guard_.Attempt([&] { up_.SwitchRfOff(); });
  guard_.Attempt([&] { display_.Status("Shutting down instruments..."); });
  guard_.Attempt([&] {
    const BusyDisplay busy(display_);
    up_.TakeDown();
  });
  guard_.Attempt([&] { display_.Status(""); });
  if (started_) {
    guard_.Attempt([&] { WarbleAlarm(shell_.speaker); });
    guard_.Attempt([&] { AskToSave(); });
  }
  guard_.Attempt([&] { display_.Running(false); });
}

void LevelCalibration::AskToSave() {
  const FlagRaised asking(asking_);
  const MessageAnswer answer =
      shell_.dialogs.Show({"Would you like to save the calibration data?", question::kSaveCalibration,
                           MessageIcon::Question, MessageButtons::YesNo});
  if (answer == MessageAnswer::Yes) Save();
}

bool LevelCalibration::MayLeaveRows() {
  if (!SaveMissed()) return true;
  const FlagRaised asking(asking_);
  const MessageAnswer answer =
      shell_.dialogs.Show({"The calibration data has not been saved.\r\nSave it?", question::kSaveCalibration,
                           MessageIcon::Question, MessageButtons::YesNoCancel});
  if (answer == MessageAnswer::Yes) return Save();
  wanted_ = answer != MessageAnswer::No;
  return !wanted_;
}

bool LevelCalibration::Save() {
  wanted_ = true;
  const FlagRaised asking(asking_);
  const auto path = shell_.dialogs.SaveFile({"Enter Calibration Filename", "Calibration File (*.cal)|*.cal",
                                             shell_.settings.GetDataDir(datakind::kCalibrations)});
  if (!path || !SaveCal(shell_, *path, CompleteRows(rows_), CalInfoOf(setup_))) return false;
  saved_ = true;
  return true;
}

}  // namespace hylden
