// The window of a saved run among the program's windows.

#include "testrun/qt/frmRunData.h"

#include "desktop/DemoWindows.h"
#include "support/SilentRun.h"
#include "support/TempDir.h"
#include "widgets/CurveView.h"

namespace hylden {
namespace {

constexpr const char* kTitle = "                   Test Run Data\r\n";
constexpr const char* kRows =
    "1.0, -10.0 **, 120.0, 70.0, 40.0, \r\n"
    "2.0, , , , , \r\n"
    "1.0, Threshold -3.0dB, display flickers\r\n"
    "4.0, -8.0, 120.0, 71.0 **, 41.0, \r\n";
constexpr const char* kOneDbHigher = "1.0, -9.0, 120.0, , , \r\n4.0, -7.0, 120.0, , , \r\n";

class RunDataForm : public DemoWindowsTest {
 protected:
  std::string Write(const char* name, const std::string& rows) { return directory.Write(name, kTitle + rows); }
  frmRunData& Open(const std::string& file) {
    m.desktop->OpenRunData(file);
    return *OpenWindows<frmRunData>().back();
  }
  static QString Cell(QWidget& form, const char* table, int row, int column) {
    return Find<QTableView>(form, table).model()->index(row, column).data().toString();
  }

  TempDir directory;
};

TEST_F(RunDataForm, AFileOnTheCommandLineIsShownBesideTheMainMenu) {
  m.Start(" \"/r:" + Write("radio.run", kRows) + "\"");
  frmRunData& form = m.Opened<frmRunData>();
  EXPECT_TRUE(m.desktop->Menu().isVisible());
  EXPECT_EQ(TextOf(form, "lblCounts"), "3 steps, 1 of them not held, 1 threshold");
  EXPECT_EQ(Cell(form, "flxTestData", 1, 1), QLatin1String("not held"));
  EXPECT_EQ(Cell(form, "grdThresholds", 0, 2), QLatin1String("117.0 dBuV"));
  EXPECT_EQ(form.findChild<QWidget*>(QStringLiteral("lblBench")), nullptr) << "it is not known to be simulated";
  ExpectMnemonicsShownApart(form);
  Find<QTabWidget>(form, "tabPages").setCurrentIndex(1);
  ExpectMnemonicsShownApart(form);
  m.desktop->Menu().close();
  EXPECT_EQ(OpenWindow<frmRunData>(), nullptr);
}

TEST_F(RunDataForm, RowsPointsAndThresholdsGoTogether) {
  m.Start();
  frmRunData& form = Open(Write("radio.run", kRows));
  auto& table = Find<QTableView>(form, "flxTestData");
  auto& curves = Find<CurveView>(form, "crvRun");
  table.setCurrentIndex(table.model()->index(3, 0));
  EXPECT_EQ(curves.Current(), (CurvePlace{0, 1}));
  Find<QComboBox>(form, "cboFilter").setCurrentIndex(static_cast<int>(RowFilter::NotHeld));
  EXPECT_EQ(table.model()->rowCount(), 1);
  emit curves.PointChosen(0, 1);
  EXPECT_EQ(table.currentIndex().row(), 3) << "a row that the filter had left out";
  Find<QTableView>(form, "grdThresholds").setCurrentIndex(Find<QTableView>(form, "grdThresholds").model()->index(0, 0));
  EXPECT_EQ(table.currentIndex().row(), 2);
  EXPECT_EQ(curves.Current(), (CurvePlace{0, 0})) << "the threshold's step";
  Choose(form, "mnuLevelUnitsVolts");
  EXPECT_EQ(curves.Curves().front().Unit, "V");
  EXPECT_EQ(Cell(form, "grdThresholds", 0, 2), QLatin1String("0.708 V"));
}

TEST_F(RunDataForm, ARunThatLiesOneDbHigherDiffersByOneDb) {
  m.Start();
  frmRunData& form = Open(Write("radio.run", kRows));
  dialogs.AnswerOpen(Write("second.run", kOneDbHigher));
  Choose(form, "mnuFileCompare");
  const Curve difference = Find<CurveView>(form, "crvDifferences").Curves().at(1);
  EXPECT_EQ(difference.Points, (std::vector<CurvePoint>{{1, 1}, {4, 1}}));
  EXPECT_EQ(difference.Unit, "dB");
  EXPECT_EQ(Cell(form, "grdRuns", 1, 1), QLatin1String("at 2 common frequencies; largest 1 dB at 1 MHz"));
  auto& values = Find<CurveView>(form, "crvValues");
  auto& differences = Find<CurveView>(form, "crvDifferences");
  values.ShowFrequencies(2, 3);
  EXPECT_EQ(differences.HighestShown().Freq, 3) << "zoomed together";
  differences.Fit();
  EXPECT_GT(values.HighestShown().Freq, 3);
  EXPECT_FALSE(values.IsZoomed());
  for (int i = 0; i < 5; ++i) form.CompareWith(directory.File("second.run"));
  EXPECT_EQ(Find<QTableView>(form, "grdRuns").model()->rowCount(), 6);
  EXPECT_EQ(TextOf(form, "lblTrouble"), "5 other runs can be compared: remove one first.");
  Find<QTableView>(form, "grdRuns").selectRow(1);
  Press(form, "cmdRemove");
  EXPECT_EQ(Find<QTableView>(form, "grdRuns").model()->rowCount(), 5);
}

TEST_F(RunDataForm, WhatCannotBeReadIsSaidInTheWindow) {
  m.Start();
  const std::tuple<const char*, std::string, int, const char*> cases[] = {
      {"none.run", "", 0, ""},
      {"one.run", "1.0, -10.0, 120.0, , , \r\n", 1, ""},
      {"cut.run", "1.0, -10.0, 120.0, , , \r\n2.0, -1", 1, "Line 3 is cut, and left out."},
      {"foreign.run", "hello\r\n1.0, -10.0, 120.0, NaN, , \r\n", 1,
       "Line 2 is none of run data. 1 more: see Information."},
      {"thresholds.run", "Freq(MHz), Threshold, Comment\r\n1.0, Threshold -3.0dB, a\r\n", 1, ""},
      {"falling.run", "2.0, 1.0, 2.0, , , \r\n1.0, 1.0, 2.0, , , \r\n1.0, 1.0, 2.0, , , \r\n0, 1.0, 2.0, , , \r\n", 4,
       ""}};
  for (const auto& [name, rows, count, trouble] : cases) {
    frmRunData& form = Open(Write(name, rows));
    Turn();
    EXPECT_EQ(Find<QTableView>(form, "flxTestData").model()->rowCount(), count) << name;
    EXPECT_EQ(TextOf(form, "lblTrouble"), trouble) << name;
    form.close();
    Turn();
  }
  frmRunData& form = Open(directory.File("missing.run"));
  EXPECT_THAT(TextOf(form, "lblTrouble"), testing::HasSubstr("missing.run"));
  directory.Write("a.runinfo", "other");
  form.LoadFile(Write("a.run", kRows));
  EXPECT_THAT(TextOf(form, "lblTrouble"), testing::HasSubstr("is no run information"));
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(RunDataForm, NothingAsksWhileARunIsOn) {
  m.Start();
  frmRunData& form = Open(Write("radio.run", kRows));
  SilentRun run;
  ASSERT_TRUE(m.shell.ClaimInstruments(run));
  int escapes = 0;
  QObject::connect(&form, &frmRunData::EscapePressed, [&] { ++escapes; });
  for (const char* const entry : {"mnuFileOpen", "mnuFileCompare", "mnuFileReport", "mnuFileExport"})
    Choose(form, entry);
  EXPECT_TRUE(dialogs.openRequests.empty() && dialogs.saveRequests.empty());
  QTest::keyClick(&form, Qt::Key_Escape);
  EXPECT_EQ(escapes, 1) << "Escape is Halt";
  EXPECT_TRUE(Drop(form, {QUrl::fromLocalFile(QString::fromStdString(Write("second.run", kOneDbHigher)))}));
  Turn();
  EXPECT_EQ(Find<QTableView>(form, "grdRuns").model()->rowCount(), 2) << "what needs no box goes on";
  m.shell.ReleaseInstruments();
  for (const char* const name : {"radio.csv", "radio.svg"}) {
    dialogs.AnswerSave(directory.File(name));
    Choose(form, "mnuFileExport");
  }
  EXPECT_TRUE(directory.Read("radio.csv").starts_with("Kind"));
  EXPECT_THAT(directory.Read("radio.svg"), testing::HasSubstr("<svg"));
}

}  // namespace
}  // namespace hylden
