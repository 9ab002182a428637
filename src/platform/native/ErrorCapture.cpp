#include "platform/native/ErrorCapture.h"

#include <utility>

#ifdef __linux__
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#endif

namespace hylden {

#ifdef __linux__

namespace {

/// Standard error is the whole program's: two that put back what each has found would leave it lost.
std::atomic_flag capturing = ATOMIC_FLAG_INIT;

void PutInPlaceOfStandardError(int file) {
  while (dup2(file, STDERR_FILENO) < 0 && (errno == EINTR || errno == EBUSY)) continue;
}

}  // namespace

ErrorCapture::ErrorCapture() : file_(memfd_create("standard-error", MFD_CLOEXEC)) {}

ErrorCapture::~ErrorCapture() {
  if (file_ >= 0) close(file_);
}

ErrorCapture::Scope::Scope(ErrorCapture& capture) : capture_(capture) {
  if (capture_.file_ < 0 || capturing.test_and_set()) return;
  before_ = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (before_ < 0) {
    capturing.clear();
    return;
  }
  PutInPlaceOfStandardError(capture_.file_);
}

ErrorCapture::Scope::~Scope() {
  if (before_ < 0) return;
  PutInPlaceOfStandardError(before_);
  close(before_);
  capturing.clear();
  capture_.Collect();
}

void ErrorCapture::Collect() {
  const off_t written = lseek(file_, 0, SEEK_CUR);
  if (written <= 0) return;
  std::string piece(std::min(static_cast<std::size_t>(written), kMost), '\0');
  const ssize_t count = pread(file_, piece.data(), piece.size(), written - static_cast<off_t>(piece.size()));
  text_.append(piece, 0, count < 0 ? 0 : static_cast<std::size_t>(count));
  if (text_.size() > kMost) text_.erase(0, text_.size() - kMost);
  if (ftruncate(file_, 0) == 0) lseek(file_, 0, SEEK_SET);
}

#else

ErrorCapture::ErrorCapture() = default;
ErrorCapture::~ErrorCapture() = default;
ErrorCapture::Scope::Scope(ErrorCapture& capture) : capture_(capture) {}
ErrorCapture::Scope::~Scope() = default;
void ErrorCapture::Collect() {}

#endif

std::string ErrorCapture::Take() {
  return std::exchange(text_, {});
}

}  // namespace hylden
