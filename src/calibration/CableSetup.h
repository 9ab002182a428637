#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "documents/Equip.h"
#include "measure/ReadFreq.h"
#include "shell/FormFields.h"

namespace hylden {

/// How a cable insertion-loss calibration is run. Frequencies and the linear step in MHz, the level in dBm, the dwell
/// in seconds. It lives as long as the program; no file holds it.
struct CableSetup {
  double StartFreq = 0, StopFreq = 0;
  hylden::StepType StepType = hylden::StepType::Log;
  double LinearStep = 0;
  double LogStep = 1;  ///< percent
  std::string ListFile;
  double Dwell = 1;
  float Level = -60;

  bool Steps(hylden::StepType type) const { return StepType == type; }
};

/// The fields of frmCblSetup.
void FormFields(FormWalker& f, CableSetup& s);

/// The entries that show a setup; one without a range has to have it typed.
FormEntries EntriesOf(const CableSetup& setup);

/// Checks the entries in the form's order; they are taken into the setup when all are good.
/// @return the first failure
std::optional<EntryFailure> ValidateCableSetup(const FormEntries& entries, CableSetup& setup);

/// Whether the station has what the calibration needs.
std::optional<StartFailure> CheckCableStation(const EquipRecord& equipment);
/// The same, and whether the definitions of the instruments could be loaded.
std::optional<StartFailure> CheckCableStation(const Equip& equipment);

}  // namespace hylden
