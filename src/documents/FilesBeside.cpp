#include "documents/FilesBeside.h"

#include <filesystem>

#include "text/ExistingPath.h"

namespace hylden {

FilesBeside::FilesBeside(const std::string& document) : document_(FullPath(document)) {}

std::string FilesBeside::Find(const std::string& name) {
  std::string path = PathNamedIn(document_, name);
  if (path != name) found_.push_back({path, name});
  return path;
}

std::string FilesBeside::NameFor(const std::string& path, const std::string& savedAs) const {
  if (DirectoryOf(FullPath(savedAs)) != DirectoryOf(document_)) {
    std::error_code ignored;
    return std::filesystem::exists(ExistingPath(path), ignored) ? FullPath(path) : path;
  }
  for (const Found& file : found_)
    if (file.Path == path) return file.Name;
  return path;
}

}  // namespace hylden
