#include "app/FailingSystem.h"

#include <dlfcn.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace {

int left = 0;  ///< calls until the one that fails; 0: it has come, or none is to fail
using How = hylden::FailingSystem::How;
How how = How::Fail;
bool struck = false;
std::string took;

template <class Function>
Function* Real(Function*, const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// Whether this call is the one, or comes behind it.
bool Strikes(int error) {
  const bool follows = struck && how == How::Vanish;
  if (!follows && (left == 0 || --left > 0)) return false;
  if (how == How::Kill) raise(SIGKILL);
  errno = follows ? ESTALE : error;
  return struck = true;
}

int Took(const char* what, int result) {
  if (result == 0) took += what;
  return result;
}

}  // namespace

namespace hylden {

void FailingSystem::Arm(int call, How kind) {
  left = call;
  how = kind;
  struck = false;
  took.clear();
}

bool FailingSystem::Disarm() {
  left = 0;
  return std::exchange(struck, false);
}

std::string FailingSystem::Took() {
  return std::exchange(took, {});
}

}  // namespace hylden

extern "C" {

FILE* fopen(const char* path, const char* mode) {
  static auto* const real = Real(&fopen, "fopen");
  return Strikes(EACCES) ? nullptr : real(path, mode);
}

size_t fwrite(const void* bytes, size_t size, size_t count, FILE* file) {
  static auto* const real = Real(&fwrite, "fwrite");
  const bool follows = struck && how == How::Vanish;
  if (left != 1 && !follows) {
    if (left > 0) --left;
    return real(bytes, size, count, file);
  }
  const size_t half = real(bytes, size, count / 2, file);
  static auto* const flush = Real(&fflush, "fflush");
  flush(file);
  return Strikes(ENOSPC) ? half : count;
}

int fflush(FILE* file) {
  static auto* const real = Real(&fflush, "fflush");
  return Strikes(ENOSPC) ? EOF : real(file);
}

int fsync(int file) {
  static auto* const real = Real(&fsync, "fsync");
  struct stat status {};
  fstat(file, &status);
  return Strikes(EIO) ? -1 : Took(S_ISDIR(status.st_mode) ? "folder " : "sync ", real(file));
}

int fclose(FILE* file) {
  static auto* const real = Real(&fclose, "fclose");
  if (!Strikes(EIO)) return real(file);
  real(file);
  errno = EIO;
  return EOF;
}

int rename(const char* from, const char* to) noexcept {
  static auto* const real = Real(&rename, "rename");
  return Strikes(EIO) ? -1 : Took("rename ", real(from, to));
}
}
