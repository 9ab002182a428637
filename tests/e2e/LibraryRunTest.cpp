// A whole run over a shared library, as on a machine with a GPIB board.

#include <gtest/gtest.h>

#include "e2e/DemoRuns.h"
#include "platform/native/NativeGpib.h"
#include "support/TestLibrary.h"

namespace hylden {
namespace {

/// Twelve steps by net power, with FM.
std::vector<RunRow> RowsOf(DemoRuns& station) {
  station.Load("net-power-fm.tst");
  TestDefinition& test = station.Test();
  test.StartFreq = 20, test.StopFreq = 31, test.StepType = StepType::Linear, test.LinearStep = 1;
  station.Run();
  EXPECT_EQ(station.engine.Outcome(), RunOutcome::Finished) << station.dialogs.LastText();
  station.ExpectAtRest();
  std::vector<RunRow> rows;
  for (const RunEntry& entry : station.Rows()) rows.push_back(CellsOf(entry));
  return rows;
}

TEST(LibraryRun, RecordsWhatARunOnTheBenchItselfRecords) {
  DemoRuns direct;
  const std::vector<RunRow> rows = RowsOf(direct);
  ASSERT_EQ(rows.size(), 12U);
  for (const char* const file : {kLinuxGpib, kNi4882, kRenamed}) {
    SCOPED_TRACE(file);
    DemoRuns station;
    NativeGpib library(OpenTestLibrary(file, station.bench.Driver()));
    station.driver.PassTo(library);
    EXPECT_EQ(RowsOf(station), rows);
  }
}

}  // namespace
}  // namespace hylden
