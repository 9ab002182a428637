#include "calibration/CableSetup.h"

namespace hylden {

void FormFields(FormWalker& f, CableSetup& s) {
  f.Number("txtStartFreq", s.StartFreq, Above(0).In("MHz"));
  f.Number("txtStopFreq", s.StopFreq, Above(s.StartFreq).In("MHz"));
  f.Choice({"optLinStep", "optLogStep", "optListStep"}, s.StepType);
  if (f.Uses(s.Steps(StepType::Linear), {"txtLinearStep"})) f.Number("txtLinearStep", s.LinearStep, Above(0).In("MHz"));
  if (f.Uses(s.Steps(StepType::Log), {"txtLogStep"})) f.Number("txtLogStep", s.LogStep, Above(0).In("%"));
  f.Uses(s.Steps(StepType::List), {"lblListFile"});
  f.Text("lblListFile", s.ListFile);
  f.Number("txtDwell", s.Dwell, AtLeast(0).In("s"), "##0.0##");
  f.Number("txtLev", s.Level);
}

FormEntries EntriesOf(const CableSetup& setup) {
  const bool isNew = setup.StopFreq == 0;
  FormEntries entries = EntriesShowing(isNew ? CableSetup() : setup);
  if (isNew) entries["txtStartFreq"] = entries["txtStopFreq"] = entries["txtLinearStep"] = "";
  return entries;
}

std::optional<EntryFailure> ValidateCableSetup(const FormEntries& entries, CableSetup& setup) {
  // What is no number is told before any range.
  CableSetup typed = setup;
  if (auto failure = TakeEntries(entries, typed, EntryTaker::Refuses::Text)) return failure;
  typed = setup;
  if (auto failure = TakeEntries(entries, typed)) return failure;
  setup = typed;
  return std::nullopt;
}

std::optional<StartFailure> CheckCableStation(const EquipRecord& equipment) {
  if (!equipment.SigGenFile.empty() && !equipment.MeterFile.empty()) return std::nullopt;
  return StartFailure{"The signal generator and meter must both be selected", 0};
}

std::optional<StartFailure> CheckCableStation(const Equip& equipment) {
  if (auto failure = CheckCableStation(equipment.Record)) return failure;
  return equipment.CheckDefinitions(true, false);
}

}  // namespace hylden
