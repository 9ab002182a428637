#include "testrun/RunPreparation.h"

#include <utility>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "measure/Conversions.h"
#include "measure/ReadFreq.h"
#include "run/FactorLoading.h"
#include "run/RunDisplay.h"
#include "run/RunGuard.h"
#include "shell/Shell.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

// A meter that is also the power meter needs a rest between two initialisations.
constexpr double kSharedAddressWait = 5;
constexpr std::size_t kLeastListFrequencies = 2;

}  // namespace

RunPreparation::RunPreparation(Shell& shell, Instruments& instruments, Documents& documents, RunDisplay& display,
                               RunGuard& guard)
    : shell_(shell),
      instruments_(instruments),
      documents_(documents),
      display_(display),
      guard_(guard),
      calibration_(std::make_unique<clsCalFile>()),
      cableLoss_(shell),
      probeFactor_(shell),
      forwardPort_(shell),
      reversePort_(shell),
      sensor_(shell, instruments, documents.equip.Record),
      up_(shell, instruments, guard) {}

const TestDefinition& RunPreparation::Test() const {
  return documents_.testSetup.Definition;
}

int RunPreparation::PlanSteps(std::vector<PlanStep>& steps) {
  const TestDefinition& test = Test();
  display_.Status("Calculating frequencies and dwell times...");
  steps = PlanSweep(test);
  listReadable_ = true;
  documents_.testSetup.ListUnused = false;
  if (test.FreqList) TakeList(steps);
  ShowPlan(steps);
  return static_cast<int>(steps.size());
}

void RunPreparation::TakeList(std::vector<PlanStep>& steps) {
  auto list = ReadFreq::FileTolist(Test().ListFile);
  listReadable_ = shell_.Ok(list);
  const std::size_t count = listReadable_ ? list->size() : 0;
  if (count >= kLeastListFrequencies) {
    MergeList(steps, std::move(*list), Test());
    return;
  }
  documents_.testSetup.ListUnused = true;
  if (count > 0 && !steps.empty())
    shell_.dialogs.Tell("The frequency list holds one frequency only, and is left out:\r\n" + Test().ListFile);
}

void RunPreparation::ShowPlan(const std::vector<PlanStep>& steps) {
  display_.Plan({.Steps = static_cast<int>(steps.size()),
                 .StartMHz = Test().StartFreq,
                 .StopMHz = Test().StopFreq,
                 .EstimatedMinutes = EstimateRunSeconds(steps, Test()) / 60});
}

bool RunPreparation::LoadCalibration() {
  calibration_ = std::make_unique<clsCalFile>();
  return shell_.Ok(calibration_->LoadFile(Test().CalInfoFile));
}

bool RunPreparation::LoadRunFactors(std::vector<PlanStep>& steps) {
  const bool linear = Test().FreqSweep && Test().StepType == StepType::Linear;
  std::vector<double> frequencies;
  frequencies.reserve(steps.size());
  for (const PlanStep& step : steps) frequencies.push_back(step.Freq);
  PlanRange range(std::move(frequencies), linear ? std::optional(Test().StopFreq) : std::nullopt);
  if (!RecordCovers(range) || !LoadTables(range)) return false;
  if (range.LeftOut()) {
    steps.pop_back();
    ShowPlan(steps);
    shell_.dialogs.Tell(range.LeftOutText());
  }
  return RecordHasLevels(steps);
}

bool RunPreparation::RecordCovers(PlanRange& range) {
  const double first = calibration_->GetStartFreq(), last = calibration_->GetStopFreq();
  if (range.IsWithin(first, last)) return true;
  shell_.dialogs.Tell("Calibration file does not cover frequency range:\r\nit goes from " + ShortestText(first) +
                      " to " + ShortestText(last) + " MHz.");
  return false;
}

