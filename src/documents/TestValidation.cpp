#include <cmath>

#include "documents/TestSetup.h"
#include "instruments/SigGen.h"
#include "measure/ReadFreq.h"
#include "text/Numbers.h"
#include "text/RuntimeError.h"

namespace hylden {
namespace {

enum Tab : int { kFrequencies = 0, kModulation = 1, kCalibration = 2, kLevel = 3 };

struct FreqLimits {
  double lowest = 0, highest = 0;
};

/// The limits of a calibration's range text; nothing when it holds no range.
std::optional<FreqLimits> LimitsOf(std::string_view range) {
  // A small frequency may be written with an exponent, whose minus is none of a range.
  std::size_t separator = range.find(" - "), length = 3;
  if (separator == std::string_view::npos) separator = range.find('-'), length = 1;
  if (separator == std::string_view::npos) return std::nullopt;
  const std::string_view first = range.substr(0, separator), second = range.substr(separator + length);
  if (first.find_first_of("0123456789") == std::string_view::npos) return std::nullopt;
  if (range.find(',') != std::string_view::npos) return std::nullopt;  // somebody's decimal sign
  const FreqLimits limits{LeadingNumber(first), LeadingNumber(second)};
  if (limits.highest <= 0 || limits.highest < limits.lowest) return std::nullopt;
  return limits;
}

/// Reads the form's boxes in their order; each step returns false at the first failure.
class Validator {
 public:
  Validator(TestDefinitionEntries& entries, TestDefinition& test) : entries_(entries), test_(test) {}

  TestValidation Run(const std::string& calFreqRange) {
    static_cast<void>(Calibration(calFreqRange) && StartFreq() && StopFreq() && SweepOrList() && Sweep() && List() &&
                      ModulationValues() && ModulationType() && Ramping() && Extrapolation() && InterDwell() &&
                      Leveling() && Probe());
    return std::move(result_);
  }

 private:
  bool Calibration(const std::string& calFreqRange) {
    // A new definition names none, and then there is no info to be checked against either.
    if (entries_.CalFile.empty()) return Refuse("No calibration setup file specified!", kCalibration);
    const std::optional<FreqLimits> limits = LimitsOf(calFreqRange);
    if (!limits)
      return Refuse("No start/stop frequencies in calibration file.\r\nTry checking calibration file data.",
                    kCalibration);
    limits_ = *limits;
    test_.CalInfoFile = entries_.CalFile;
    return true;
  }

  bool StartFreq() {
    if (!Read("txtStartFreq", kFrequencies, entries_.StartFreq, test_.StartFreq)) return false;
    if (!InRange(test_.StartFreq > 0, "txtStartFreq", kFrequencies)) return false;
    if (test_.StartFreq >= limits_.lowest) return true;
    result_.Notices.push_back("Start frequency specified, " + ShortestText(test_.StartFreq) +
                              " MHz, is less than the\r\nlowest frequency in the cal file, " +
                              ShortestText(limits_.lowest) +
                              " MHz. \r\nTesting will not happen outside the cal file limits.");
    test_.StartFreq = limits_.lowest;
    entries_.StartFreq = ShortestText(test_.StartFreq);
    return true;
  }

  bool StopFreq() {
    if (!Read("txtStopFreq", kFrequencies, entries_.StopFreq, test_.StopFreq)) return false;
    if (!InRange(test_.StopFreq > test_.StartFreq, "txtStopFreq", kFrequencies)) return false;
    if (test_.StopFreq <= limits_.highest) return true;
    result_.Notices.push_back("Stop frequency specified, " + ShortestText(test_.StopFreq) +
                              " MHz, is greater than the\r\nhighest frequency in the cal file, " +
                              ShortestText(limits_.highest) +
                              " MHz. \r\nTesting will not happen outside the cal file limits.");
    test_.StopFreq = limits_.highest;
    entries_.StopFreq = ShortestText(test_.StopFreq);
    // A start beyond the record leaves no range at all.
    return InRange(test_.StopFreq > test_.StartFreq, "txtStartFreq", kFrequencies);
  }

