#include "testrun/OpenedRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "support/TempDir.h"
#include "testrun/RunCompare.h"
#include "testrun/RunFilter.h"

namespace hylden {
namespace {

constexpr const char* kTitle = "                   Test Run Data\r\n";
constexpr const char* kRows =
    "1.0, -10.0 **, 120.0, 70.0, 40.0, \r\n"
    "2.0, , , , , \r\n"
    "1.0, Threshold -3.0dB, display flickers\r\n"
    "4.0, -8.0, 120.0, 71.0 **, 41.0, \r\n"
    "8.0, -7.0, 120.0, 69.0, 42.0 **, \r\n";

std::vector<RunEntry> Rows() {
  return RunDataOf(std::string(kTitle) + kRows)->Data.Entries();
}

TEST(RunFilter, EachFilterLetsItsRowsThrough) {
  const std::pair<RowFilter, std::vector<int>> cases[] = {{RowFilter::All, {1, 2, 3, 4, 5}},
                                                          {RowFilter::Thresholds, {3}},
                                                          {RowFilter::NotHeld, {2}},
                                                          {RowFilter::AboveTarget, {5}},
                                                          {RowFilter::HeldByCurrent, {4}}};
  for (const auto& [filter, rows] : cases) EXPECT_EQ(RowsThrough(filter, Rows()), rows) << static_cast<int>(filter);
  EXPECT_EQ(RowCounts(Rows()), "4 steps, 1 of them not held, 1 threshold");
  EXPECT_EQ(StepRowOf(Rows(), 3), 1) << "the step of the threshold";
  EXPECT_EQ(StepRowOf(Rows(), 5), 5);
}

struct DifferenceCase {
  const char* name;
  std::vector<CurvePoint> curve, other, difference;
  const char* text;
};
class RunCompare : public testing::TestWithParam<DifferenceCase> {};

TEST_P(RunCompare, TheDifferenceSaysHowItWasTaken) {
  const DifferenceCase& c = GetParam();
  const CurveDifference difference = DifferenceOf({"2", "dBm", c.curve}, {"1", "dBm", c.other});
  EXPECT_EQ(difference.Values.Points, c.difference);
  EXPECT_EQ(DifferenceText(difference), c.text);
}
const double kGap = std::numeric_limits<double>::quiet_NaN();
INSTANTIATE_TEST_SUITE_P(
    Runs, RunCompare,
    testing::Values(DifferenceCase{"one_db_higher",
                                   {{1, 11}, {2, 13}, {4, 12}},
                                   {{1, 10}, {2, 12}, {4, 11}},
                                   {{1, 1}, {2, 1}, {4, 1}},
                                   "at 3 common frequencies; largest 1 dB at 1 MHz"},
                    DifferenceCase{"between",
                                   {{1, 11}, {2, 13}, {4, 12}, {5, 1}},
                                   {{1, 10}, {4, 12}},
                                   {{1, 1}, {2, 2}, {4, 0}},
                                   "at 2 common frequencies, 1 interpolated, 1 left out; largest 2 dB at 2 MHz"},
                    DifferenceCase{"last_of_equals",
                                   {{1, 11}, {1, 15}},
                                   {{1, 10}, {1, 12}},
                                   {{1, 3}},
                                   "at 1 common frequencies; largest 3 dB at 1 MHz"},
                    DifferenceCase{"gaps_and_none",
                                   {{0, 3}, {1, kGap}, {2, 13}},
                                   {{1, 5}, {4, kGap}},
                                   {},
                                   "no frequency at which both have a value"}),
    [](const auto& row) { return row.param.name; });

TEST(OpenedRun, TellsWhatIsKnownAndWhatIsNot) {
  const TempDir directory;
  const std::string file = directory.Write("radio.run", std::string(kTitle) + kRows + "5.0, x");
  const auto lines = [&] {
    std::string text;
    for (const InfoSection& section : InfoSections(*OpenRun(file)))
      for (const auto& [name, line] : section.Lines) text.append(name).append("=").append(line).append("\n");
    return text;
  };
  EXPECT_THAT(lines(), testing::HasSubstr("Line 7 is cut"));
  EXPECT_THAT(lines(), testing::HasSubstr("There is none beside this file"));
  EXPECT_TRUE(OpenRun(file)->CurveContext().Aims.empty());

  RunInfo info;
  info.Test = {"demo.tst", {}};
  info.Test->Is.MonitorProbe = true;
  info.Test->Is.EUTCircuitImpedance = 150;
  info.Notice = "SIMULATED BENCH";
  info.Seams = {4, 99};
  info.ActualSeconds = 725;
  info.CalPoints = {{1, -10, 120, 40}, {8, -7, 120, 42}};
  ASSERT_TRUE(FileRunInfo(info, file));
  EXPECT_THAT(lines(), testing::AllOf(testing::HasSubstr("Instruments=SIMULATED BENCH"),
                                      testing::HasSubstr("Took, last part=0:12:05"),
                                      testing::HasSubstr("row 4 (4 MHz), row 99\n"), testing::HasSubstr("150.0 ohms")));
  EXPECT_EQ(OpenRun(file)->CurveContext().ImpedanceOhms, 150);
  EXPECT_EQ(OpenRun(file)->CurveContext().Aims.size(), 4U) << "one for each frequency";

  directory.Write("radio.run", std::string(kTitle) + kRows);
  EXPECT_THAT(lines(), testing::HasSubstr("belongs to other run data"));
  EXPECT_EQ(OpenRun(file)->CurveContext().ImpedanceOhms, 0) << "another run's information is not taken";
  EXPECT_FALSE(OpenRun(directory.Write("note.run", "a note")));
  EXPECT_FALSE(OpenRun(directory.File("missing.run")));
}

}  // namespace
}  // namespace hylden
