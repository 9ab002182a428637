#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "testrun/RunData.h"

namespace hylden {

/// A complete entry of the run data as a journal keeps it, and back; nothing for what is none.
std::string JournalLineOf(const RunEntry& entry);
std::optional<RunEntry> RunEntryOf(std::string_view line);

}  // namespace hylden
