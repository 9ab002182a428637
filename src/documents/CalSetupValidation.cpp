#include "documents/CalSetup.h"
#include "measure/ReadFreq.h"
#include "text/Numbers.h"
#include "text/RuntimeError.h"

namespace hylden {
namespace {

enum Tab : int { kFrequency = 0, kLevel = 1, kCoupling = 2 };

double Converted(const std::string& text, double) {
  return ToDouble(text);
}
float Converted(const std::string& text, float) {
  return ToSingle(text);
}

/// Reads the form's boxes in their order; each step returns false at the first failure.
class Validator {
 public:
  Validator(const CalSetupEntries& entries, bool validate, CalSetupRecord& setup)
      : entries_(entries), validate_(validate), setup_(setup) {}

  std::optional<EntryFailure> Run() {
    static_cast<void>(FrequencyNumbers() && LevelNumbers() && CouplingNumber() && Range() && Step() && TestLevel() &&
                      GeneratorLevels() && Power() && Dwell() && CouplingAndTexts());
    return std::move(failure_);
  }

 private:
  bool Steps(StepType type) const { return entries_.StepType == static_cast<std::int32_t>(type); }
  bool Limits(LimitType type) const { return entries_.LimitType == static_cast<std::int32_t>(type); }
  bool IsUserDefined() const {
    return entries_.CouplingMethod == static_cast<std::int32_t>(CouplingMethod::UserDefined);
  }

  bool FrequencyNumbers() {
    return Number("txtStartFreq", kFrequency, entries_.StartFreq) &&
           Number("txtStopFreq", kFrequency, entries_.StopFreq) &&
           (!Steps(StepType::Linear) || Number("txtLinearStep", kFrequency, entries_.LinearStep)) &&
           (!Steps(StepType::Log) || Number("txtLogStep", kFrequency, entries_.LogStep));
  }

  bool LevelNumbers() {
    return (!Limits(LimitType::Flat) || Number("txtCalLevel", kLevel, entries_.CalLevel)) &&
           Number("txtMaxLev", kLevel, entries_.MaxLevel) && Number("txtMaxStep", kLevel, entries_.MaxStep) &&
           Number("txtInitLev", kLevel, entries_.InitLevel) &&
           (!entries_.LimitFwdPwr || Number("txtFwdPwrLimit", kLevel, entries_.FwdPwrLimit)) &&
           Number("txtFinalDwell", kLevel, entries_.FinalDwell);
  }

  bool CouplingNumber() { return !IsUserDefined() || Number("txtUserDefCF", kCoupling, entries_.UserDefCF); }

  bool Range() {
    return TakeAbove(0, "txtStartFreq", kFrequency, entries_.StartFreq, setup_.StartFreq) &&
           TakeAbove(setup_.StartFreq, "txtStopFreq", kFrequency, entries_.StopFreq, setup_.StopFreq);
  }

  bool Step() {
    if (Steps(StepType::Log) && !TakeAbove(0, "txtLogStep", kFrequency, entries_.LogStep, setup_.LogStep)) return false;
    if (Steps(StepType::Linear) && !TakeAbove(0, "txtLinearStep", kFrequency, entries_.LinearStep, setup_.LinearStep))
      return false;
    if (Steps(StepType::List)) {
      if (validate_ && entries_.ListFile.empty())
        return Refuse("lblListFile", kFrequency, "Need filename, please pick frequency list file");
      setup_.ListFile = entries_.ListFile;
    }
    if (entries_.StepType != CalSetupEntries::kNoChoice) setup_.StepType = entries_.StepType;
    return true;
  }

  bool TestLevel() {
    if (Limits(LimitType::File)) {
      if (validate_ && entries_.LimitFile.empty())
        return Refuse("lblLimitFile", kLevel, "Please select test level file");
      setup_.LimitFile = entries_.LimitFile;
    }
    if (Limits(LimitType::Flat) && !TakeAbove(0, "txtCalLevel", kLevel, entries_.CalLevel, setup_.CalLevel))
      return false;
    if (entries_.LimitType != CalSetupEntries::kNoChoice) setup_.LimitType = entries_.LimitType;
    return true;
  }

