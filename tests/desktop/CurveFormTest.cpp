// The window of curves beside the forms that it is opened from.

#include "calibration/qt/frmCblSetup.h"
#include "desktop/DemoWindows.h"
#include "documents/CalCurves.h"
#include "documents/qt/frmCalCurves.h"
#include "documents/qt/frmCalSetup.h"
#include "documents/qt/frmTestDef.h"
#include "support/SilentRun.h"
#include "widgets/CurveView.h"

namespace hylden {
namespace {

class CurveForm : public DemoWindowsTest {
 protected:
  void SetUp() override {
    m.Start();
    m.desktop->OpenTestDefinition();
    definition = &m.Opened<frmTestDef>();
    definition->LoadFile(QStringLiteral("substitution-am.tst"));
    Press(*definition, "cmdCurves");
    form = &m.Opened<frmCalCurves>();
  }
  const std::vector<Curve>& Curves() { return Find<CurveView>(*form, "crvFiles").Curves(); }
  std::string Cell(int row, int column) {
    return Find<QTableWidget>(*form, "grdFiles").item(row, column)->text().toStdString();
  }
  void Add(const std::string& file) {
    dialogs.AnswerOpen(file);
    Press(*form, "cmdAdd");
  }

  frmTestDef* definition = nullptr;
  frmCalCurves* form = nullptr;
};

TEST_F(CurveForm, StandsBesideTheDefinitionAndShowsItsRecord) {
  EXPECT_TRUE(definition->isVisible());
  EXPECT_LE(form->width(), 800);
  EXPECT_LE(form->minimumSizeHint().height(), 560);
  ExpectMnemonicsShownApart(*form);
  clsCalFile record;
  ASSERT_TRUE(record.LoadFile("cdn-10v.hyinfo"));
  ASSERT_EQ(Curves().size(), 1U);
  EXPECT_EQ(Curves()[0].Points.size(), record.Points().size());
  EXPECT_EQ(Curves()[0].Points[3].Value, static_cast<double>(record.Points()[3].SigGenLevel));
  Find<QComboBox>(*form, "cmbQuantity").setCurrentIndex(static_cast<int>(CalQuantity::TestLevel));
  EXPECT_EQ(Curves()[0].Unit, "dBuV");
}

TEST_F(CurveForm, DifferenceToTheFirstIsShownAndTold) {
  EXPECT_FALSE(IsEnabled(*form, "chkDifference") || IsEnabled(*form, "cmdRemove"));
  Add("ifi-10v.hyinfo");
  Press(*form, "chkDifference");
  ASSERT_EQ(Curves().size(), 2U);
  EXPECT_EQ(Curves()[1].Unit, "dB");
  EXPECT_THAT(Cell(1, 1), testing::MatchesRegex("-?[0-9.]+ dB at [0-9.]+ MHz"));

  Add("station.eqp");
  EXPECT_THAT(dialogs.LastText(), testing::StartsWith("Bad filename for calibration file"));
  EXPECT_EQ(Curves().size(), 2U);
  Press(*form, "cmdRemove");
  EXPECT_EQ(Cell(0, 0), "cdn-10v");
  EXPECT_FALSE(IsTicked(*form, "chkDifference"));
  EXPECT_EQ(Curves()[0].Unit, "dBm");
}

TEST_F(CurveForm, GoesWithItsFormAndAsksNothingDuringARun) {
  SilentRun run;
  ASSERT_TRUE(m.shell.ClaimInstruments(run));
  dialogs.Clear();
  Press(*form, "cmdAdd");
  Press(*form, "cmdPicture");
  EXPECT_TRUE(dialogs.openRequests.empty() && dialogs.saveRequests.empty());
  m.shell.ReleaseInstruments();

  Press(*definition, "cmdStart");
  Turn();
  EXPECT_EQ(OpenWindow<frmCalCurves>(), nullptr) << "a run has taken the place of its form";
}

TEST_F(CurveForm, OpensFromTheSetupsOfCalibrations) {
  definition->close();
  Turn();
  EXPECT_EQ(OpenWindow<frmCalCurves>(), nullptr);
  m.desktop->OpenCalibrationSetup();
  auto& setup = m.Opened<frmCalSetup>();
  const std::string saved = m.documents.calSetup.RecordSaved = m.directory.File("station/cdn-10v.hyinfo");
  dialogs.AnswerOpen(std::nullopt);
  Choose(setup, "mnuFileCurves");
  EXPECT_EQ(dialogs.openRequests.back().fileName, saved);
  EXPECT_EQ(OpenWindow<frmCalCurves>(), nullptr);

  m.desktop->OpenCableSetup(&setup);
  auto& cable = m.Opened<frmCblSetup>();
  dialogs.AnswerOpen("meter-cable.los");
  Press(cable, "cmdCurves");
  form = &m.Opened<frmCalCurves>();
  EXPECT_EQ(Curves().size(), 3U);
  Add("forward.fac");
  EXPECT_EQ(Curves().size(), 2U) << "the losses of both";
}

}  // namespace
}  // namespace hylden
