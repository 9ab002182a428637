#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace hylden {

/// A directory of its own for a test; gone with the object.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  std::string Path() const { return path_.string(); }
  /// The path of a file in it; the file need not exist.
  std::string File(std::string_view name) const { return (path_ / name).string(); }
  /// Writes the bytes as they are, makes directories on the way, and returns the path.
  std::string Write(std::string_view name, std::string_view bytes) const;
  /// The bytes of a file; a missing one fails the test.
  std::string Read(std::string_view name) const;
  bool Exists(std::string_view name) const;

 private:
  std::filesystem::path path_;
};

/// Makes a directory the current one for as long as it lives.
class WorkingDirectory {
 public:
  explicit WorkingDirectory(const std::string& path) : before_(std::filesystem::current_path()) {
    std::filesystem::current_path(path);
  }
  ~WorkingDirectory() {
    std::error_code ignored;
    std::filesystem::current_path(before_, ignored);
  }
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;

 private:
  std::filesystem::path before_;
};

}  // namespace hylden
