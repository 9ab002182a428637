#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace hylden {

class INISettings;

/// The files of one kind that were used last, kept in the settings.
class RecentFiles {
 public:
  static constexpr int kMost = 8;

  /// @param kind  names the list, e.g. "Equip"
  RecentFiles(INISettings& settings, std::string_view kind) : settings_(settings), kind_(kind) {}

  /// The files that still exist, the last used first.
  std::vector<std::string> List() const;
  /// Puts the file at the head of the list. @return false where its path is too long for the settings to keep
  bool Add(const std::string& path);

 private:
  std::string Key(int number) const { return kind_ + std::to_string(number); }
  /// The paths as the settings have them, by their keys.
  std::map<std::string, std::string> Kept() const;

  INISettings& settings_;
  std::string kind_;
};

}  // namespace hylden
