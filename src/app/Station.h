#pragma once

#include <string>
#include <vector>

#include "documents/Documents.h"
#include "instruments/BusPanel.h"
#include "instruments/Instruments.h"
#include "shell/Shell.h"

namespace hylden {

class Bench;

/// One station: what the whole program shares, built once over one shell, and the one place where its equipment is
/// handed to the drivers.
class Station {
 public:
  /// @param bench  the simulated bench when it stands for the machine's bus; must outlive the station
  explicit Station(Shell& theShell, Bench* theBench = nullptr)
      : shell(theShell), instruments(shell), documents(shell, instruments), bench(theBench) {}
  Station(const Station&) = delete;
  Station& operator=(const Station&) = delete;

  /// Makes the equipment file the current one. @return false after a message
  bool LoadEquipment(const std::string& path);
  /// Hands the loaded equipment to the drivers and the bench.
  /// @return whether all of it can be used; false after a message for each definition or entry that can't
  bool Apply();
  /// Loads the definition files of the three instruments into the drivers; one that is not named or fails leaves its
  /// driver without a definition.
  /// @return false when one of them failed, after its report
  bool LoadDefinitions();
  /// The equipment's addresses rule over the definitions', and with an IFI amplifier its band switch over the power
  /// meter's.
  void TakeAddresses();
  /// Puts the instruments, as loaded, on the simulated bench; nothing without one.
  void EquipBench();
  /// What the equipment has on the bus.
  std::vector<BusUnit> BusUnits() const;

  Shell& shell;
  Instruments instruments;
  Documents documents;
  Bench* bench;
};

}  // namespace hylden
