#include <gtest/gtest.h>

#include "app/ConsoleJobs.h"
#include "support/TempDir.h"

namespace hylden {
namespace {

TEST(ExportRunData, ReplacesNothingUnaskedAndTellsWhatItLeavesOut) {
  const TempDir directory;
  RunOptions options;
  options.What = RunOptions::Job::Export;
  options.RunFile = directory.Write("a.run", "Test Run Data\r\n0.15, -10.0 **, 120.1, , , \r\nspoiled\r\n");
  directory.Write("a.csv", "yesterday");
  const auto export_ = [&](const char* file, bool yes) {
    options.CsvFile = directory.File(file);
    options.Yes = yes;
    testing::internal::CaptureStderr();
    const ExitState state = ExportRunData(options);
    return std::pair(state, testing::internal::GetCapturedStderr());
  };
  EXPECT_EQ(export_("a.csv", false).first, ExitState::Failed);
  EXPECT_EQ(directory.Read("a.csv"), "yesterday");
  EXPECT_EQ(export_("a.run", true).first, ExitState::Failed) << "it would replace what is exported";
  EXPECT_EQ(export_("no/a.csv", true).first, ExitState::Failed);
  const auto [state, told] = export_("a.csv", true);
  EXPECT_EQ(state, ExitState::Failed) << "a script has to notice";
  EXPECT_NE(told.find("Line 3 is none of run data"), std::string::npos) << told;
  EXPECT_NE(directory.Read("a.csv").find("step,1,0.15,-10.0,120.1,"), std::string::npos);
}

}  // namespace
}  // namespace hylden
