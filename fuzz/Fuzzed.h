#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "support/TempDir.h"
#include "support/TestShell.h"
#include "text/RecordFile.h"

namespace hylden {

/// The input as text, whatever its bytes are.
inline std::string_view TextOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// The input as a file. The directory lives as long as the process: set TMPDIR to one in memory.
inline const std::string& FileOf(const std::uint8_t* data, std::size_t size, const char* name = "input") {
  static const TempDir directory;
  static std::string path;
  return path = directory.Write(name, TextOf(data, size));
}

/// What has to hold for any input.
inline void Demand(bool holds) {
  if (!holds) std::abort();
}

/// Reads the file as a record, if it is one; then what is saved of it has to come back the same.
template <class Record>
void TryRecord(const std::string& path) {
  Record record;
  try {
    LoadRecord(path, record);
  } catch (const RuntimeError&) {
    return;
  }
  static const TempDir saved;
  const std::string copy = saved.File("copy");
  SaveRecord(copy, record);
  Record again;
  try {
    LoadRecord(copy, again);
  } catch (const RuntimeError&) {
    Demand(false);
  }
  Demand(RecordText(again) == RecordText(record));
}

}  // namespace hylden

/// One input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
