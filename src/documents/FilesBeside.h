#pragma once

#include <string>
#include <utility>
#include <vector>

namespace hylden {

/// The files that a document names without their directory. In memory they have the path at which they were found
/// beside it; saved in the same directory, the document names them as it did before, so that the set can be moved.
/// Saved elsewhere, it names them by their full path, whatever the working directory was.
class FilesBeside {
 public:
  FilesBeside() = default;
  /// @param document  the path from which the document was loaded
  explicit FilesBeside(const std::string& document);

  /// The path for a name as it stands in the document.
  std::string Find(const std::string& name);
  /// The name for a path when the document is saved.
  std::string NameFor(const std::string& path, const std::string& savedAs) const;

 private:
  struct Found {
    std::string Path, Name;
  };
  std::string document_;
  std::vector<Found> found_;
};

/// Finds the files that a record names; FileFields(record) lists its fields of that kind.
template <class Record>
void FindFiles(Record& record, FilesBeside& files) {
  for (std::string* const field : FileFields(record)) *field = files.Find(*field);
}

/// The record as it is saved.
template <class Record>
Record WithFileNames(Record record, const FilesBeside& files, const std::string& savedAs) {
  for (std::string* const field : FileFields(record)) *field = files.NameFor(*field, savedAs);
  return record;
}

}  // namespace hylden
