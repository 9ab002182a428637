#include "text/TextFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "text/DiskSync.h"
#include "text/Encoding.h"
#include "text/ExistingPath.h"
#include "text/Leftovers.h"
#include "text/RuntimeError.h"

namespace hylden {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargestFile = 256U << 20;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

[[noreturn]] void Fail(ErrorNumber number) {
  throw RuntimeError(number);
}

void CheckName(const std::string& path) {
  if (path.empty()) Fail(ErrorNumber::PathFileAccessError);
  if (path.find('\0') != std::string::npos) Fail(ErrorNumber::BadFileName);
}

std::string FolderOf(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  return folder.empty() ? "." : folder.string();
}

bool IsFolder(const std::string& path) {
  std::error_code ignored;
  return fs::is_directory(path, ignored);
}

/// Reading a pipe or a terminal would wait for somebody at the other end.
bool IsNoOrdinaryFile(const std::string& path) {
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  return fs::exists(status) && !fs::is_regular_file(status);
}

File OpenForReading(const std::string& path) {
  if (IsNoOrdinaryFile(path)) Fail(ErrorNumber::PathFileAccessError);
  File file(std::fopen(path.c_str(), "rb"));
  if (file) {
    std::error_code unknown;
    if (const auto size = fs::file_size(path, unknown); !unknown && size > kLargestFile)
      Fail(ErrorNumber::PathFileAccessError);
    return file;
  }
  if (errno == ENOENT && IsFolder(FolderOf(path))) Fail(ErrorNumber::FileNotFound);
  FailWith(errno);
}

std::string ReadAll(std::FILE* file) {
  std::string bytes;
  char block[65536];
  while (const std::size_t count = std::fread(block, 1, sizeof block, file)) {
    if (bytes.size() + count > kLargestFile) Fail(ErrorNumber::PathFileAccessError);
    bytes.append(block, count);
  }
  if (std::ferror(file)) Fail(ErrorNumber::DeviceIoError);
  return bytes;
}

/// Writes everything to the disk and closes the file: a disk that is full, or a share that is gone, may show only now.
void WriteAndClose(File file, std::string_view content) {
  const bool written = std::fwrite(content.data(), 1, content.size(), file.get()) == content.size();
  if (!written || std::fflush(file.get()) != 0) FailWith(errno);
  if (const int failed = SyncFile(file.get())) FailWith(failed);
  if (std::fclose(file.release()) != 0) FailWith(errno);
}

/// The file at the end of a chain of symbolic links, which need not exist yet.
fs::path LinkTarget(fs::path path) {
  constexpr int kLongestChain = 40;
  for (int i = 0; i < kLongestChain; ++i) {
    std::error_code failed;
    if (!fs::is_symlink(path, failed)) return path;
    const fs::path target = fs::read_symlink(path, failed);
    if (failed) FailWith(failed.value());
    path = target.is_absolute() ? target : path.parent_path() / target;
  }
  Fail(ErrorNumber::PathFileAccessError);
}

/// A file marked read-only is refused even to a user who may write everything.
void CheckWritable(const fs::path& path, fs::perms permissions) {
  constexpr fs::perms kAnyWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  if ((permissions & kAnyWrite) == fs::perms::none) Fail(ErrorNumber::PermissionDenied);
  if (const File file{std::fopen(path.string().c_str(), "r+b")}; file) return;
  if (errno == EACCES || errno == EPERM) Fail(ErrorNumber::PermissionDenied);
  FailWith(errno);
}

/// A name beside the target that nobody uses, and the file of that name.
std::pair<fs::path, File> NewFileBeside(const fs::path& target) {
  constexpr int kMostAtOnce = 1000;
  RemoveLeftovers(target.parent_path());
  for (int i = 0; i < kMostAtOnce; ++i) {
    const fs::path path = target.parent_path() / TemporaryName(i);
    if (File file{std::fopen(path.string().c_str(), "wbx")}; file) return {path, std::move(file)};
    if (errno != EEXIST) FailWith(errno);
  }
  Fail(ErrorNumber::PathFileAccessError);
}

}  // namespace

void FailWith(int code) {
  switch (code) {
    case ENOENT:
    case ENOTDIR:
      Fail(ErrorNumber::PathNotFound);
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
    case EFBIG:
      Fail(ErrorNumber::DiskFull);
    case EIO:
    case ESTALE:  // what a share comes to that is gone
    case ENODEV:
    case ENXIO:
    case ETIMEDOUT:
    case EHOSTDOWN:
      Fail(ErrorNumber::DeviceIoError);
    case EROFS:
    case EBUSY:
    case ETXTBSY:
      Fail(ErrorNumber::PermissionDenied);
    case EINVAL:
    case ENAMETOOLONG:
      Fail(ErrorNumber::BadFileName);
    default:
      Fail(ErrorNumber::PathFileAccessError);
  }
}

