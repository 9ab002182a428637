#include "platform/native/ErrorCapture.h"

#include <utility>

#ifdef __linux__
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <mutex>
#endif

namespace hylden {

#ifdef __linux__

namespace {

/// Standard error is the whole program's: two that put back what each has found would leave it lost.
std::mutex lock;
int found = -1;  ///< what it was before the scope that captures it; -1 when none does

void PutInPlaceOfStandardError(int file) {
  while (dup2(file, STDERR_FILENO) < 0 && (errno == EINTR || errno == EBUSY)) continue;
}

}  // namespace

ErrorCapture::ErrorCapture() : file_(memfd_create("standard-error", MFD_CLOEXEC)) {}

ErrorCapture::~ErrorCapture() {
  if (file_ >= 0) close(file_);
}

ErrorCapture::Scope::Scope(ErrorCapture& capture) : capture_(capture) {
  const std::lock_guard guard(lock);
  if (capture_.file_ < 0 || found >= 0) return;
  found = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  captures_ = found >= 0;
  if (captures_) PutInPlaceOfStandardError(capture_.file_);
}

ErrorCapture::Scope::~Scope() {
  if (!captures_) return;
  const std::lock_guard guard(lock);
  PutInPlaceOfStandardError(found);
  close(std::exchange(found, -1));
  capture_.Collect();
}

void ErrorCapture::PutBack() {
  const std::lock_guard guard(lock);
  if (found >= 0) PutInPlaceOfStandardError(found);
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
void ErrorCapture::PutBack() {}

#endif

std::string ErrorCapture::Take() {
  return std::exchange(text_, {});
}

}  // namespace hylden
