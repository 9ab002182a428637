#pragma once

#include <string>
#include <utility>

namespace hylden {

/// Where the program keeps what is its own, and where its user's files start. Without trailing separators.
struct Directories {
  // A program that may write beside itself needs no other place.
  Directories(std::string program) : Program(std::move(program)) {}  // NOLINT(google-explicit-constructor)

  std::string Program;  ///< settings and help
  std::string Data;     ///< what a data directory is until it is set; empty: the program directory
  std::string Common;   ///< holds the settings of a user who has none yet; empty: there are none
  std::string Shared;   ///< what came with the program, manual and demo station; empty: only Program
};

}  // namespace hylden