  bool GeneratorLevels() {
    return Take("txtMaxLev", kLevel, entries_.MaxLevel, setup_.MaxLevel) &&
           Take("txtInitLev", kLevel, entries_.InitLevel, setup_.InitLevel) &&
           InRange(setup_.InitLevel < setup_.MaxLevel, "txtInitLev", kLevel) &&
           Take("txtMaxStep", kLevel, entries_.MaxStep, setup_.MaxStep) &&
           InRange(setup_.MaxStep > 0, "txtMaxStep", kLevel);
  }

  bool Power() {
    setup_.RecordFwdPwr = entries_.RecordFwdPwr ? 1 : 0;
    setup_.RecordRevPwr = entries_.RecordRevPwr ? 1 : 0;
    setup_.LimitFwdPwr = entries_.LimitFwdPwr ? 1 : 0;
    if (!entries_.LimitFwdPwr) return true;
    return Take("txtFwdPwrLimit", kLevel, entries_.FwdPwrLimit, setup_.FwdPwrLimit) &&
           InRange(setup_.FwdPwrLimit > 0, "txtFwdPwrLimit", kLevel);
  }

  bool Dwell() {
    return Take("txtFinalDwell", kLevel, entries_.FinalDwell, setup_.Dwell) &&
           InRange(setup_.Dwell >= 0, "txtFinalDwell", kLevel);
  }

  bool CouplingAndTexts() {
    setup_.DeviceDescription = entries_.DeviceDescription;
    setup_.AmpUsed = entries_.AmpUsed;
    setup_.SetupDescription = entries_.SetupDescription;
    if (entries_.CouplingMethod != CalSetupEntries::kNoChoice) setup_.CouplingMethod = entries_.CouplingMethod;
    return !IsUserDefined() || Take("txtUserDefCF", kCoupling, entries_.UserDefCF, setup_.UserDefinedFactor);
  }

  bool Number(const char* control, Tab tab, const std::string& text) {
    return !validate_ || IsNumeric(text) || Fail(control, tab, EntryFailure::Kind::NotANumber);
  }

  /// Takes a number over; without validation what is none is left out.
  template <class Field>
  bool Take(const char* control, Tab tab, const std::string& text, Field& field) {
    if (!IsNumeric(text)) return !validate_ || Fail(control, tab, EntryFailure::Kind::NotANumber);
    try {
      field = Converted(text, field);
      return true;
    } catch (const RuntimeError&) {  // a number, but too large for the field
      return !validate_ || Fail(control, tab, EntryFailure::Kind::OutOfRange);
    }
  }

  /// Takes a number over if it is above the bound.
  template <class Field>
  bool TakeAbove(double bound, const char* control, Tab tab, const std::string& text, Field& field) {
    Field value = field;
    if (!Take(control, tab, text, value) || !InRange(double{value} > bound, control, tab)) return false;
    field = value;
    return true;
  }

  bool InRange(bool isInRange, const char* control, Tab tab) {
    return !validate_ || isInRange || Fail(control, tab, EntryFailure::Kind::OutOfRange);
  }

  bool Fail(const char* control, Tab tab, EntryFailure::Kind reason) {
    failure_ = EntryFailure{control, tab, reason};
    return false;
  }

  bool Refuse(const char* control, Tab tab, const char* text) {
    failure_ = EntryFailure{control, tab, EntryFailure::Kind::Message, text};
    return false;
  }

  const CalSetupEntries& entries_;
  const bool validate_;
  CalSetupRecord& setup_;
  std::optional<EntryFailure> failure_;
};

}  // namespace

std::optional<EntryFailure> ValidateCalSetup(const CalSetupEntries& entries, bool validate, CalSetupRecord& setup) {
  return Validator(entries, validate, setup).Run();
}

}  // namespace hylden
