#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hylden {

/// The file's bytes. The path falls back to a match without regard to case (see ExistingPath).
/// @throws RuntimeError FileNotFound, PathNotFound, DeviceIoError (a read that fails), PathFileAccessError (a
/// directory, a pipe, a device, no permission, more than 256 MiB)
std::string ReadFileBytes(const std::string& path);

/// The file's text as UTF-8, without the end-of-file character of DOS at its end.
/// @throws RuntimeError as ReadFileBytes
std::string ReadTextFile(const std::string& path);

/// Reads a text line by line; CR LF, LF and CR end a line, a last line may lack its end.
class LineReader {
 public:
  explicit LineReader(std::string text);
  /// True when no line is left. A text that ends with a line end has no further empty line.
  bool AtEnd() const;
  /// @throws RuntimeError InputPastEndOfFile when no line is left.
  std::string ReadLine() { return std::string(NextLine()); }
  /// The same without a copy; the view holds as long as the reader.
  std::string_view NextLine();

 private:
  std::string text_;
  std::size_t position_ = 0;
};

/// A file's new content, written beside it and not yet in its place: when several files belong together, each is
/// written before the first is replaced; without Place the old file stays as it is. A symbolic link keeps pointing at
/// the replaced file; permissions are kept; a file without write permission is refused. A device is written at once.
/// What is written, and what stands in its place, is on the disk when the call returns: a power cut leaves the old file
/// or the new one, whole.
class FileReplacement {
 public:
  /// @throws RuntimeError PathNotFound, PathFileAccessError, DiskFull, PermissionDenied; the old file is untouched
  FileReplacement(const std::string& path, std::string_view content);
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;

  /// @throws RuntimeError; the old file is untouched, unless the disk fails after the new one has taken its place
  void Place();

  // The steps of a save that has another file beside it, see FilePair.h.

  /// The file that is replaced; empty for a device.
  const std::filesystem::path& Target() const { return target_; }
  /// Gives what is written another name; it still goes with the object. @throws RuntimeError; the name is as it was
  void MoveTo(const std::filesystem::path& path);
  /// What is written stays where it is.
  void Keep() { written_.Path.clear(); }

 private:
  struct Temporary {
    std::filesystem::path Path;  ///< empty: nothing to place
    ~Temporary();
  };

  std::filesystem::path target_;
  Temporary written_;
};

/// The path that a save ends under: the name as given, in a folder that may be spelled in another case or with "\".
std::string SavePath(const std::string& path);
/// The file that a save replaces or makes: what SavePath leads to behind symbolic links.
std::filesystem::path SaveTarget(const std::string& path);

/// Waits until the file's name is on the disk. @throws RuntimeError
void SyncFolderOf(const std::filesystem::path& file);
/// Throws what an `errno` of the file system means to the operator. @throws RuntimeError
[[noreturn]] void FailWith(int code);

/// Why a file of so many bytes can't be saved under this name, as far as can be told beforehand; nothing when it can.
/// Only what stays a file is taken: what a device or a pipe swallows is not kept.
std::optional<std::string> SaveObstacle(const std::string& path, std::size_t size);

/// Replaces the file as a whole, or leaves it untouched. @throws RuntimeError as FileReplacement
void ReplaceFile(const std::string& path, std::string_view content);

/// Lines joined, each ended by CR LF.
std::string JoinLines(const std::vector<std::string>& lines);

}  // namespace hylden
