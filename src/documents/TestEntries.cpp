#include "documents/TestSetup.h"
#include "instruments/SigGen.h"
#include "measure/ReadFreq.h"
#include "text/Numbers.h"

namespace hylden {

TestDefinitionEntries EntriesOf(const TestDefinition& test) {
  TestDefinitionEntries entries;
  entries.CalFile = test.CalInfoFile;
  entries.StartFreq = ShortestText(test.StartFreq);
  entries.StopFreq = ShortestText(test.StopFreq);
  entries.FreqSweep = test.FreqSweep;
  entries.LinStep = test.StepType == static_cast<int>(StepType::Linear);
  entries.LogStepChosen = test.StepType == static_cast<int>(StepType::Log);
  entries.LinearStep = ShortestText(test.LinearStep);
  entries.LogStep = ShortestText(test.LogStep);
  entries.SweepDwell = ShortestText(test.SweepDwell);
  entries.FreqList = test.FreqList;
  entries.ListFile = test.ListFile;
  entries.DiscreteDwell = ShortestText(test.DiscreteDwell);
  entries.ModType = test.ModType;
  entries.AmDepth = ShortestText(test.AmDepth);
  entries.AmModFreq = ShortestText(test.AmModFreq);
  entries.FmDev = ShortestText(test.FmDev);
  entries.FmModFreq = ShortestText(test.FmModFreq);
  entries.PulseWidth = ShortestText(test.PulseWidth);
  entries.PulsePeriod = ShortestText(test.PulsePeriod);
  entries.ConstPeak = test.ConstPeak;
  entries.ModOffBetweenFreqs = test.ModOffBetweenFreqs;
  entries.UseAMdepth = test.UseAMdepth;
  entries.RealTimeLevel = test.LevelingMode == 1;
  entries.InitLevOffset = ShortestText(test.InitLevOffset);
  entries.LevelInc = ShortestText(test.LevelInc);
  entries.InterDwell = ShortestText(test.InterDwell);
  entries.Extrapolate = test.Extrapolate;
  entries.ExtrapolateTo = ShortestText(test.ExtrapolateTo);
  entries.LevelingMethod = test.LevelingMethod;
  entries.MonitorProbe = test.MonitorProbe;
  entries.LimitCurrent = test.LimitCurrent;
  entries.LimitMargin = ShortestText(test.LimitMargin);
  entries.EUTCircuitImpedance = ShortestText(test.EUTCircuitImpedance);
  return entries;
}

EnabledControls EnabledControlsFor(const TestDefinitionEntries& entries) {
  const auto modulation = static_cast<Modulation>(entries.ModType);
  EnabledControls enabled;
  enabled.ModOffBetweenFreqs = modulation != Modulation::None;
  enabled.AmControls = modulation == Modulation::Am;
  enabled.UseAMdepth = enabled.AmControls && entries.ModOffBetweenFreqs;
  enabled.FmControls = modulation == Modulation::Fm;
  enabled.PulseControls = modulation == Modulation::Pulse;
  enabled.ProbeControls = entries.MonitorProbe;
  enabled.LimitMargin = entries.MonitorProbe && entries.LimitCurrent;
  return enabled;
}

void ConstPeakClicked(TestDefinitionEntries& entries) {
  if (entries.ConstPeak) entries.ModOffBetweenFreqs = true;
}

void ModOffBetweenFreqsClicked(TestDefinitionEntries& entries) {
  if (!entries.ModOffBetweenFreqs) entries.ConstPeak = false;
}

std::optional<StartFailure> CheckStart(const TestDefinition& test, const EquipRecord& equipment) {
  constexpr int kInstrumentTab = 0, kFactorTab = 1;
  const bool byPower = test.LevelsByPower(), byNetPower = test.LevelsBy(LevelingMethod::NetPower);
  // Net power takes both ports of one coupler at once; a meter split by band reads the forward port of each band.
  const bool dualChannel = equipment.Is(AmpConfig::DualFwdRev);
  const struct {
    bool missing;
    const char* text;
    int tab;
  } checks[] = {
      {equipment.SigGenFile.empty(), "A signal generator must be selected", kInstrumentTab},
      {test.MonitorProbe && equipment.MeterFile.empty(),
       "A meter device must be selected for\r\nmonitoring the induced level.", kInstrumentTab},
      {test.MonitorProbe && equipment.CableLossFile.empty(), "No cable loss file has been selected", kFactorTab},
      {byPower && equipment.PwrMtrFile.empty(), "A power meter must be selected for this test", kInstrumentTab},
      {byPower && equipment.FwdPortFile.empty(), "No forward coupler port file has been selected", kFactorTab},
      {byNetPower && !dualChannel, "A dual-channel power meter must be selected\r\nfor a net-power type test.",
       kInstrumentTab},
      {byNetPower && equipment.RevPortFile.empty(), "No reverse coupler port file has been selected", kFactorTab},
  };
  for (const auto& check : checks)
    if (check.missing) return StartFailure{check.text, check.tab};
  return CheckAmplifier(equipment);
}

std::optional<StartFailure> CheckStart(const TestDefinition& test, const Equip& equipment) {
  if (auto failure = CheckStart(test, equipment.Record)) return failure;
  return equipment.CheckDefinitions(test.MonitorProbe, test.LevelsByPower());
}

}  // namespace hylden
