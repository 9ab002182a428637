#include "testrun/RunReportText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/SampleDocuments.h"
#include "testrun/TestInWords.h"

namespace hylden {
namespace {

using testing::HasSubstr;

OpenedRun Example() {
  OpenedRun run{.File = "/lab/radio.run"};
  RunData& data = run.Run.Data;
  data.FillStep(data.AddStep(0.15), StepResult{-10, 140});
  data.SetComment(data.AddThreshold(0.15, -3), "display flickers");
  StepResult limited{-14, 140, 80};
  limited.Marks.InducedAboveLimit = true;
  data.FillStep(data.AddStep(80), limited);
  data.AddThreshold(80, -1);
  data.AddStep(81.5);  // failed
  return run;
}

/// All that a report says, a line each.
std::string Flat(const RunReportText& report) {
  std::string text = report.Title + "\n" + report.Warning + "\n" + report.Header + "\n" + report.Footer + "\n";
  for (const ReportSection& section : report.Sections) {
    text += "# " + section.Title + "\n";
    for (const std::string& sentence : section.Sentences) text += sentence + "\n";
    for (const auto& [name, value] : section.Entries) text.append(name).append(": ").append(value).append("\n");
    for (const auto& row : section.Table.Rows) {
      for (const std::string& cell : row) text += cell + "|";
      text += "\n";
    }
  }
  return text;
}

TEST(RunReportText, SaysWhatIsNotKnownOfRunDataAlone) {
  OpenedRun run = Example();
  run.Run.Troubles = {"Line 9 is none of run data."};
  const std::string said = Flat(ReportOf(run, true));
  for (const char* text :
       {"Product: not stated\n", "Begun: not known\n", "from 0.15 MHz to 80.0 MHz.\n",
        "2 susceptibility thresholds were marked.\n", "Whether the run was taken to its end is not known.\n",
        "T1|0.15|140.0|-3.0|137.0|7.08|display flickers|\n", "T2|80.0|140.0|-1.0|–|–|not stated|\n",
        "The definition of the test is not known.\n", "5|81.5|the level was not held|\n",
        "level was not held: 81.5 MHz.\n", "There is no usable information", "Run data: Line 9 is none of run data.\n"})
    EXPECT_THAT(said, HasSubstr(text));
}

TEST(RunReportText, LevelsThatAreMissingAreToldAsSuchAndReachedOnesAsReached) {
  OpenedRun run{.File = "/lab/radio.run"};
  RunData& data = run.Run.Data;
  for (const double freq : {0.15, 0.2}) data.FillStep(data.AddStep(freq), StepResult{-10, -999, {}, 33.0});
  data.AddThreshold(0.15, -3);
  std::string said = Flat(ReportOf(run, true));
  EXPECT_THAT(said, HasSubstr("The test level is not known.\n"));
  EXPECT_THAT(said, HasSubstr("T1|0.15|–|-3.0|–|–|"));
  OpenedRun both = Example();
  StepResult reached{-9, 140, 90.4};
  reached.Marks.InducedAboveLimit = reached.Marks.SigGenAtCalibration = true;
  both.Run.Data.FillStep(both.Run.Data.AddStep(90), reached);
  both.Run.Data.AddThreshold(90, -1);
  said = Flat(ReportOf(both, true));
  EXPECT_THAT(said, HasSubstr("T3|90.0|140.0|-1.0|139.0|"));
  EXPECT_THAT(said, HasSubstr("|generator, current limit|"));
}

TEST(RunReportText, HoldsEveryParameterAndTellsOfBenchSeamsAndOutcome) {
  OpenedRun run = Example();
  RunInfo& info = run.Beside.Info.emplace();
  info.Notice = "SIMULATED BENCH: no instrument is driven";
  info.Started = "2026-11-23 18:35:07";
  info.Outcome = runend::kEndedEarly;
  info.PlannedSteps = 4;
  info.Seams = {3};
  info.Particulars = {"A lab", "A customer", "A radio", "An operator", "23 °C", {"Remark one"}};
  info.Test = {"/lab/radio.tst", RecordOf<TestDefinition>(kTestFile)};
  info.Station = {"/lab/station.eqp", RecordOf<EquipRecord>(kEquipFile)};
  info.Calibration = {"/lab/cdn.hyinfo", {"Set-up", "25 W", "CDN M2", "10v", "0.15 - 80", CouplingMethod::UserDefined}};
  info.CalibrationDate = "2026-11-20 08:00:00";
  info.Instruments = {{"Signal generator", "Two-letter", "/lab/gen.sg"}};
  info.RowTimes = {{1, "2026-11-23 18:35:10"}};
  const std::string said = Flat(ReportOf(run, true));
  for (const char* text :
       {"SIMULATED BENCH: no instrument is driven\n", "Test Report: A radio\n", "Customer: A customer\n",
        "Operator: An operator\n", "The run ended early: 2 of 4 planned steps are complete.\n",
        "continued at 80.0 MHz (row 3)", "10 V (140.0 dBµV)", "user-defined coupling factor",
        "Record written on: 2026-11-20 08:00:00\n", "Signal generator|Two-letter|gen.sg|\n", "Monitor probe: one.prb\n",
        "1|0.15|-10.0|140.0|–||18:35:10|\n", "Remark one\n"})
    EXPECT_THAT(said, HasSubstr(text));
}

TEST(RunReportText, StepsThatWereRepeatedAreCountedOnce) {
  OpenedRun run = Example();
  RunData& data = run.Run.Data;
  data.AddStep(90);  // failed, and held when it was repeated
  for (const double freq : {0.15, 90.0}) data.FillStep(data.AddStep(freq), StepResult{-10, 140});
  RunInfo& info = run.Beside.Info.emplace();
  info.Outcome = runend::kEndedEarly;
  info.PlannedSteps = 4;
  std::string said = Flat(ReportOf(run, true));
  EXPECT_THAT(said,
              HasSubstr("in 4 steps, 1 of them at a frequency that was there before, from 0.15 MHz to 90.0 MHz."));
  EXPECT_THAT(said, HasSubstr("3 of 4 planned steps are complete."));
  EXPECT_THAT(said, HasSubstr("its level was not held: 81.5 MHz.\n"));
  EXPECT_THAT(said, HasSubstr("|< 140.0|")) << "the limit kept it below";
  info.CompletedSteps = 2;
  EXPECT_THAT(Flat(ReportOf(run, true)), HasSubstr("2 of 4 planned steps are complete."));
}

TEST(TestInWords, NamesEveryParameterThatIsInUse) {
  TestDefinition test = RecordOf<TestDefinition>(kTestFile);
  test.FreqSweep = test.FreqList = test.MonitorProbe = test.LimitCurrent = test.Extrapolate = true;
  test.LinearStep = 0.7;
  test.LogStep = 1.3;
  test.SweepDwell = 2.9;
  const auto said = [&] {
    std::string text;
    for (const auto& [name, value] : TestInWords(test)) text.append(name).append(": ").append(value).append("\n");
    return text;
  };
  test.StepType = StepType::Linear;
  test.ModType = Modulation::Am;
  for (const char* text : {"0.15 MHz to 80 MHz", "linear steps of 0.7 MHz", "2.9 s at each", "x.lst", "3 s at each",
                           "1 kHz, depth 80 %", "-6 dB from", "1.25 dB at a time", "0.2 s after", "net power",
                           "-3 dB on every", "limits the level", "2 dB from the current", "150 Ω"})
    EXPECT_THAT(said(), HasSubstr(text));
  test.StepType = StepType::Log;
  test.ModType = Modulation::Fm;
  EXPECT_THAT(said(), testing::AllOf(HasSubstr("steps of 1.3 %"), HasSubstr("0.4 kHz, deviation 10 kHz")));
  test.ModType = Modulation::Pulse;
  EXPECT_THAT(said(), HasSubstr("period 4.6 ms, width 1.5 ms"));
}

}  // namespace
}  // namespace hylden
