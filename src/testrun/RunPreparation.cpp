#include "testrun/RunPreparation.h"

#include <utility>

#include "calibration/FactorLoading.h"
#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "measure/ReadFreq.h"
#include "shell/Shell.h"
#include "testrun/RunDisplay.h"

namespace hylden {

namespace {

// A meter that is also the power meter needs a rest between two initialisations.
constexpr double kSharedAddressWait = 5;
constexpr int kLeastListFrequencies = 2;

}  // namespace

RunPreparation::RunPreparation(Shell& shell, Instruments& instruments, Documents& documents, RunDisplay& display)
    : shell_(shell),
      instruments_(instruments),
      documents_(documents),
      display_(display),
      calibration_(std::make_unique<clsCalFile>(shell)),
      cableLoss_(shell),
      probeFactor_(shell),
      forwardPort_(shell),
      reversePort_(shell),
      sensor_(shell, instruments, documents.equip.Record),
      up_(shell, instruments) {}

const TestDefinition& RunPreparation::Test() const {
  return documents_.testSetup.Definition;
}

int RunPreparation::PlanSteps(std::vector<PlanStep>& steps) {
  const TestDefinition& test = Test();
  display_.Status("Calculating frequencies and dwell times...");
  display_.Range(test.StartFreq, test.StopFreq);
  steps = PlanSweep(test);
  if (test.FreqList) {
    std::vector<double> list;
    if (ReadFreq(shell_).FileTolist(test.ListFile, list) >= kLeastListFrequencies)
      MergeList(steps, std::move(list), test);
  }
  display_.Plan(static_cast<int>(steps.size()), EstimateRunSeconds(steps, test) / 60);
  return static_cast<int>(steps.size());
}

bool RunPreparation::LoadCalibration() {
  calibration_ = std::make_unique<clsCalFile>(shell_);
  return calibration_->LoadFile(Test().CalInfoFile);
}

bool RunPreparation::LoadTable(InterpClass& table, const std::string& path, const char* loadText,
                               const char* coverText) {
  return LoadCoveringTable(shell_, table, path, {Test().StartFreq, Test().StopFreq}, loadText, coverText);
}

bool RunPreparation::LoadRunFactors() {
  const EquipRecord& equipment = documents_.equip.Record;
  if (Test().MonitorProbe) {
    if (!LoadTable(cableLoss_, equipment.CableLossFile, "Error loading cable loss file.",
                   "Cable loss file does not cover frequency range"))
      return false;
    if (!LoadTable(probeFactor_, equipment.ProbeFile, "Error loading probe factor file.",
                   "Probe factor file does not cover frequency range"))
      return false;
  }
  if (!equipment.FwdPortFile.empty() &&
      !LoadTable(forwardPort_, equipment.FwdPortFile, "Error loading foward coupling port file",
                 "Forward port file does not cover frequency range"))
    return false;
  return equipment.RevPortFile.empty() ||
         LoadTable(reversePort_, equipment.RevPortFile, "Error loading reverse coupling port file",
                   "Reverse port file does not cover frequency range");
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
  switch (static_cast<Modulation>(test.ModType)) {
    case Modulation::Am:
      if (!sigGen.AmCapable()) return Refuse("Signal generator can't do Amplitude Modulation");
      return sigGen.SetAM(test.AmModFreq, test.AmDepth, test.UseAMdepth) && sigGen.AmOn();
    case Modulation::Fm:
      if (!sigGen.FmCapable()) return Refuse("Signal generator can't do Frequency Modulation");
      return sigGen.SetFM(test.FmModFreq, test.FmDev) && sigGen.FmOn();
    case Modulation::Pulse:
      if (!sigGen.PulseCapable()) return Refuse("Signal generator can't do Pulse Modulation");
      return sigGen.SetPulse(1 / test.PulsePeriod, test.PulseWidth) && sigGen.PulseOn();
    default:
      return sigGen.ModOff();
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

bool RunPreparation::Refuse(const char* text) {
  shell_.dialogs.Tell(text, MessageIcon::Critical);
  return false;
}

void RunPreparation::ShutdownInstruments() {
  RunAll({
      [&] { display_.Status("Shutting down instruments..."); },
      [&] { up_.TakeDown(); },
      [&] { display_.Status(""); },
  });
}

}  // namespace hylden
