#include "documents/CalSetup.h"

#include "documents/DocumentFile.h"
#include "measure/ReadFreq.h"
#include "text/Numbers.h"

namespace hylden {
namespace {

constexpr double kOpeningStartMHz = 0.15, kOpeningStopMHz = 80;
constexpr float kOpeningLevelDbm = -60;

}  // namespace

std::optional<StartFailure> CheckStation(const CalSetupRecord& setup, const EquipRecord& equipment) {
  constexpr int kInstrumentTab = 0, kFactorTab = 1;
  const bool forward = setup.RecordsForward(), reverse = setup.RecordsReverse();
  const struct {
    bool missing;
    const char* text;
    int tab;
  } checks[] = {
      {equipment.SigGenFile.empty() || equipment.MeterFile.empty(),
       "The signal generator and meter must both be selected", kInstrumentTab},
      {forward && equipment.PwrMtrFile.empty(), "The power meter must be selected for this calibration",
       kInstrumentTab},
      {forward && equipment.FwdPortFile.empty(), "No forward coupler port file has been selected", kFactorTab},
      {reverse && !equipment.Is(AmpConfig::DualFwdRev), "Power Meter must be dual channel for this calibration",
       kInstrumentTab},
      {reverse && equipment.RevPortFile.empty(), "No reverse coupler port file has been selected", kFactorTab},
      {equipment.CableLossFile.empty(), "No cable loss file has been selected", kFactorTab},
  };
  for (const auto& check : checks)
    if (check.missing) return StartFailure{check.text, check.tab};
  return CheckAmplifier(equipment);
}

std::optional<StartFailure> CheckStation(const CalSetupRecord& setup, const Equip& equipment) {
  if (auto failure = CheckStation(setup, equipment.Record)) return failure;
  return equipment.CheckDefinitions(true, setup.RecordsForward());
}

double CouplingFactorDb(CouplingMethod method, float userDefinedDb) {
  switch (method) {
    case CouplingMethod::Clamp150Ohm:
      return 15.5;
    case CouplingMethod::CurrentClamp50Ohm:
      return 6;
    case CouplingMethod::CurrentClampDirect:
      return 0;
    case CouplingMethod::UserDefined:
      return double{userDefinedDb};
  }
  return 0;
}

std::string FreqRangeText(double lowestMHz, double highestMHz) {
  return ShortestText(lowestMHz) + " - " + ShortestText(highestMHz);
}

CalInfoRec CalInfoOf(const CalSetupRecord& setup) {
  CalInfoRec info;
  info.SetupDescription = setup.SetupDescription;
  if (setup.HasOwnFactor())
    info.SetupDescription += (setup.SetupDescription.empty() ? "" : ", ") + std::string("coupling factor ") +
                             ShortestText(setup.UserDefinedFactor) + " dB";
  info.AmpUsed = setup.AmpUsed;
  info.DeviceDescription = setup.DeviceDescription;
  info.TestLevel = setup.HasLevelFile() ? setup.LimitFile : ShortestText(setup.CalLevel) + "v";
  info.FreqRange = FreqRangeText(setup.StartFreq, setup.StopFreq);
  info.CouplingMethod = setup.CouplingMethod;
  return info;
}

Done CalSetup::LoadDef(const std::string& path) {
  return LoadDocument("CalSetup.LoadDef", path, Record, Saved, files_);
}

Done CalSetup::SaveDef(const std::string& path) {
  return SaveDocument("CalSetup.SaveDef", path, Record, Saved, files_, true);
}

Done CalSetup::LoadFreqList(const std::string& path) {
  return ReadFreq::FileTolist(path).and_then([&](const std::vector<double>& list) -> Done {
    if (list.empty()) return Because();
    Record.StartFreq = list.front();
    Record.StopFreq = list.back();
    return {};
  });
}

void CalSetup::SetOpeningDefaults(double meterSettling) {
  // No setup has a range of 0; 0 dBm and no dwell are settings like any other.
  const bool isNew = Record.StartFreq == 0 && Record.StopFreq == 0;
  if (isNew && Record.InitLevel == 0) Record.InitLevel = kOpeningLevelDbm;
  if (isNew && Record.Dwell == 0) Record.Dwell = meterSettling;
  if (Record.StartFreq == 0) Record.StartFreq = kOpeningStartMHz;
  if (Record.StopFreq == 0) Record.StopFreq = kOpeningStopMHz;
  if (isNew) Saved = Record;
}

}  // namespace hylden
