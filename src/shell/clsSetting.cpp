#include "shell/clsSetting.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <limits>
#include <optional>
#include <string_view>

#include "shell/Profile.h"
#include "text/Characters.h"
#include "text/ExistingPath.h"
#include "text/Numbers.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

constexpr std::size_t kLongestList = 2047;

constexpr unsigned kErrorBase = 0x80040000u;
constexpr int kWriteError = static_cast<int>(kErrorBase + 514);
constexpr int kReadError = static_cast<int>(kErrorBase + 515);
constexpr int kSectionError = static_cast<int>(kErrorBase + 516);
constexpr int kDeleteError = static_cast<int>(kErrorBase + 517);

std::string SourceOf(const char* operation) {
  return std::string("CSetting.") + operation;
}

/// Runs an operation of the class; a failure inside becomes a SettingError.
template <class Operation>
auto Numbered(int number, const char* name, const char* what, Operation operation) {
  const auto failure = [&](int innerNumber, const std::string& innerDescription) {
    return SettingError(number, SourceOf(name),
                        std::string(what) + " (" + std::to_string(innerNumber) + ", " + innerDescription + ")");
  };
  try {
    return operation();
  } catch (const SettingError&) {
    throw;
  } catch (const RuntimeError& error) {
    throw failure(error.Number(), error.Description());
  } catch (const std::bad_alloc&) {
    throw failure(7, "Out of memory");
  }
}

bool IsMissing(const std::string& path) {
  std::error_code error;
  return std::filesystem::status(path, error).type() == std::filesystem::file_type::not_found;
}

FileState StateOf(const std::string& path) {
  std::error_code unknown;
  return {path, std::filesystem::last_write_time(path, unknown), std::filesystem::file_size(path, unknown)};
}

/// A value as it comes out of the read buffer.
std::string ThroughBuffer(std::string_view value) {
  const std::string_view trimmed = Trim(FirstCharacters(value, clsSetting::kLongestValue));
  return std::string(trimmed.substr(0, trimmed.find('\0')));
}

/// A list of names as it comes out of the list buffer: the names that fit, the last one cut where the buffer ends.
std::vector<std::string> ThroughListBuffer(const std::vector<std::string>& names) {
  std::vector<std::string> kept;
  std::size_t room = kLongestList;
  for (const std::string& name : names) {
    std::string part(FirstCharacters(name, room));
    if (part.empty()) break;
    // The name's terminator takes its place, too.
    room -= std::min(room, CharacterCount(part) + 1);
    kept.push_back(std::move(part));
  }
  return kept;
}

/// The whole number at the start of a text, held within 16 bits; 0 when there is none.
std::int16_t LeadingInt16(std::string_view text) {
  text = Trim(text);
  if (text.starts_with("+")) text.remove_prefix(1);
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  using Limits = std::numeric_limits<std::int16_t>;
  if (error == std::errc::result_out_of_range) return text.starts_with("-") ? Limits::min() : Limits::max();
  return static_cast<std::int16_t>(std::clamp<std::int64_t>(number, Limits::min(), Limits::max()));
}

std::string SettingsPath(const std::string& directory, const std::string& application) {
  const bool separated = directory.ends_with('/') || directory.ends_with('\\');
  return ExistingPath(directory + (separated ? "" : "/") + application + ".ini");
}

}  // namespace

clsSetting::clsSetting(std::string programDirectory, std::string programName, std::string commonDirectory)
    : programDirectory_(std::move(programDirectory)),
      programName_(std::move(programName)),
      commonDirectory_(std::move(commonDirectory)) {}

void clsSetting::Init(const std::string& applicationName, int saveMode) {
  applicationName_ = std::string(Trim(applicationName));
  if (applicationName_.empty()) applicationName_ = std::filesystem::path(programName_).stem().string();
  if (saveMode != kKeepSaveMode) SaveMode = saveMode;
}

std::string clsSetting::Path() {
  if (applicationName_.empty()) Init();
  return SettingsPath(programDirectory_, applicationName_);
}

