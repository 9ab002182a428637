#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "text/RuntimeError.h"

namespace hylden {

/// A failed settings operation: the number tells which kind, the source which operation ("CSetting.GetSettingStr").
class SettingError : public RuntimeError {
 public:
  SettingError(int number, std::string source, const std::string& description)
      : RuntimeError(number, description), source_(std::move(source)) {}
  const std::string& Source() const { return source_; }

 private:
  std::string source_;
};

/// A settings file of sections and keys. Names match without regard to case; blanks around a value and one matching
/// pair of quotes around it drop on reading; lines that begin with ";" are comments. A write changes its own line and
/// leaves the rest of the file as it was. A value read is cut to 127 characters, a list to 2047. A missing file,
/// section or key is no error: the default comes back; a file that is there but can't be read is one. A value that
/// can't be written is let go in silence, a key that can't be deleted is not. @throws SettingError
class clsSetting {
 public:
  static constexpr int kKeepSaveMode = 999;

  /// @param programDirectory  where the file lies, without a trailing separator
  clsSetting(std::string programDirectory, std::string programName);

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
  void SaveSettingStr(const std::string& section, const std::string& key, const std::string& value);
  void SaveSettingInt(const std::string& section, const std::string& key, std::int16_t value);
  void DeleteKey(const std::string& section, const std::string& key);

 private:
  /// The settings file; initialises the object when nobody has.
  std::string Path();
  bool Write(const std::string& section, const std::string& key, const std::string& value);

  std::string programDirectory_;
  std::string programName_;
  std::string applicationName_;
};

}  // namespace hylden
