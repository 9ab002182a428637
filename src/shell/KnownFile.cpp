#include "shell/KnownFile.h"

#include <optional>

#include "text/RuntimeError.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

/// The bytes of a file; nothing where it can't be read.
std::optional<std::string> BytesOf(const std::string& path) {
  try {
    return ReadFileBytes(path);
  } catch (const RuntimeError&) {
    return std::nullopt;
  }
}

}  // namespace

KnownFile::KnownFile(const std::string& path) : path_(path), content_(BytesOf(path).value_or(std::string())) {}

std::string KnownFile::LostByReplacing() const {
  if (path_.empty()) return {};
  const std::optional<std::string> now = BytesOf(path_);
  if (!now || *now == content_) return {};
  return "The file has been changed by somebody else since it was loaded:\r\n" + path_;
}

}  // namespace hylden
