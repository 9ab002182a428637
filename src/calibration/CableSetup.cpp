#include "calibration/CableSetup.h"

#include "measure/ReadFreq.h"
#include "text/Numbers.h"
#include "text/Pattern.h"
#include "text/RuntimeError.h"

namespace hylden {

namespace {

using Kind = EntryFailure::Kind;

bool Steps(const CableSetupEntries& entries, StepType type) {
  return entries.StepType == static_cast<std::int32_t>(type);
}

std::optional<std::string> FirstThatIsNoNumber(const CableSetupEntries& entries) {
  const struct {
    const char* control;
    const std::string& text;
    bool needed;
  } boxes[] = {
      {"txtStartFreq", entries.StartFreq, true},
      {"txtStopFreq", entries.StopFreq, true},
      {"txtLinearStep", entries.LinearStep, Steps(entries, StepType::Linear)},
      {"txtLogStep", entries.LogStep, Steps(entries, StepType::Log)},
      {"txtDwell", entries.Dwell, true},
      {"txtLev", entries.Level, true},
  };
  for (const auto& box : boxes)
    if (box.needed && !IsNumeric(box.text)) return box.control;
  return std::nullopt;
}

std::optional<std::string> FirstOutOfRange(const CableSetup& setup) {
  const struct {
    const char* control;
    bool good;
  } checks[] = {
      {"txtStartFreq", setup.StartFreq > 0},
      {"txtStopFreq", setup.StopFreq > setup.StartFreq},
      {"txtLogStep", setup.StepType != static_cast<int>(StepType::Log) || setup.LogStep > 0},
      {"txtLinearStep", setup.StepType != static_cast<int>(StepType::Linear) || setup.LinearStep > 0},
      {"txtDwell", setup.Dwell >= 0},
  };
  for (const auto& check : checks)
    if (!check.good) return check.control;
  return std::nullopt;
}

}  // namespace

CableSetupEntries EntriesOf(const CableSetup& setup) {
  CableSetupEntries entries;
  if (setup.StopFreq == 0) return entries;
  entries.StartFreq = ShortestText(setup.StartFreq);
  entries.StopFreq = ShortestText(setup.StopFreq);
  entries.StepType = setup.StepType;
  entries.LinearStep = ShortestText(setup.LinearStep);
  entries.LogStep = ShortestText(setup.LogStep);
  entries.ListFile = setup.ListFile;
  entries.Dwell = Format(setup.Dwell, "##0.0##");
  entries.Level = ShortestText(setup.Level);
  return entries;
}

std::optional<EntryFailure> ValidateCableSetup(const CableSetupEntries& entries, CableSetup& setup) {
  if (const auto control = FirstThatIsNoNumber(entries)) return EntryFailure{*control, -1, Kind::NotANumber};
  CableSetup typed = setup;
  typed.StartFreq = ToDouble(entries.StartFreq);
  typed.StopFreq = ToDouble(entries.StopFreq);
  typed.StepType = entries.StepType;
  if (Steps(entries, StepType::Linear)) typed.LinearStep = ToDouble(entries.LinearStep);
  if (Steps(entries, StepType::Log)) typed.LogStep = ToDouble(entries.LogStep);
  typed.ListFile = entries.ListFile;
  typed.Dwell = ToDouble(entries.Dwell);
  if (const auto control = FirstOutOfRange(typed)) return EntryFailure{*control, -1, Kind::OutOfRange};
  try {
    typed.Level = ToSingle(entries.Level);
  } catch (const RuntimeError&) {  // a number, but too large for the field
    return EntryFailure{"txtLev", -1, Kind::OutOfRange};
  }
  setup = typed;
  return std::nullopt;
}

EnabledCableControls EnabledControlsFor(const CableSetupEntries& entries) {
  return {Steps(entries, StepType::Linear), Steps(entries, StepType::Log), Steps(entries, StepType::List)};
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