std::string clsSetting::PathRead() {
  std::string own = Path();
  if (commonDirectory_.empty() || !IsMissing(own)) return own;
  const std::string common = SettingsPath(commonDirectory_, applicationName_);
  return IsMissing(common) ? own : common;
}

std::string clsSetting::Text() {
  const std::string path = PathRead();
  if (IsMissing(path)) return {};
  const FileState now = StateOf(path);
  if (!(now == keptOf_)) {
    kept_ = ReadFileBytes(path);
    // A file that was written this moment may be written again within the same tick of its time.
    const bool atRest = std::filesystem::file_time_type::clock::now() - now.Written > std::chrono::seconds(2);
    keptOf_ = atRest ? now : FileState();
  }
  return kept_;
}

std::string clsSetting::TextToChange() {
  try {
    return Text();
  } catch (const RuntimeError&) {
    if (PathRead() == Path()) throw;
    return {};  // the user's own settings begin without the common ones
  }
}

bool clsSetting::Fits(std::string_view value) {
  return CharacterCount(value) <= kLongestValue;
}

std::string clsSetting::GetSettingStr(const std::string& section, const std::string& key, const std::string& fallback) {
  return Numbered(kReadError, "GetSettingStr", "Error reading Setting",
                  [&] { return ThroughBuffer(profile::Value(Text(), section, key).value_or(fallback)); });
}

std::int16_t clsSetting::GetSettingInt(const std::string& section, const std::string& key, std::int16_t fallback) {
  return Numbered(kReadError, "GetSettingInt", "Error reading Setting", [&] {
    const auto value = profile::Value(Text(), section, key);
    return value ? LeadingInt16(*value) : fallback;
  });
}

std::vector<std::pair<std::string, std::string>> clsSetting::GetSettingAll(const std::string& section) {
  return Numbered(kSectionError, "GetSettingAll", "Error reading Section", [&] {
    const std::string text = Text();
    std::vector<std::pair<std::string, std::string>> rows;
    for (const std::string& key : ThroughListBuffer(profile::Keys(text, section))) {
      rows.emplace_back(key, ThroughBuffer(profile::Value(text, section, key).value_or("")));
    }
    return rows;
  });
}

std::vector<std::string> clsSetting::GetSectionNames() {
  return Numbered(kSectionError, "GetSectionNames", "Error reading Section",
                  [&] { return ThroughListBuffer(profile::Sections(Text())); });
}

bool clsSetting::SaveSettingStr(const std::string& section, const std::string& key, const std::string& value) {
  return Numbered(kWriteError, "SaveSettingStr", "Error writing Setting", [&] {
    return Write(section, {{key, value}});
  });
}

bool clsSetting::SaveSettingInt(const std::string& section, const std::string& key, std::int16_t value) {
  return Numbered(kWriteError, "SaveSettingInt", "Error writing Setting", [&] {
    return Write(section, {{key, std::to_string(value)}});
  });
}

bool clsSetting::SaveSettings(const std::string& section,
                              const std::vector<std::pair<std::string, std::string>>& values) {
  return Numbered(kWriteError, "SaveSettings", "Error writing Setting", [&] { return Write(section, values); });
}

bool clsSetting::Write(const std::string& section, const std::vector<std::pair<std::string, std::string>>& values) {
  try {
    const std::string before = TextToChange();
    std::string text = before;
    for (const auto& [key, value] : values) text = profile::WithValue(text, section, key, value);
    if (text != before || PathRead() != Path()) ReplaceFile(Path(), text);
    return true;
  } catch (const RuntimeError&) {
    return false;  // the file is as it was
  }
}

void clsSetting::DeleteKey(const std::string& section, const std::string& key) {
  Numbered(kDeleteError, "DeleteKey", "Error Deleting Key", [&] {
    const auto text = profile::WithoutKey(Text(), section, key);
    if (!text) return;
    try {
      ReplaceFile(Path(), *text);
    } catch (const RuntimeError&) {
      throw SettingError(kDeleteError, SourceOf("DeleteKey"), "Error Deleting Key (check if file is protected)");
    }
  });
}

}  // namespace hylden
