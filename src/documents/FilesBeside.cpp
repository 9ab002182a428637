#include "documents/FilesBeside.h"

#include "text/TextFile.h"

namespace hylden {

std::string FilesBeside::Find(const std::string& name) {
  const std::string path = PathNamedIn(document_, name);
  if (path != name) found_.push_back({path, name});
  return path;
}

std::string FilesBeside::NameFor(const std::string& path, const std::string& savedAs) const {
  if (DirectoryOf(savedAs) != DirectoryOf(document_)) return path;
  for (const Found& file : found_)
    if (file.Path == path) return file.Name;
  return path;
}

}  // namespace hylden
