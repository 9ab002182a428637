#include "app/TraceFile.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/BusTrace.h"
#include "support/ReadLines.h"
#include "support/TempDir.h"
#include "text/RuntimeError.h"

namespace hylden {
namespace {

BusEvent Note(const std::string& words) {
  BusEvent note;
  note.Bytes = words;
  return note;
}

TEST(TraceFile, HasWhatWasThereAndWhatCameSinceInOrder) {
  const TempDir directory;
  BusTrace trace;
  trace.Add(Note("before"));
  {
    TraceFile file(directory.File("trace.txt"));
    file.Follow(trace);
    for (int i = 0; i < 300; ++i) trace.Add(Note(std::to_string(i)));
  }
  const auto lines = ReadLines(directory.File("trace.txt"));
  ASSERT_EQ(lines.size(), 301U);
  EXPECT_EQ(lines.front(), "00:00:00.000 --    note: before");
  EXPECT_EQ(lines.back(), "00:00:00.000 --    note: 299");
}

TEST(TraceFile, WhatCanNotBeMadeIsThrownAndAFullDiskIsToldOnce) {
  const TempDir directory;
  EXPECT_THROW(TraceFile(directory.File("none/trace.txt")), RuntimeError);
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP();
  testing::internal::CaptureStderr();
  for (int i = 0; i < 2; ++i) {
    TraceFile full("/dev/full");
    BusEvent failed = Note("x");
    failed.Status.status = gpib::kErr;
    for (int event = 0; event < 1000; ++event) full.Add(failed);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "The trace can't be written to /dev/full: No space left on device\n"
            "The trace can't be written to /dev/full: No space left on device\n");
}

}  // namespace
}  // namespace hylden
