#pragma once

#include <string>

#include "platform/GpibDriver.h"

namespace hylden {

/// The outcome of a failed call as mnemonics: "ENOL", "EABO TIMO", "error 8" for a code without a name; empty when it
/// did not fail.
std::string GpibMnemonics(const GpibStatusCells& status);

/// The outcome of a call in an operator's words, with its mnemonics: "done", "nobody listens there (ENOL)".
std::string GpibStatusInWords(const GpibStatusCells& status);

}  // namespace hylden