std::string ReadFileBytes(const std::string& path) {
  CheckName(path);
  const File file = OpenForReading(ExistingPath(path));
  return ReadAll(file.get());
}

std::string ReadTextFile(const std::string& path) {
  constexpr char kDosEndOfFile = '\x1A';
  std::string bytes = ReadFileBytes(path);
  while (bytes.ends_with(kDosEndOfFile)) bytes.pop_back();
  return DecodeText(bytes);
}

LineReader::LineReader(std::string text) : text_(std::move(text)) {}

bool LineReader::AtEnd() const {
  return position_ >= text_.size();
}

std::string_view LineReader::NextLine() {
  if (AtEnd()) Fail(ErrorNumber::InputPastEndOfFile);
  std::size_t end = position_;
  while (end < text_.size() && text_[end] != '\n' && text_[end] != '\r') ++end;
  const std::string_view line = std::string_view(text_).substr(position_, end - position_);
  const bool pair = text_.compare(end, 2, "\r\n") == 0;
  position_ = end + (pair ? 2 : 1);
  return line;
}

std::string SavePath(const std::string& path) {
  std::error_code ignored;
  if (fs::exists(path, ignored)) return path;
  const std::size_t separator = path.find_last_of("/\\");
  if (separator == std::string::npos || separator == 0) return path;
  const fs::path folder = ExistingPath(path.substr(0, separator));
  return (folder / path.substr(separator + 1)).string();
}

fs::path SaveTarget(const std::string& path) {
  return LinkTarget(SavePath(path));
}

void SyncFolderOf(const fs::path& file) {
  if (const int failed = SyncFolder(file.parent_path())) FailWith(failed);
}

FileReplacement::FileReplacement(const std::string& path, std::string_view content) {
  CheckName(path);
  const std::string chosen = SavePath(path);
  std::error_code ignored, failed;
  const fs::file_status status = fs::status(chosen, failed);
  if (failed == std::errc::filename_too_long) Fail(ErrorNumber::BadFileName);
  // Writing to a pipe would wait for somebody who reads it.
  if (fs::is_directory(status) || fs::is_fifo(status)) Fail(ErrorNumber::PathFileAccessError);
  if (fs::exists(status) && !fs::is_regular_file(status)) {  // a device has nothing to keep whole
    File device(std::fopen(chosen.c_str(), "wb"));
    if (!device) FailWith(errno);
    WriteAndClose(std::move(device), content);
    return;
  }
  target_ = LinkTarget(chosen);
  if (fs::exists(status)) CheckWritable(target_, status.permissions());
  auto [written, file] = NewFileBeside(target_);
  written_.Path = written;
  if (fs::exists(status)) fs::permissions(written, status.permissions(), ignored);  // some file systems have none
  WriteAndClose(std::move(file), content);
}

std::optional<std::string> SaveObstacle(const std::string& path, std::size_t size) {
  std::error_code ignored;
  const fs::file_status status = fs::status(SavePath(path), ignored);
  if (fs::exists(status) && !fs::is_regular_file(status)) return "It is no ordinary file";
  try {
    const FileReplacement trial(path, std::string(size, ' '));
  } catch (const RuntimeError& error) {
    return error.Description();
  }
  return std::nullopt;
}

FileReplacement::Temporary::~Temporary() {
  std::error_code ignored;
  if (!Path.empty()) fs::remove(Path, ignored);
}

void FileReplacement::MoveTo(const fs::path& path) {
  std::error_code failed;
  fs::rename(written_.Path, path, failed);
  if (failed) FailWith(failed.value());
  written_.Path = path;
}

void FileReplacement::Place() {
  if (written_.Path.empty()) return;
  MoveTo(target_);
  Keep();
  SyncFolderOf(target_);
}

void ReplaceFile(const std::string& path, std::string_view content) {
  FileReplacement(path, content).Place();
}

std::string JoinLines(const std::vector<std::string>& lines) {
  std::size_t size = 0;
  for (const std::string& line : lines) size += line.size() + 2;
  std::string text;
  text.reserve(size);
  for (const std::string& line : lines) text.append(line).append("\r\n");
  return text;
}

}  // namespace hylden