  bool SweepOrList() {
    if (entries_.FreqList || entries_.FreqSweep) return true;
    return Refuse("Either a swept frequency test or \r\na discrete frequency test must be specified", kFrequencies);
  }

  bool Sweep() {
    if (!Read("txtLinearStep", kFrequencies, entries_.LinearStep, test_.LinearStep) ||
        !Read("txtLogStep", kFrequencies, entries_.LogStep, test_.LogStep) ||
        !Read("txtSweepDwell", kFrequencies, entries_.SweepDwell, test_.SweepDwell))
      return false;
    test_.FreqSweep = entries_.FreqSweep;
    return !test_.FreqSweep || (StepSize() && InRange(test_.SweepDwell >= 0, "txtSweepDwell", kFrequencies));
  }

  bool StepSize() {
    if (entries_.LinStep) {
      test_.StepType = static_cast<int>(StepType::Linear);
      return InRange(test_.LinearStep > 0, "txtLinearStep", kFrequencies);
    }
    if (!entries_.LogStepChosen) return true;
    test_.StepType = static_cast<int>(StepType::Log);
    return InRange(test_.LogStep > 0, "txtLogStep", kFrequencies);
  }

  bool List() {
    if (!Read("txtDiscreteDwell", kFrequencies, entries_.DiscreteDwell, test_.DiscreteDwell)) return false;
    test_.ListFile = entries_.ListFile;
    test_.FreqList = entries_.FreqList;
    if (!test_.FreqList) return true;
    if (!InRange(test_.DiscreteDwell >= 0, "txtDiscreteDwell", kFrequencies)) return false;
    return !test_.ListFile.empty() || Refuse("No frequency list file specified", kFrequencies);
  }

  bool ModulationValues() {
    return Read("txtAmDepth", kModulation, entries_.AmDepth, test_.AmDepth) &&
           Read("txtAmModFreq", kModulation, entries_.AmModFreq, test_.AmModFreq) &&
           Read("txtFmDev", kModulation, entries_.FmDev, test_.FmDev) &&
           Read("txtFmModFreq", kModulation, entries_.FmModFreq, test_.FmModFreq) &&
           Read("txtPulseWidth", kModulation, entries_.PulseWidth, test_.PulseWidth) &&
           Read("txtPulsePeriod", kModulation, entries_.PulsePeriod, test_.PulsePeriod);
  }

  bool ModulationType() {
    const bool isKnown = entries_.ModType >= static_cast<int>(Modulation::None) &&
                         entries_.ModType <= static_cast<int>(Modulation::Pulse);
    test_.ModType = isKnown ? entries_.ModType : static_cast<int>(Modulation::None);
    if (!ModulationRanges()) return false;
    test_.ConstPeak = entries_.ConstPeak && entries_.ModOffBetweenFreqs;
    test_.ModOffBetweenFreqs = entries_.ModOffBetweenFreqs;
    test_.UseAMdepth = entries_.UseAMdepth;
    return true;
  }

  bool ModulationRanges() {
    switch (static_cast<Modulation>(test_.ModType)) {
      case Modulation::None:
        break;
      case Modulation::Am:
        return InRange(test_.AmDepth > 0 && test_.AmDepth <= 100, "txtAmDepth", kModulation) &&
               InRange(test_.AmModFreq > 0, "txtAmModFreq", kModulation);
      case Modulation::Fm:
        return InRange(test_.FmDev > 0, "txtFmDev", kModulation) &&
               InRange(test_.FmModFreq > 0, "txtFmModFreq", kModulation);
      case Modulation::Pulse:
        return InRange(test_.PulsePeriod > 0, "txtPulsePeriod", kModulation) &&
               InRange(test_.PulseWidth > 0, "txtPulseWidth", kModulation);
    }
    return true;
  }