bool RunPreparation::LoadTables(PlanRange& range) {
  const EquipRecord& equipment = documents_.equip.Record;
  const bool probe = Test().MonitorProbe;
  const struct {
    bool wanted;
    InterpClass& table;
    const std::string& file;
    const char* loadText;
    const char* coverText;
  } tables[] = {
      {probe, cableLoss_, equipment.CableLossFile, "Error loading cable loss file.",
       "Cable loss file does not cover frequency range"},
      {probe, probeFactor_, equipment.ProbeFile, "Error loading probe factor file.",
       "Probe factor file does not cover frequency range"},
      {!equipment.FwdPortFile.empty(), forwardPort_, equipment.FwdPortFile, "Error loading foward coupling port file",
       "Forward port file does not cover frequency range"},
      {!equipment.RevPortFile.empty(), reversePort_, equipment.RevPortFile, "Error loading reverse coupling port file",
       "Reverse port file does not cover frequency range"},
  };
  for (const auto& t : tables) {
    if (t.wanted && !shell_.Ok(LoadCoveringTable(t.table, t.file, range, t.loadText, t.coverText))) return false;
  }
  return true;
}

bool RunPreparation::RecordHasLevels(const std::vector<PlanStep>& steps) {
  for (const PlanStep& step : steps) {
    if (!IsMissing(calibration_->GetSigGen(step.Freq)) && !IsMissing(calibration_->GetTestLevel(step.Freq))) continue;
    shell_.dialogs.Tell("Calibration file gives no level at " + ShortestText(step.Freq) + " MHz");
    return false;
  }
  return true;
}

bool RunPreparation::InitInstruments() {
  display_.Status("Initializing instruments...");
  if (!BringUp()) return false;
  display_.Status("");
  return true;
}

bool RunPreparation::BringUp() {
  return up_.BringUpSigGen() && InitModulation() && InitPowerMeter() && InitMeter() &&
         up_.BringUpAmplifier(documents_.equip.Record);
}

bool RunPreparation::InitModulation() {
  const TestDefinition& test = Test();
  SigGen& sigGen = instruments_.sigGen;
  const auto refuse = [&](const char* text) { return guard_.Fail(text, MessageIcon::Critical); };
  switch (test.ModType) {
    case Modulation::Am:
      if (!sigGen.AmCapable()) return refuse("Signal generator can't do Amplitude Modulation");
      return guard_.Ok(sigGen.SetAM(test.AmModFreq, test.AmDepth, test.UseAMdepth)) && guard_.Ok(sigGen.AmOn());
    case Modulation::Fm:
      if (!sigGen.FmCapable()) return refuse("Signal generator can't do Frequency Modulation");
      return guard_.Ok(sigGen.SetFM(test.FmModFreq, test.FmDev)) && guard_.Ok(sigGen.FmOn());
    case Modulation::Pulse:
      if (!sigGen.PulseCapable()) return refuse("Signal generator can't do Pulse Modulation");
      return guard_.Ok(sigGen.SetPulse(1 / test.PulsePeriod, test.PulseWidth)) && guard_.Ok(sigGen.PulseOn());
    default:
      return guard_.Ok(sigGen.ModOff());
  }
}

bool RunPreparation::InitPowerMeter() {
  if (!Test().LevelsByPower()) return true;
  if (Test().MonitorProbe && !WaitForSharedAddress()) return false;
  if (!up_.BringUpPowerMeter()) return false;
  sensor_.Reset();
  return true;
}

bool RunPreparation::InitMeter() {
  if (!Test().MonitorProbe) return true;
  return WaitForSharedAddress() && up_.BringUpMeter();
}

bool RunPreparation::WaitForSharedAddress() {
  if (instruments_.pm.Address() != instruments_.meter.Address()) return true;
  return shell_.delay.Delay(kSharedAddressWait, true);
}

void RunPreparation::ShutdownInstruments() {
  RunAll({
      [&] { display_.Status("Shutting down instruments..."); },
      [&] { up_.TakeDown(); },
      [&] { display_.Status(""); },
  });
}

}  // namespace hylden
