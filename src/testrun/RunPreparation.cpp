#include "testrun/RunPreparation.h"

#include <exception>
#include <functional>
#include <utility>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "measure/ReadFreq.h"
#include "shell/Shell.h"
#include "testrun/RunDisplay.h"

namespace hylden {

namespace {

constexpr float kStartLevelDbm = -60;
constexpr double kGenericBandSwitchMHz = 230;
// A meter that is also the power meter needs a rest between two initialisations.
constexpr double kSharedAddressWait = 5;
constexpr int kLeastListFrequencies = 2;

/// Runs every action, whatever the others do, and throws the first exception on after the last.
void RunAll(const std::vector<std::function<void()>>& actions) {
  std::exception_ptr first;
  for (const auto& action : actions) {
    try {
      action();
    } catch (...) {
      if (!first) first = std::current_exception();
    }
  }
  if (first) std::rethrow_exception(first);
}

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
      sensor_(shell, instruments, documents.equip.Record) {}

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
  const bool loaded = table.InitInterp(path);
  if (loaded && table.MinFreq() <= Test().StartFreq && table.MaxFreq() >= Test().StopFreq) return true;
  shell_.dialogs.Tell(loaded ? coverText : loadText);
  return false;
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
  up_ = {};
  display_.Status("Initializing instruments...");
  if (!BringUp()) return false;
  display_.Status("");
  return true;
}

bool RunPreparation::BringUp() {
  if (!instruments_.gpib.GpibIfc()) return Refuse("Error initializing GPIB");
  if (!instruments_.sigGen.InitSigGen(0, kStartLevelDbm)) return Refuse("Error initializing signal generator");
  up_.SigGen = true;
  return InitModulation() && InitPowerMeter() && InitMeter() && InitAmplifier();
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
  if (!instruments_.pm.InitPwrMtr()) return Refuse("Error initializing Power Meter");
  up_.PwrMtr = true;
  sensor_.Reset();
  return true;
}

bool RunPreparation::InitMeter() {
  if (!Test().MonitorProbe) return true;
  if (!WaitForSharedAddress()) return false;
  if (!instruments_.meter.InitMeter()) return Refuse("Error initializing meter");
  up_.Meter = true;
  return true;
}

bool RunPreparation::InitAmplifier() {
  const EquipRecord& equipment = documents_.equip.Record;
  if (!equipment.HasIfiAmplifier()) return instruments_.ifiAmp.IfiInit(AmpControl::Generic, kGenericBandSwitchMHz);
  if (!instruments_.ifiAmp.IfiInit(AmpControl::Ifi, equipment.IfiBandSwitch))
    return Refuse("Error initializing IFI amp");
  up_.IfiAmp = true;
  return true;
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
  const InstrumentsUp up = std::exchange(up_, {});
  RunAll({
      [&] { display_.Status("Shutting down instruments..."); },
      [&] { up.SigGen ? instruments_.sigGen.SilenceRf() : instruments_.sigGen.RfOff(); },
      [&] {
        if (up.Meter) instruments_.meter.MeterShutdown();
      },
      [&] {
        if (up.IfiAmp) instruments_.ifiAmp.IfiReset();
      },
      [&] {
        if (up.PwrMtr) instruments_.pm.PwrMtrShutdown();
      },
      [&] {
        if (up.SigGen) instruments_.sigGen.ShutdownSigGen();
      },
      [&] { display_.Status(""); },
  });
}

}  // namespace hylden
