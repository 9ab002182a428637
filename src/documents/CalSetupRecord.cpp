#include "documents/CalSetupRecord.h"

namespace hylden {

void FormFields(FormWalker& f, CalSetupRecord& s) {
  f.Number("txtStartFreq", s.StartFreq, Above(0).In("MHz"));
  f.Number("txtStopFreq", s.StopFreq, Above(s.StartFreq).In("MHz"));
  f.Choice({"optLinStep", "optLogStep", "optListStep"}, s.StepType);
  if (f.Uses(s.Steps(StepType::Linear), {"txtLinearStep"})) f.Number("txtLinearStep", s.LinearStep, Above(0).In("MHz"));
  if (f.Uses(s.Steps(StepType::Log), {"txtLogStep"})) f.Number("txtLogStep", s.LogStep, Above(0).In("%"));
  if (f.Uses(s.Steps(StepType::List), {"lblListFile"})) {
    f.Text("lblListFile", s.ListFile);
    f.Require("lblListFile", !s.ListFile.empty(), "Need filename, please pick frequency list file");
  }

  f.Choice({"optLimitFlat", "optLimitFile"}, s.LimitType);
  if (f.Uses(s.HasLevelFile(), {"lblLimitFile"})) {
    f.Text("lblLimitFile", s.LimitFile);
    f.Require("lblLimitFile", !s.LimitFile.empty(), "Please select test level file");
  }
  if (f.Uses(s.HasFlatLevel(), {"txtCalLevel", "lblCalLevelUnit"}))
    f.Number("txtCalLevel", s.CalLevel, Above(0).In("V"));
  f.Number("txtMaxLev", s.MaxLevel);
  f.Number("txtMaxStep", s.MaxStep);
  f.Number("txtInitLev", s.InitLevel);
  f.Range("txtInitLev", double{s.InitLevel}, Below(double{s.MaxLevel}).In("dBm"));
  f.Range("txtMaxStep", double{s.MaxStep}, Above(0).In("dB"));
  f.Tick("chkRecordFP", s.RecordFwdPwr);
  f.Tick("chkRecordRP", s.RecordRevPwr);
  f.Tick("chkLimitFwdPwr", s.LimitFwdPwr);
  if (f.Uses(s.LimitsForward(), {"txtFwdPwrLimit", "lblFwdPwrUnit"}))
    f.Number("txtFwdPwrLimit", s.FwdPwrLimit, Above(0).In("W"));
  f.Number("txtFinalDwell", s.Dwell, AtLeast(0).In("s"), "#0.0##");

  f.Text("txtDeviceDescription", s.DeviceDescription);
  f.Text("txtAmpUsed", s.AmpUsed);
  f.Text("txtSetupDescription", s.SetupDescription);
  f.Choice({"opt150ohm", "opt50ohm", "opt50ohm50141", "optUserDefinedCF"}, s.CouplingMethod);
  if (f.Uses(s.HasOwnFactor(), {"txtUserDefCF"})) f.Number("txtUserDefCF", s.UserDefinedFactor);
}

CalSetupShown EntriesOf(const CalSetupRecord& setup, const FormEntries* shown) {
  CalSetupRecord record = setup;
  EntryShower shower;
  FormFields(shower, record);
  shower.Entries.Tick("chkRecordFP", setup.RecordsForward());
  CalSetupShown result{std::move(shower.Entries), {}};
  for (const auto& options : shower.Unknown) {
    if (shown)
      for (const std::string& option : options) result.Entries.Tick(option, shown->IsTicked(option));
    const char* const what = options.front() == "optLinStep"     ? "frequency step type"
                             : options.front() == "optLimitFlat" ? "limit type"
                                                                 : "coupling method";
    result.Messages.push_back(std::string("Error in Calsetup file, \r\nBad value for ") + what);
  }
  return result;
}

std::optional<EntryFailure> ValidateCalSetup(const FormEntries& entries, bool validate, CalSetupRecord& setup) {
  using Refuses = EntryTaker::Refuses;
  if (!validate) return TakeEntries(entries, setup, Refuses::Nothing);
  // What is no number is told before any range.
  CalSetupRecord typed = setup;
  if (auto failure = TakeEntries(entries, typed, Refuses::Text)) return failure;
  return TakeEntries(entries, setup);
}

void LimitFwdPwrClicked(FormEntries& entries) {
  if (entries.IsTicked("chkLimitFwdPwr")) entries.Tick("chkRecordFP");
}

void RecordFwdPwrClicked(FormEntries& entries) {
  if (entries.IsTicked("chkRecordFP")) return;
  entries.Tick("chkRecordRP", false);
  entries.Tick("chkLimitFwdPwr", false);
}

void RecordRevPwrClicked(FormEntries& entries) {
  if (entries.IsTicked("chkRecordRP")) entries.Tick("chkRecordFP");
}

}  // namespace hylden
