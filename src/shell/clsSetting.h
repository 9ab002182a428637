#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "text/RuntimeError.h"

namespace hylden {

/// A failed settings operation; the number tells which kind, the source which operation.
class SettingError : public RuntimeError {
 public:
  SettingError(int number, std::string source, const std::string& description)
      : RuntimeError(number, description), source_(std::move(source)) {}
  /// "CSetting.GetSettingStr"
  const std::string& Source() const { return source_; }

 private:
  std::string source_;
};

/// By what a file is known to be as it was.
struct FileState {
  std::string Path;
  std::filesystem::file_time_type Written;
  std::uintmax_t Size = 0;
  bool operator==(const FileState&) const = default;
};

/// A settings file of sections and keys. Names match without regard to case; blanks around a value and one matching
/// pair of quotes around it drop on reading; lines that begin with ";" are comments. A write changes its own line and
/// leaves the rest of the file as it was. A value read is cut to 127 characters, a list to 2047. A missing file,
/// section or key is no error: the default comes back; a file that is there but can't be read is one. A value that
/// can't be written is no error here, a key that can't be deleted is one. @throws SettingError
class clsSetting {
 public:
  static constexpr int kKeepSaveMode = 999;

  static constexpr std::size_t kLongestValue = 127;

  /// @param programDirectory  where the file lies, without a trailing separator
  /// @param commonDirectory  where a file lies that is read as long as there is none in the program directory, and
  /// taken over into it by the first write, where it can be read; may be empty
  clsSetting(std::string programDirectory, std::string programName, std::string commonDirectory = {});

  /// 1: settings live in the file; 0: in a per-user store. The program only ever uses 1, and keeps no other store: the
  /// file serves for either.
  std::int32_t SaveMode = 0;

  void Init(const std::string& applicationName = {}, int saveMode = kKeepSaveMode);
  std::string GetSettingStr(const std::string& section, const std::string& key, const std::string& fallback);
  /// The leading whole number of the value.
  std::int16_t GetSettingInt(const std::string& section, const std::string& key, std::int16_t fallback);
  /// Key and value of every key of the section, in file order.
  std::vector<std::pair<std::string, std::string>> GetSettingAll(const std::string& section);
  std::vector<std::string> GetSectionNames();
  /// @return whether the value is in the file now; so for the next
  bool SaveSettingStr(const std::string& section, const std::string& key, const std::string& value);
  bool SaveSettingInt(const std::string& section, const std::string& key, std::int16_t value);
  /// Several keys and their values at once.
  bool SaveSettings(const std::string& section, const std::vector<std::pair<std::string, std::string>>& values);
  void DeleteKey(const std::string& section, const std::string& key);
  /// The settings file; initialises the object when nobody has.
  std::string Path();
  /// The file that is read at present: the one in the common directory as long as there is no other.
  std::string PathRead();
  /// Whether a value comes back whole.
  static bool Fits(std::string_view value);

 private:
  /// The bytes of the settings; empty when there is no file. Read again when the file has changed: an administrator or
  /// another program may have written it.
  std::string Text();
  /// The bytes that a write begins with; a common file that can't be read does not hold it up.
  std::string TextToChange();
  /// A file that has the values already is not written: each write waits for the disk.
  bool Write(const std::string& section, const std::vector<std::pair<std::string, std::string>>& values);

  std::string programDirectory_;
  std::string programName_;
  std::string commonDirectory_;
  std::string applicationName_;
  std::string kept_;  ///< the file as it was read last
  FileState keptOf_;
};

}  // namespace hylden
