#pragma once

#include <optional>
#include <string>
#include <vector>

#include "documents/CalInfo.h"
#include "documents/CalSetupRecord.h"
#include "documents/Equip.h"
#include "shell/FormFields.h"

namespace hylden {

class Shell;

/// The entries that show a setup, and a message for every code in it that no option stands for.
/// @param shown  what is shown so far: its choice stays where the setup's code is none
struct CalSetupShown {
  FormEntries Entries;
  std::vector<std::string> Messages;
};
CalSetupShown EntriesOf(const CalSetupRecord& setup, const FormEntries* shown = nullptr);

/// Takes the entries into the setup in the form's order, each field as soon as it has passed.
/// @param validate  stop at the first failure; otherwise nothing is checked, and what is no number is left out
/// @return the failure; lblListFile and lblLimitFile stand for a file that has to be picked
std::optional<EntryFailure> ValidateCalSetup(const FormEntries& entries, bool validate, CalSetupRecord& setup);

/// After a click on chkLimitFwdPwr: a limit needs the forward power.
void LimitFwdPwrClicked(FormEntries& entries);
/// After a click on chkRecordFP: without forward power there is neither reverse power nor a limit.
void RecordFwdPwrClicked(FormEntries& entries);
/// After a click on chkRecordRP: reverse power needs the forward power.
void RecordRevPwrClicked(FormEntries& entries);

/// Whether the station has what the calibration needs; the first thing missing, in checking order.
std::optional<StartFailure> CheckStation(const CalSetupRecord& setup, const EquipRecord& equipment);
/// The same, and whether the definitions of the instruments could be loaded.
std::optional<StartFailure> CheckStation(const CalSetupRecord& setup, const Equip& equipment);

/// What the meter's reading at the calibration port lies below the test level, dB.
double CouplingFactorDb(CouplingMethod method, float userDefinedDb);

/// A range of frequencies, MHz, as a record's description has it: "0.15 - 80".
std::string FreqRangeText(double lowestMHz, double highestMHz);

/// What a calibration record tells about a calibration run with this setup. A factor of the operator's own stands in
/// its description.
CalInfoRec CalInfoOf(const CalSetupRecord& setup);

/// The calibration setup and its file.
class CalSetup {
 public:
  explicit CalSetup(Shell& shell) : shell_(shell) {}

  /// Files named without a directory are also looked for beside the setup.
  /// @return false after a report; the setup is then as it was
  bool LoadDef(const std::string& path);
  bool SaveDef(const std::string& path);
  /// Reads a frequency list; its first and last frequency become the setup's range. @return false after a message
  bool LoadFreqList(const std::string& path);

  /// Fills what nobody has set when the form opens: in a setup that is not new, the range only.
  /// @param meterSettling  the meter's settling time, seconds
  void SetOpeningDefaults(double meterSettling);
  /// Takes the entries; see ValidateCalSetup.
  std::optional<EntryFailure> FormToSetup(const FormEntries& entries, bool validate) {
    return ValidateCalSetup(entries, validate, Record);
  }

  /// Of the setup's coupling method, dB.
  double CouplingFactor() const { return CouplingFactorDb(Record.CouplingMethod, Record.UserDefinedFactor); }

  CalSetupRecord Record;
  /// What was loaded or saved last, or what the form began with.
  CalSetupRecord Saved;
  /// The form's current file; empty when there is none.
  std::string FileName;

 private:
  Shell& shell_;
  FilesBeside files_;
};

}  // namespace hylden
