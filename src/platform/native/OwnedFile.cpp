#include "platform/native/OwnedFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

#include "text/DiskSync.h"

namespace hylden {

namespace {

std::error_code LastError() {
  return {errno, std::generic_category()};
}

}  // namespace

std::unique_ptr<OwnedFile> OwnedFile::Make(const std::string& path, std::error_code& failure) {
  constexpr int kAttempts = 3;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    // Closed on exec: the lock goes with the last descriptor, and a sound player may outlive the program.
    const int file = open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    failure = file < 0 ? LastError() : std::error_code();
    if (file < 0) return nullptr;
    std::unique_ptr<OwnedFile> made(new OwnedFile(file, path));
    // Somebody who looked for abandoned files may have taken the empty one, and removed it.
    if (made->Lock(LOCK_EX)) {
      failure.assign(SyncFolder(std::filesystem::path(path).parent_path()), std::generic_category());
      return made;
    }
  }
  failure = std::make_error_code(std::errc::device_or_resource_busy);
  return nullptr;
}

std::unique_ptr<OwnedFile> OwnedFile::Take(const std::string& path) {
  // A pipe under this name would wait for somebody at its other end.
  constexpr int kHow = O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  int file = open(path.c_str(), O_RDWR | kHow);
  if (file < 0 && errno == EROFS) file = open(path.c_str(), O_RDONLY | kHow);
  if (file < 0) return nullptr;
  std::unique_ptr<OwnedFile> taken(new OwnedFile(file, path));
  return taken->Lock(LOCK_EX | LOCK_NB) ? std::move(taken) : nullptr;
}

OwnedFile::~OwnedFile() {
  close(file_);
}

/// Whether the file is this object's now. One that was removed before it could be locked is nobody's.
bool OwnedFile::Lock(int how) const {
  int locked = -1;
  do locked = flock(file_, how);
  while (locked != 0 && errno == EINTR);
  struct stat state {};
  return locked == 0 && fstat(file_, &state) == 0 && S_ISREG(state.st_mode) && state.st_nlink > 0;
}

std::optional<std::string> OwnedFile::Read() const {
  std::string bytes;
  char block[65536];
  for (;;) {
    const ssize_t count = pread(file_, block, sizeof block, static_cast<off_t>(bytes.size()));
    if (count == 0) return bytes;
    if (count > 0)
      bytes.append(block, static_cast<std::size_t>(count));
    else if (errno != EINTR)
      return std::nullopt;
  }
}

bool OwnedFile::Write(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = write(file_, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

std::error_code OwnedFile::Append(std::string_view bytes, Lasting lasting) {
  const off_t before = lseek(file_, 0, SEEK_END);
  if (before >= 0 && Write(bytes) && (lasting == Lasting::Process || fdatasync(file_) == 0)) return {};
  const std::error_code failure = LastError();
  // Should this fail as well, the half line shows in the checks of its reader.
  if (before >= 0 && ftruncate(file_, before) != 0) return failure;
  return failure;
}

std::error_code OwnedFile::Remove() {
  return unlink(path_.c_str()) == 0 ? std::error_code() : LastError();
}

}  // namespace hylden
