#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "shell/clsSetting.h"

namespace hylden {

/// The data kinds, each a section of the settings file with its own directory.
namespace datakind {
inline constexpr std::string_view kEquip = "Equip", kCalibrations = "Calibrations", kTestSetups = "Test_Setups",
                                  kTestResults = "Test_Results", kCables = "Cables", kFactors = "Factors",
                                  kProbes = "Probes", kFreqList = "FreqList", kInsertionLoss = "Insertion_Loss";
}

/// The windows whose place is remembered.
namespace windowkey {
inline constexpr std::string_view kRunTestForm = "RunTestForm", kManualForm = "ManualForm", kRunButtons = "RunButtons";
}

/// The program's settings by name, kept in Hylden.ini in the program directory.
class INISettings {
 public:
  explicit INISettings(std::string programDirectory);

  const std::string& ProgramDirectory() const { return programDirectory_; }

  /// Where files of this kind live; the program directory until it is set.
  std::string GetDataDir(std::string_view kind);
  void SaveDataDir(std::string_view kind, const std::string& path);
  std::string GetDefaultEquipFile();
  void SaveDefaultEquipFile(const std::string& path);
  /// The run log is on when positive.
  std::int16_t GetLogToFile();
  /// "left,top" in twips; empty when never saved.
  std::string GetFormPosition(std::string_view window);
  void SaveFormPosition(std::string_view window, const std::string& position);
  /// The store itself, for settings without an accessor.
  clsSetting& Store() { return store_; }

 private:
  std::string programDirectory_;
  clsSetting store_;
};

}  // namespace hylden
