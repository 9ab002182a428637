#pragma once

#include <stdexcept>

namespace hylden {

/// Thrown when the program can't go on; main() ends it. The message has been shown.
class ProgramEnd : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace hylden
