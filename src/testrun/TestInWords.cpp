#include "testrun/TestInWords.h"

#include <array>

#include "documents/CalInfo.h"
#include "documents/TestDefinition.h"
#include "measure/Conversions.h"
#include "text/Numbers.h"
#include "text/Pattern.h"

namespace hylden {

namespace {

template <class Value>
std::string With(Value value, const char* unit) {
  return ShortestText(value) + " " + unit;
}

std::string StepText(const TestDefinition& test) {
  return test.StepType == StepType::Linear ? "linear steps of " + With(test.LinearStep, "MHz")
                                           : "logarithmic steps of " + With(test.LogStep, "%") + " of the frequency";
}

void AddFrequencies(WordEntries& words, const TestDefinition& test) {
  words.emplace_back("Frequency range", With(test.StartFreq, "MHz") + " to " + With(test.StopFreq, "MHz"));
  if (test.FreqSweep) {
    words.emplace_back("Sweep", StepText(test));
    words.emplace_back("Dwell of the sweep", With(test.SweepDwell, "s") + " at each frequency");
  }
  if (!test.FreqList) return;
  words.emplace_back("Frequency list", FileNameOf(test.ListFile));
  words.emplace_back("Dwell of the list", With(test.DiscreteDwell, "s") + " at each frequency");
}

void AddModulation(WordEntries& words, const TestDefinition& test) {
  words.emplace_back("Modulation", ModulationText(test));
  if (test.Modulates(Modulation::Am) && test.ConstPeak)
    words.emplace_back("Peak", "constant: the carrier is lowered so that the modulated peak is at the test level");
  if (test.ModOffBetweenFreqs && !test.Modulates(Modulation::None))
    words.emplace_back("Between frequencies", std::string("modulation off until the level is reached") +
                                                  (test.UseAMdepth ? ", switched by the AM depth" : ""));
}

std::string MethodText(const TestDefinition& test) {
  switch (test.LevelingMethod) {
    case LevelingMethod::SigGen:
      return "substitution: the generator level of the calibration record is replayed";
    case LevelingMethod::ForwardPower:
      return "substitution: the forward power of the calibration record is reached";
    case LevelingMethod::NetPower:
      return "substitution: the net power (forward less reverse) of the calibration record is reached";
  }
  return "code " + std::to_string(static_cast<int>(test.LevelingMethod)) + ", not known";
}

void AddLevelling(WordEntries& words, const TestDefinition& test) {
  words.emplace_back("Levelling", MethodText(test));
  if (test.Extrapolate)
    words.emplace_back("Level adjustment", With(test.ExtrapolateTo, "dB") + " on every level of the record");
  words.emplace_back("Initial level offset", With(test.InitLevOffset, "dB") + " from the test level");
  words.emplace_back("Max level increment",
                     test.LevelInc == 0 ? "6 dB (none given)" : With(test.LevelInc, "dB") + " at a time");
  words.emplace_back("Intermediate dwell", With(test.InterDwell, "s") + " after each increment");
}

void AddProbe(WordEntries& words, const TestDefinition& test) {
  if (!test.MonitorProbe) return words.emplace_back("Monitor probe", "not used"), void();
  words.emplace_back("Monitor probe", test.LimitCurrent
                                          ? "measures the induced current, which limits the level"
                                          : "measures the induced current, which does not limit the level");
  if (test.LimitCurrent)
    words.emplace_back("Limit margin", With(test.LimitMargin, "dB") + " from the current of the test level");
  words.emplace_back("Circuit impedance", With(test.EUTCircuitImpedance, "Ω"));
}

}  // namespace

std::string FileNameOf(const std::string& path) {
  const auto end = path.find_last_of("/\\");
  return end == std::string::npos ? path : path.substr(end + 1);
}

std::string CountText(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string ModulationText(const TestDefinition& test) {
  switch (test.ModType) {
    case Modulation::None:
      break;
    case Modulation::Am:
      return "amplitude modulation, " + With(test.AmModFreq, "kHz") + ", depth " + With(test.AmDepth, "%");
    case Modulation::Fm:
      return "frequency modulation, " + With(test.FmModFreq, "kHz") + ", deviation " + With(test.FmDev, "kHz");
    case Modulation::Pulse:
      return "pulse modulation, period " + With(test.PulsePeriod, "ms") + ", width " + With(test.PulseWidth, "ms");
  }
  return "no modulation";
}

WordEntries TestInWords(const TestDefinition& test) {
  WordEntries words;
  AddFrequencies(words, test);
  AddModulation(words, test);
  AddLevelling(words, test);
  AddProbe(words, test);
  return words;
}

std::string CalibratedLevelText(const CalInfoRec& calibration) {
  const double volts = LeadingNumber(calibration.TestLevel);
  const bool isFlat = !calibration.TestLevel.empty() && volts > 0 && calibration.TestLevel.back() == 'v' &&
                      IsNumeric(std::string_view(calibration.TestLevel).substr(0, calibration.TestLevel.size() - 1));
  if (!isFlat)
    return calibration.TestLevel.empty() ? "not known" : "that of the file " + FileNameOf(calibration.TestLevel);
  return With(volts, "V") + " (" + Format(Conversions::VoltsToDbuv(volts), "##0.0") + " dBµV)";
}

WordEntries CalibrationInWords(const CalInfoRec& calibration) {
  constexpr std::array kMethods = {"EM clamp or coupling device, 150 Ω", "bulk current injection clamp, 50 Ω",
                                   "current clamp, read without a factor", "user-defined coupling factor"};
  const auto method = static_cast<std::size_t>(calibration.CouplingMethod);
  return {{"Description", calibration.SetupDescription},
          {"Coupling device", calibration.DeviceDescription},
          {"Coupling method", method < kMethods.size() ? kMethods[method] : "not known"},
          {"Amplifier", calibration.AmpUsed},
          {"Calibrated level", CalibratedLevelText(calibration)},
          {"Calibrated range", calibration.FreqRange + " MHz"}};
}

}  // namespace hylden