  bool Ramping() {
    test_.LevelingMode = entries_.RealTimeLevel ? 1 : 0;
    if (!Read("txtInitLevOffset", kLevel, entries_.InitLevOffset, test_.InitLevOffset)) return false;
    if (test_.InitLevOffset > 0) test_.InitLevOffset = -test_.InitLevOffset;
    if (!Read("txtLevelInc", kLevel, entries_.LevelInc, test_.LevelInc)) return false;
    test_.LevelInc = std::abs(test_.LevelInc);
    return InRange(test_.InitLevOffset >= 0 || test_.LevelInc > 0, "txtLevelInc", kLevel);
  }

  bool Extrapolation() {
    if (!Read("txtExtrapolateTo", kCalibration, entries_.ExtrapolateTo, test_.ExtrapolateTo)) return false;
    test_.Extrapolate = entries_.Extrapolate;
    return InRange(!test_.Extrapolate || test_.ExtrapolateTo < 0, "txtExtrapolateTo", kCalibration);
  }

  bool InterDwell() {
    if (!Read("txtInterDwell", kLevel, entries_.InterDwell, test_.InterDwell)) return false;
    return InRange(test_.InterDwell >= 0, "txtInterDwell", kLevel);
  }

  bool Leveling() {
    const bool isKnown = entries_.LevelingMethod >= static_cast<int>(LevelingMethod::SigGen) &&
                         entries_.LevelingMethod <= static_cast<int>(LevelingMethod::NetPower);
    test_.LevelingMethod = isKnown ? entries_.LevelingMethod : static_cast<int>(LevelingMethod::SigGen);
    const bool pulsed = test_.ModType == static_cast<int>(Modulation::Pulse) && !test_.ModOffBetweenFreqs;
    if (!pulsed || !test_.LevelsByPower()) return true;
    return Refuse(
        "The power meter reads the mean of a pulsed signal, which is below its pulses.\r\n"
        "To level by power, pulse modulation has to be off between frequencies.",
        kModulation, "chkModOffBetweenFreqs");
  }

  bool Probe() {
    test_.MonitorProbe = entries_.MonitorProbe;
    if (test_.MonitorProbe && !Impedance()) return false;
    test_.LimitCurrent = entries_.LimitCurrent;
    if (!Read("txtLimitMargin", kLevel, entries_.LimitMargin, test_.LimitMargin)) return false;
    for (std::string* spare : {&test_.Spare1, &test_.Spare2, &test_.Spare3, &test_.Spare4, &test_.Spare5})
      spare->clear();
    return true;
  }

  bool Impedance() {
    return Read("txtEUTCircuitImpedance", kLevel, entries_.EUTCircuitImpedance, test_.EUTCircuitImpedance) &&
           InRange(test_.EUTCircuitImpedance >= 0, "txtEUTCircuitImpedance", kLevel);
  }

  bool Read(const char* control, Tab tab, const std::string& text, double& field) {
    if (!IsNumeric(text)) return Fail(control, tab, EntryFailure::Kind::NotANumber);
    field = ToDouble(text);
    return true;
  }

  bool Read(const char* control, Tab tab, const std::string& text, float& field) {
    if (!IsNumeric(text)) return Fail(control, tab, EntryFailure::Kind::NotANumber);
    try {
      field = ToSingle(text);
    } catch (const RuntimeError&) {  // a number, but too large for the field
      return Fail(control, tab, EntryFailure::Kind::OutOfRange);
    }
    return true;
  }

  bool InRange(bool isInRange, const char* control, Tab tab) {
    return isInRange || Fail(control, tab, EntryFailure::Kind::OutOfRange);
  }

  bool Fail(const char* control, Tab tab, EntryFailure::Kind reason) {
    result_.Failure = EntryFailure{control, tab, reason};
    return false;
  }

  bool Refuse(const char* text, Tab tab, const char* control = "") {
    result_.Failure = EntryFailure{control, tab, EntryFailure::Kind::Message, text};
    return false;
  }

  TestDefinitionEntries& entries_;
  TestDefinition& test_;
  FreqLimits limits_;
  TestValidation result_;
};

}  // namespace

TestValidation ValidateTestDefinition(TestDefinitionEntries& entries, const std::string& calFreqRange,
                                      TestDefinition& test) {
  return Validator(entries, test).Run(calFreqRange);
}

}  // namespace hylden
