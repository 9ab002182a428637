#include "documents/TestSummary.h"

#include "documents/CalInfo.h"
#include "documents/TestDefinition.h"
#include "instruments/SigGen.h"
#include "measure/ReadFreq.h"
#include "text/Pattern.h"

namespace hylden {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* kFrequency = "#0.0#####";
constexpr const char* kTenths = "#0.0";

std::string DwellLine(double seconds) {
  return "               Dwell: " + Format(seconds, kTenths) + " secs";
}

void AddCalibration(Lines& lines, const TestDefinition& test, const CalInfoRec& calInfo) {
  lines.push_back("       Cal Info File: " + test.CalInfoFile);
  lines.push_back("         Description: " + calInfo.SetupDescription);
  lines.push_back("     Coupling Device: " + calInfo.DeviceDescription);
  lines.push_back("           Amplifier: " + calInfo.AmpUsed);
  lines.push_back("          Test Level: " + calInfo.TestLevel);
  if (test.Extrapolate)
    lines.push_back(" Levels in calibration file adjusted down by " + Format(test.ExtrapolateTo, kTenths) + "dB");
}

void AddSweep(Lines& lines, const TestDefinition& test) {
  if (test.StepType == StepType::Linear)
    lines.push_back("          Sweep Type: Linear, step size " + Format(test.LinearStep, kFrequency) + " MHz");
  if (test.StepType == StepType::Log)
    lines.push_back("          Sweep Type: Log, step size " + Format(test.LogStep, "#0.00") + "%");
  lines.push_back(DwellLine(test.SweepDwell));
}

void AddFrequencies(Lines& lines, const TestDefinition& test) {
  lines.push_back("          Freq Range: " + Format(test.StartFreq, kFrequency) + " - " +
                  Format(test.StopFreq, kFrequency));
  if (test.FreqSweep) AddSweep(lines, test);
  if (!test.FreqList) return;
  lines.push_back("       Discrete List: " + test.ListFile);
  lines.push_back(DwellLine(test.DiscreteDwell));
}

void AddModulation(Lines& lines, const TestDefinition& test) {
  const std::string label = "          Modulation: ";
  switch (test.ModType) {
    case Modulation::None:
      break;
    case Modulation::Am:
      lines.push_back(label + "AM " + Format(test.AmModFreq, "#0.0##") + " kHz " + Format(test.AmDepth, kTenths) + "%" +
                      (test.ConstPeak ? ", Constant Peak" : ""));
      break;
    case Modulation::Fm:
      lines.push_back(label + "FM " + Format(test.FmModFreq, "#0.0##") + " kHz Freq, " + Format(test.FmDev, kTenths) +
                      " kHz deviation");
      break;
    case Modulation::Pulse:
      lines.push_back(label + "Pulse " + Format(test.PulsePeriod, kTenths) + "mS period, " +
                      Format(test.PulseWidth, kTenths) + "mS width");
      break;
  }
}

void AddModulationOff(Lines& lines, const TestDefinition& test, SummaryForm form) {
  if (!test.ModOffBetweenFreqs) return;
  if (form == SummaryForm::Text) {
    lines.push_back(std::string("Mod off between freqs") + (test.UseAMdepth ? ", using AM depth" : "") + ".");
    return;
  }
  lines.push_back("Modulation off between frequencies");
  if (test.UseAMdepth) lines.push_back("Use AM Depth to turn off modulation between freqs");
}

void AddLeveling(Lines& lines, const TestDefinition& test) {
  lines.push_back("Initial Level Offset: " + Format(test.InitLevOffset, kTenths) + "dB");
  lines.push_back(" Max Level Increment: " + Format(test.LevelInc, kTenths) + "dB");
  lines.push_back("  Intermediate Dwell: " + Format(test.InterDwell, kTenths) + " secs");
  const std::string label = "     Leveling Method: ";
  switch (test.LevelingMethod) {
    case LevelingMethod::SigGen:
      lines.push_back(label + "Signal Generator values");
      break;
    case LevelingMethod::ForwardPower:
      lines.push_back(label + "Forward Power");
      break;
    case LevelingMethod::NetPower:
      lines.push_back(label + "Net Power");
      break;
  }
}

void AddProbe(Lines& lines, const TestDefinition& test) {
  if (!test.MonitorProbe) return;
  const std::string use =
      test.LimitCurrent ? " to limit induced level " + Format(test.LimitMargin, "0.0") + "dB relative to test level."
                        : " but not used to limit induced level.";
  lines.push_back(" Probe feedback used during test" + use);
  lines.push_back("   Circuit Impedance: " + Format(test.EUTCircuitImpedance, kTenths) + " ohms");
}

}  // namespace

std::vector<std::string> TestSummaryLines(const TestDefinition& test, const CalInfoRec& calInfo, SummaryForm form) {
  Lines lines{"                 Test Run Parameters", ""};
  AddCalibration(lines, test, calInfo);
  AddFrequencies(lines, test);
  AddModulation(lines, test);
  AddModulationOff(lines, test, form);
  AddLeveling(lines, test);
  AddProbe(lines, test);
  return lines;
}

}  // namespace hylden
