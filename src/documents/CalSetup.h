#pragma once

#include <optional>
#include <string>
#include <vector>

#include "documents/CalInfo.h"
#include "documents/CalSetupRecord.h"
#include "documents/Equip.h"

namespace hylden {

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
  /// Files named without a directory are also looked for beside the setup; one that fails leaves it as it was.
  Done LoadDef(const std::string& path);
  /// Begins a new setup with what a template holds.
  Done NewFrom(const std::string& path) {
    return LoadDef(path).map([this] { FileName.clear(); });
  }
  Done SaveDef(const std::string& path);
  /// Reads a frequency list; its first and last frequency become the setup's range.
  Done LoadFreqList(const std::string& path);

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
  /// The info file of the record that was saved last since the program's start.
  std::string RecordSaved;

 private:
  FilesBeside files_;
};

}  // namespace hylden
