#include "text/FilePair.h"

#include <cerrno>
#include <filesystem>

#include "text/RuntimeError.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

namespace fs = std::filesystem;

fs::path WaitingPath(const fs::path& target) {
  return target.parent_path() / (".hylden-new-" + target.filename().string());
}

/// Another program that has come to the same pair may have done it meanwhile.
void PutInPlace(const fs::path& target) {
  std::error_code failed;
  fs::rename(WaitingPath(target), target, failed);
  if (failed && failed != std::errc::no_such_file_or_directory) FailWith(failed.value());
}

void SyncFolders(const fs::path& first, const fs::path& second) {
  SyncFolderOf(first);
  if (first.parent_path() != second.parent_path()) SyncFolderOf(second);
}

}  // namespace

void PlacePair(FileReplacement& first, FileReplacement& second) {
  const fs::path one = first.Target(), other = second.Target();
  if (one.empty() || other.empty()) return first.Place(), second.Place();  // a device keeps nothing
  first.MoveTo(WaitingPath(one));
  second.MoveTo(WaitingPath(other));
  SyncFolders(one, other);
  first.MoveTo(one);
  first.Keep();
  second.Keep();
  PutInPlace(other);
  SyncFolders(one, other);
}

void SettlePair(const std::string& first, const std::string& second) {
  const fs::path one = SaveTarget(first), other = SaveTarget(second);
  std::error_code ignored;
  if (!fs::exists(WaitingPath(other), ignored)) return;
  try {
    PutInPlace(one);
    PutInPlace(other);
    SyncFolders(one, other);
  } catch (const RuntimeError& error) {
    throw RuntimeError(error.Number(), "A save was cut off and can't be finished: " + error.Description());
  }
}

}  // namespace hylden
