#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "shell/Failure.h"
#include "text/RecordFile.h"

namespace hylden {

class InterpClass;
struct Documents;
struct Instruments;

/// A part of what a run is made of, by its content: two files of the same content are the same part.
struct RunPart {
  std::string Name;  ///< kind and file: "cable loss file meter-cable.los"
  std::uint32_t Checksum = 0;
};
/// In an order of their own for each kind of run.
using RunParts = std::vector<RunPart>;

/// @param file  may be empty; its folder does not count
RunPart PartOf(std::string_view kind, const std::string& file, std::string_view content);

/// What a record holds, apart from where the files lie that it names: those are parts themselves.
template <class Record>
std::string ContentOf(Record record) {
  if constexpr (requires { FileFields(record); })
    for (std::string* file : FileFields(record)) file->clear();
  return RecordText(std::move(record));
}
/// The points of a table; nothing for one that is not in use.
std::string ContentOf(const InterpClass& table);

/// The equipment and the definitions of its instruments, as they are loaded.
void AddStation(RunParts& parts, const Documents& documents, const Instruments& instruments);

/// Whether a run is made of what it was made of then; the first part that differs is named.
Done SameParts(const RunParts& then, const RunParts& now);

}  // namespace hylden
