#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Directories.h"
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
inline constexpr std::string_view kRunTestForm = "RunTestForm", kManualForm = "ManualForm", kRunButtons = "RunButtons",
                                  kRunCalForm = "RunCalForm", kRunCablCalForm = "RunCablCalForm";
}

/// The program's settings by name, kept in Hylden.ini in the program directory. Settings hold nobody up: one that can't
/// be read has its default.
class INISettings {
 public:
  explicit INISettings(Directories directories);

  const std::string& ProgramDirectory() const { return directories_.Program; }
  /// Where the user's files begin.
  const std::string& FilesDirectory() const {
    return directories_.Data.empty() ? directories_.Program : directories_.Data;
  }
  /// What came with the program; may be empty.
  const std::string& SharedDirectory() const { return directories_.Shared; }

  /// Shows the operator a text; false when this is no moment for it. Called once for settings that can't be read, and
  /// once for settings that can't be kept.
  std::function<bool(const std::string& text)> onTrouble;

  /// A setting, or all of a section, without an accessor of its own.
  std::string Get(const std::string& section, const std::string& key, const std::string& fallback);
  std::vector<std::pair<std::string, std::string>> GetAll(const std::string& section);
  void Save(const std::string& section, const std::string& key, const std::string& value) {
    SaveAll(section, {{key, value}});
  }
  void SaveAll(const std::string& section, const std::vector<std::pair<std::string, std::string>>& values);
  /// The same for what is only convenient to have: one that can't be kept is lost without a word.
  void SaveQuietly(const std::string& section, const std::vector<std::pair<std::string, std::string>>& values);

  /// Where files of this kind live; until it is set the program directory, or a folder of the user's documents.
  std::string GetDataDir(std::string_view kind);
  void SaveDataDir(std::string_view kind, const std::string& path);
  /// A path without a directory is also looked for beside the settings.
  std::string GetDefaultEquipFile();
  void SaveDefaultEquipFile(const std::string& path);
  /// The run log is on when positive.
  std::int16_t GetLogToFile();
  /// "left,top" in twips; empty when never saved.
  std::string GetFormPosition(std::string_view window);
  void SaveFormPosition(std::string_view window, const std::string& position);
  /// The store itself, whose failures are thrown.
  clsSetting& Store() { return store_; }

 private:
  /// What has to be told once, and whether it has been.
  struct Trouble {
    std::string Text;
    bool Told = false;
  };

  /// The value of a reading operation, or the default when it fails.
  template <class Value, class Read>
  Value Guarded(Value fallback, Read read);
  bool IsKept(const std::string& section, const std::vector<std::pair<std::string, std::string>>& values);
  void Remember(Trouble& trouble, const std::string& text);
  void TellTroubles();

  Directories directories_;
  clsSetting store_;
  Trouble unreadable_, notKept_;
};

}  // namespace hylden
