#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/native/GpibLibrary.h"

namespace hylden {

/// The real libraries whose shapes the test libraries have, by file name.
inline constexpr const char kLinuxGpib[] = "libgpib.so.0";  ///< a Send's mode 1 is EOI, 2 appends a line feed
inline constexpr const char kNi4882[] = "libni4882.so.1";   ///< 2 is EOI; fills status cells that are registered
inline constexpr const char kRenamed[] = "renamed.so";      ///< Linux-GPIB's under another name, one status for all

/// A GPIB library of the tests, loaded from its file, with a bus behind its functions.
/// @param bus  takes every call with the bytes that the library puts on the bus, and kDabEnd when EOI is on the last
inline GpibLibrary OpenTestLibrary(const std::string& file, GpibDriver& bus) {
  GpibLibrary library = OpenGpibLibrary(HYLDEN_TEST_LIBRARIES + file);
  EXPECT_EQ(library.Fault, "");
  reinterpret_cast<void (*)(GpibDriver*)>(library.Find("test_attach"))(&bus);
  return library;
}

}  // namespace hylden
