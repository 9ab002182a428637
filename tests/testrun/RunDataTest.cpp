#include "testrun/RunData.h"

#include <gtest/gtest.h>

#include "support/ReadLines.h"
#include "support/TestShell.h"
#include "testrun/RunReport.h"
#include "testrun/RunRig.h"
#include "testrun/RunUnits.h"

namespace hylden {
namespace {

RunData Example() {
  RunData data;
  StepResult first{-10.04F, 120.05F, 76.449, 40.1, {}, {}};
  first.Marks.SigGenAtCalibration = true;
  data.FillStep(data.AddStep(0.15), first);
  data.SetComment(data.AddThreshold(0.15, -1.5), "display, flickers\r\nbadly");
  StepResult second{-8, 120, {}, 42.0, 31.96, {}};
  second.Marks.ForwardCapHeld = second.Marks.PowerAboveTarget = true;
  data.FillStep(data.AddStep(80), second);
  data.AddStep(81.5);  // failed
  return data;
}

const char* const kWhole =
    "                   Test Run Data\r\n"
    "Note: Data with asterisks indicates item first meeting leveling criteria.\r\n"
    "Freq(MHz), SigGen(dBm), TestLev(dBuv), Probe(dBuA), FwdPwr(dBm), RevPwr(dBm)\r\n"
    "0.15, -10.0 **, 120.1, 76.4, 40.1, \r\n"
    "0.15, Threshold -1.5dB, display, flickers  badly\r\n"
    "80.0, -8.0, 120.0, , 42.0 +2, 32.0\r\n"
    "81.5, , , , , \r\n";

TEST(RunData, TheFileHoldsEveryRowInOrder) {
  EXPECT_EQ(RunFileText(Example(), false), kWhole);
}

TEST(RunData, TheThresholdFileHoldsThresholdsOnly) {
  EXPECT_EQ(RunFileText(Example(), true),
            "                   Test Run Data\r\nFreq(MHz), Threshold, Comment\r\n"
            "0.15, Threshold -1.5dB, display, flickers  badly\r\n");
}

TEST(SaveRunData, IsTrueOnlyWhereNothingIsLost) {
  TestShell t;
  t.shell.settings.SaveDataDir(datakind::kTestResults, t.directory.Path());
  EXPECT_TRUE(SaveRunData(t.shell, RunData(), {}));
  EXPECT_TRUE(t.dialogs.WasShown("No run data to save"));
  EXPECT_TRUE(t.dialogs.saveRequests.empty());
  EXPECT_FALSE(SaveRunData(t.shell, Example(), {})) << "the dialog is cancelled";
  t.dialogs.AnswerSave(t.directory.File("a.run"));
  EXPECT_TRUE(SaveRunData(t.shell, Example(), {}));
  EXPECT_EQ(t.directory.Read("a.run"), kWhole);
  EXPECT_TRUE(t.directory.Read("a.runinfo").starts_with("Hylden run information 2\r\n"));
  const FileRequest& request = t.dialogs.saveRequests.back();
  EXPECT_EQ(request.title, "Select run file");
  EXPECT_EQ(request.filter, "Test Run Files (*.run)|*.run|All Files|*.*");
  EXPECT_EQ(request.directory, t.directory.Path());
  const std::string path = t.directory.File("missing/a.run");
  t.dialogs.Clear();
  t.dialogs.AnswerSave(path);
  EXPECT_FALSE(SaveRunData(t.shell, Example(), {}));
  ASSERT_EQ(t.dialogs.Texts().size(), 1U);
  EXPECT_TRUE(t.dialogs.LastText().find("FileRunData\r" + path) != std::string::npos) << t.dialogs.LastText();
}

TEST(RunReport, PagesFollowTheKind) {
  RunRig rig;
  for (const auto kind : {RunReportKind::Brief, RunReportKind::Threshold, RunReportKind::Detailed})
    EXPECT_TRUE(PrintRunReport(rig.t.printer, rig.documents, Example(), kind));
  ASSERT_EQ(rig.t.printer.jobs.size(), 3U);

  const PrintJob& brief = rig.t.printer.jobs[0];
  EXPECT_TRUE(brief.askForPrinter);
  EXPECT_EQ(brief.top, 5);
  EXPECT_EQ(brief.bottom, 90);
  EXPECT_TRUE(brief.lines[0].bold && brief.lines[0].points == 16);
  EXPECT_TRUE(!brief.lines[4].bold && brief.lines[4].points == 10);
  const Strings whole = ReadLines(rig.t.directory.Write("whole.run", kWhole)), printed = rig.t.printer.Lines(0);
  EXPECT_EQ(printed[1], "");
  Strings below = printed;
  below.erase(below.begin() + 1);
  EXPECT_EQ(below, whole);
  EXPECT_EQ(rig.t.printer.Lines(1), (Strings{whole[0], "", "Freq(MHz), Threshold, Comment", whole[4]}));

  const auto& detailed = rig.t.printer.jobs[2].lines;
  EXPECT_EQ(detailed.front().text, "                 Test Run Parameters");
  EXPECT_TRUE(detailed[detailed.size() - printed.size()].newPage);
  EXPECT_EQ(detailed[detailed.size() - printed.size()].text, whole[0]);
}

TEST(RunUnits, LevelsAreShownInEveryUnit) {
  const struct {
    RunUnit unit;
    const char *caption, *value, *induced, *inducedValue;
  } cases[] = {
      {RunUnit::DbuV, "Test Level\r\n(dBuv)", "120.0", "Induced Level\r\n(dBuv est)", "120.0"},
      {RunUnit::DbuA, "Test Level\r\n(dBuA)", "76.5", "Induced Level\r\n(dBuA)", "76.5"},
      {RunUnit::Dbm, "Test Level\r\n(dBm)", "8.2", "Induced Level\r\n(dBm est)", "8.2"},
      {RunUnit::Milliwatts, "Test Level\r\n(mW)", "6.7", "Induced Level\r\n(mW est)", "6.7"},
      {RunUnit::Volts, "Test Level\r\n(Volts)", "1.00", "Induced Level\r\n(Volts est)", "1.000"},
  };
  for (const auto& c : cases) {
    const ShownLevel shown = ShowTestLevel(120, c.unit, 150), induced = ShowInducedLevel(76.4782, 80, c.unit, 150);
    EXPECT_EQ(shown.Caption, c.caption);
    EXPECT_EQ(shown.Value, c.value);
    EXPECT_EQ(shown.ToolTip, "76.5 dBua current in a 150.0 ohm system");
    EXPECT_EQ(induced.Caption, c.induced);
    EXPECT_EQ(induced.Value, c.inducedValue) << c.induced;
  }
  EXPECT_EQ(ShowTestLevel(119.9, RunUnit::Volts, 150).Value, "0.989");
  const ShownLevel relative = ShowInducedLevel(76.4782, 80, RunUnit::Relative, 150);
  EXPECT_EQ(relative.Caption, "Induced level\r\ndB (relative)");
  EXPECT_EQ(relative.Value, "-3.5");
  EXPECT_EQ(relative.ToolTip, "dB relative to induced current limit");
  EXPECT_EQ(ShowInducedLevel(80, -999, RunUnit::Relative, 150).Value, "na");
}

TEST(RunUnits, ChoiceComesBackFromTheSettingsAndACodeOfNoMenuIsTheDefault) {
  for (const char* const text : {"0,1,2", "4,5,6", "2,0,2"}) EXPECT_EQ(UnitsText(UnitsFrom(text)), text);
  for (const char* const text : {"", "5,6,1", "x,1,2", "0,1", "0,1,2,3"})
    EXPECT_EQ(UnitsText(UnitsFrom(text)), "0,1,2") << text;
}

TEST(RunUnits, ALevelWithoutAValueIsShownAsNotAvailable) {
  EXPECT_EQ(ShowTestLevel(120, RunUnit::DbuA, 0).Value, "na");
  EXPECT_EQ(ShowTestLevel(120, RunUnit::DbuA, 0).ToolTip, "The test definition has no circuit impedance");
  EXPECT_EQ(ShowTestLevel(120, RunUnit::Volts, 0).ToolTip, "");
  EXPECT_EQ(ShowTestLevel(120, RunUnit::Volts, 0).Value, "1.00");
  EXPECT_EQ(ShowInducedLevel(80, 80, RunUnit::Dbm, 0).Value, "na");
  for (const RunUnit unit : {RunUnit::DbuV, RunUnit::DbuA, RunUnit::Dbm, RunUnit::Milliwatts, RunUnit::Volts}) {
    EXPECT_EQ(ShowTestLevel(-999, unit, 150).Value + ShowTestLevel(-999, unit, 150).ToolTip, "na");
    EXPECT_EQ(ShowInducedLevel(-999, 80, unit, 150).Value, "na");
  }
  EXPECT_EQ(ShowPower(1e6, RunUnit::Watts).Value, "na");
}

TEST(RunUnits, PowerIsShownInDbmOrWatts) {
  EXPECT_EQ(ShowPower(40, RunUnit::Dbm).Value, "40.0");
  EXPECT_EQ(ShowPower(40, RunUnit::Watts).Value, "10.000");
  EXPECT_EQ(ShowPower(-999, RunUnit::Dbm).Value, "na") << "0 W has no dBm";
  EXPECT_EQ(ShowPower(-999, RunUnit::Watts).Value, "0.000");
  EXPECT_EQ(ShowPower(40, RunUnit::Watts).Caption, "Forward Power\r\n(watts)");
}

}  // namespace
}  // namespace hylden
