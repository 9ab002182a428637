#pragma once

#include <string>
#include <utility>

#include "documents/FilesBeside.h"
#include "shell/Failure.h"
#include "text/RecordFile.h"

namespace hylden {

/// Loads a document and finds the files that it names; one that fails leaves everything as it was.
/// @param context  names the operation in the report
/// @param saved  becomes what was loaded, too
template <class Record>
Done LoadDocument(const char* context, const std::string& path, Record& record, Record& saved, FilesBeside& files) {
  return Trapped(context, path, [&] {
    Record read;
    LoadRecord(path, read);
    FilesBeside beside(path);
    FindFiles(read, beside);
    record = saved = std::move(read);
    files = std::move(beside);
  });
}

/// Saves a document; it names the files beside it as it did before.
/// @param saved  becomes what was saved
template <class Record>
Done SaveDocument(const char* context, const std::string& path, const Record& record, Record& saved,
                  const FilesBeside& files, bool trailingBlank = false) {
  return Trapped(context, path, [&] {
    SaveRecord(path, WithFileNames(record, files, path), trailingBlank);
    saved = record;
  });
}

}  // namespace hylden
