#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/GpibDriver.h"

namespace hylden {

/// A shared library that drives GPIB boards. The libraries agree on the calls; what they number differently, and what
/// they want of their machine, belongs to the library.
struct GpibLibrary {
  /// The address of one of its functions; null when it has none of this name.
  using Resolver = std::function<void*(const char* name)>;

  std::string Name;    ///< under which it was opened; empty when none was
  std::string Fault;   ///< why none was, in words
  Resolver Find = {};  ///< none when there is no library
  /// Linux-GPIB's own library: it numbers the modes of a Send its own way, and its boards are files in /dev.
  bool IsLinuxGpib = false;

  /// The mode of a Send that puts EOI on the last byte, and adds none.
  int EoiMode() const { return IsLinuxGpib ? 1 : gpib::kDabEnd; }
};

/// Opens a library, which stays loaded: drivers seldom bear being unloaded.
/// @param wanted  its name or path; empty: the first one that is installed
GpibLibrary OpenGpibLibrary(const std::string& wanted = {});

/// What a board of Linux-GPIB lacks on this machine, and what to do about it; empty when nothing is missing.
/// @param device          the board's file, "/dev/gpib0"
/// @param configurations  where its configuration may stand
std::string BoardAdvice(const std::string& device, const std::vector<std::string>& configurations);

}  // namespace hylden
