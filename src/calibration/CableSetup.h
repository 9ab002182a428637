#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "documents/Equip.h"

namespace hylden {

/// How a cable insertion-loss calibration is run. Frequencies and the linear step in MHz, the level in dBm, the dwell
/// in seconds. It lives as long as the program; no file holds it.
struct CableSetup {
  double StartFreq = 0, StopFreq = 0;
  std::int32_t StepType = 0;  ///< a StepType code: 0 linear, 1 logarithmic, 2 list
  double LinearStep = 0;
  double LogStep = 1;  ///< percent
  std::string ListFile;
  double Dwell = 1;
  float Level = -60;
};

/// What the insertion-loss setup form holds; as it is before anything was set up.
struct CableSetupEntries {
  std::string StartFreq, StopFreq;
  std::int32_t StepType = 1;  ///< code of the chosen option
  std::string LinearStep, LogStep = "1";
  std::string ListFile;  ///< full path
  std::string Dwell = "1.0";
  std::string Level = "-60";
};

/// The entries that show a setup; the opening ones for a setup without a range, which has to be typed.
CableSetupEntries EntriesOf(const CableSetup& setup);

/// Checks the entries in the form's order; they are taken into the setup when all are good.
/// @return the first failure
std::optional<EntryFailure> ValidateCableSetup(const CableSetupEntries& entries, CableSetup& setup);

/// Which controls of the insertion-loss setup form can be used: those of the chosen step.
struct EnabledCableControls {
  bool LinearStep = false, LogStep = false, ListFile = false;  ///< txtLinearStep, txtLogStep, lblListFile
  bool operator==(const EnabledCableControls&) const = default;
};
EnabledCableControls EnabledControlsFor(const CableSetupEntries& entries);

/// Whether the station has what the calibration needs.
std::optional<StartFailure> CheckCableStation(const EquipRecord& equipment);
/// The same, and whether the definitions of the instruments could be loaded.
std::optional<StartFailure> CheckCableStation(const Equip& equipment);

}  // namespace hylden
