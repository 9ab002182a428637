#include "text/DiskSync.h"

#if __has_include(<unistd.h>)
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace hylden {

#if __has_include(<unistd.h>)
namespace {

int Sync(int file) {
  int result = 0;
  do result = fsync(file);
  while (result != 0 && errno == EINTR);
  if (result == 0 || errno == EINVAL || errno == ENOTSUP || errno == EROFS) return 0;
  return errno;
}

}  // namespace

int SyncFile(std::FILE* file) {
  return Sync(fileno(file));
}

int SyncFolder(const std::filesystem::path& folder) {
  const int directory = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (directory < 0) return errno == EACCES ? 0 : errno;
  const int failed = Sync(directory);
  close(directory);
  return failed;
}
#else
int SyncFile(std::FILE*) {
  return 0;
}

int SyncFolder(const std::filesystem::path&) {
  return 0;
}
#endif

}  // namespace hylden
