#pragma once

#include <string>
#include <string_view>

namespace hylden {

class Clock;

/// A name to save what was recorded under: what it was made of and when, "radio 2026-11-23 14-05.run".
/// @param document  path of the definition or setup, whose own name is taken, or a plain word
/// @param suffix    ".run"
std::string ProposedName(const std::string& document, const Clock& clock, std::string_view suffix);

}  // namespace hylden
