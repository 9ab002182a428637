#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace hylden {

/// A file that one process at a time has: it is locked as long as this object lives, and free again the moment its
/// process ends, however that ends.
class OwnedFile {
 public:
  /// Whether what is appended has to outlive a power cut, or the process only.
  enum class Lasting { PowerCut, Process };

  /// Makes a new file, for its user only.
  /// @return null when it can't be made, with the reason: file_exists where the name is taken
  static std::unique_ptr<OwnedFile> Make(const std::string& path, std::error_code& failure);
  /// Takes a file that is there. On a disk that has become read-only it can be read, and not removed.
  /// @return null when another process has it, or it is no ordinary file that this user may read and write
  static std::unique_ptr<OwnedFile> Take(const std::string& path);
  ~OwnedFile();
  OwnedFile(const OwnedFile&) = delete;
  OwnedFile& operator=(const OwnedFile&) = delete;

  const std::string& Path() const { return path_; }
  /// All bytes; nothing when they can't be read.
  std::optional<std::string> Read() const;
  /// Appends the bytes, all of them or none: what was written of them is taken back when the rest fails.
  std::error_code Append(std::string_view bytes, Lasting lasting);
  std::error_code Remove();

 private:
  OwnedFile(int file, std::string path) : file_(file), path_(std::move(path)) {}
  bool Lock(int how) const;
  bool Write(std::string_view bytes) const;

  int file_;
  std::string path_;
};

}  // namespace hylden
