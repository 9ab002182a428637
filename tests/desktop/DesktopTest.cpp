#include "app/Desktop.h"

#include "calibration/qt/frmRunCal.h"
#include "desktop/DemoWindows.h"
#include "documents/qt/frmEquipment.h"
#include "platform/native/JournalFolder.h"
#include "run/JournalFile.h"
#include "testrun/qt/frmRunTest.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

class DesktopTest : public DemoWindowsTest {
 protected:
  void SetUp() override { m.Start(); }
  frmEquipment& OpenEquipment() {
    Press(m.desktop->Menu(), "cmdConfigSys");
    return m.Opened<frmEquipment>();
  }
};

TEST_F(DesktopTest, StationOfTheCommandLineReachesTheDriversTheBenchAndTheForm) {
  TopMenu& menu = m.desktop->Menu();
  EXPECT_TRUE(dialogs.messages.empty()) << dialogs.LastText();
  EXPECT_TRUE(menu.isVisible());
  EXPECT_EQ(menu.windowTitle(), "Hylden 1.1");
  EXPECT_EQ(TextOf(menu, "Label1"), "Hylden 1.1\nConducted RF Immunity");
  EXPECT_EQ(TextOf(menu, "lblStation"), "Station: station.eqp\nTest: none");
  EXPECT_FALSE(QApplication::windowIcon().isNull()) << "boxes carry the program's icon";
  frmEquipment& form = OpenEquipment();
  EXPECT_FALSE(menu.isVisible());
  Type(form, "txtSigGenAddr", "19");
  dialogs.Answer(MessageAnswer::No);
  form.close();
  Turn();
  EXPECT_TRUE(menu.isVisible());
  EXPECT_EQ(m.instruments.sigGen.Address(), 19);
  EXPECT_EQ(m.bench.Equipment().SigGenAddress, 19);
  OpenEquipment().LoadFile("ifi-station.eqp");
  OpenWindow<frmEquipment>()->close();
  EXPECT_EQ(TextOf(menu, "lblStation"), "Station: ifi-station.eqp\nTest: none");
}

TEST_F(DesktopTest, SecondEquipmentFormCostsTheFirstNothingThatWasChangedThere) {
  frmEquipment& first = OpenEquipment();
  Type(first, "txtSigGenAddr", "9");
  ASSERT_TRUE(first.ApplyEquipment());  // as on the way to the insertion loss
  m.desktop->OpenEquipment(&first, 0, true)->close();
  EXPECT_TRUE(dialogs.messages.empty()) << "nothing was changed in the second";
  frmEquipment& third = *m.desktop->OpenEquipment(&first, 0, true);
  Type(third, "txtSigGenAddr", "7");
  const std::string other = m.directory.File("Other.eqp");
  dialogs.AnswerSave(other);
  Choose(third, "mnuEquipFileSaveAs");
  Press(third, "cmdNoSigGen");
  dialogs.Answer(MessageAnswer::No);  // kept in the session
  ASSERT_TRUE(third.close());
  EXPECT_EQ(TextOf(first, "txtSigGenAddr"), "");
  EXPECT_EQ(first.windowTitle().toStdString(), "Equipment File: " + other + "*");
  dialogs.Clear();
  EXPECT_TRUE(first.close());
  EXPECT_TRUE(dialogs.messages.empty()) << "asked about once";
  EXPECT_EQ(m.documents.equip.Record.SigGenFile, "");
}

TEST_F(DesktopTest, MissingHelpFileIsTold) {
  QTest::keyClick(&m.desktop->Menu(), Qt::Key_F1);
  EXPECT_EQ(dialogs.LastText(), "The help file can't be read:\r\n" + m.directory.File("hylden.hlp"));
}

TEST_F(DesktopTest, OffersAtItsStartWhatAnEarlierProgramHasLeft) {
  m.directory.Write("journals/radio.journal", HeadLines({}) + RowLine(1, "threshold 0.15 -3 flickers"));
  JournalFolder journals(m.directory.File("journals"));
  m.desktop = std::make_unique<Desktop>(m.station, DesktopOptions{.journals = &journals});
  dialogs.Answer(MessageAnswer::Cancel);
  EXPECT_TRUE(m.desktop->Start({}));
  EXPECT_TRUE(dialogs.WasShownContaining("Its journal holds:"));
  EXPECT_TRUE(m.directory.Exists("journals/radio.journal"));
}

TEST_F(DesktopTest, ContinuesACalibrationThatAnEarlierProgramHasLeft) {
  CalSetup& setup = m.documents.calSetup;
  ASSERT_TRUE(setup.SaveDef("three.csu"));
  setup.FileName = "three.csu";
  {
    JournalFolder journals(m.directory.File("journals"), JournalFolder::Time::Virtual);
    m.shell.journals = &journals;
    frmRunCal form(m.shell, m.instruments, m.documents);
    form.Load();
    m.When([&] { return form.Calibration().Rows().size() == 3; }, [&] { Press(form, "cmdHalt"); });
    dialogs.Answer(MessageAnswer::Yes);  // and no file is chosen
    Press(form, "cmdStart");
    ASSERT_EQ(form.Calibration().Rows().size(), 3U) << "the last without its reading";
    m.shell.journals = nullptr;
  }
  dialogs.Clear();
  JournalFolder journals(m.directory.File("journals"), JournalFolder::Time::Virtual);
  m.shell.journals = &journals;
  m.desktop = std::make_unique<Desktop>(m.station, DesktopOptions{.journals = &journals});
  dialogs.Answer(MessageAnswer::Yes);
  ASSERT_TRUE(m.desktop->Start({}));
  EXPECT_TRUE(dialogs.WasShownContaining("Level calibration three.csu")) << testing::PrintToString(dialogs.Texts());
  auto& form = m.Opened<frmRunCal>();
  EXPECT_EQ(TextOf(form, "lblState"), "Continues at step 3 (3.0 MHz)");
  dialogs.Answer(MessageAnswer::Yes);
  dialogs.AnswerSave(m.directory.File("out.cal"));
  Press(form, "cmdStart");
  EXPECT_EQ(form.Calibration().Rows().size(), 3U);
  EXPECT_TRUE(m.directory.Exists("out.cal"));
  EXPECT_TRUE(journals.Kept().empty());
  form.close();
  Turn();
}

TEST_F(DesktopTest, ContinuesATestThatAnEarlierProgramHasLeftUnlessItWouldBeAnother) {
  TestDefinition& test = m.Test();
  m.LoadTest("substitution-am.tst");
  m.documents.testSetup.TestFileName = "substitution-am.tst";
  test.LogStep = 100;
  ASSERT_TRUE(m.documents.testSetup.SaveDef("substitution-am.tst"));
  std::size_t rows = 0;
  {
    JournalFolder journals(m.directory.File("journals"), JournalFolder::Time::Virtual);
    m.shell.journals = &journals;
    frmRunTest form(m.shell, m.instruments, m.documents);
    form.Load();
    m.When([&] { return TextOf(form, "lblStep") == "Step# 3"; }, [&] { Press(form, "cmdHalt"); });
    dialogs.Answer(MessageAnswer::Ok);
    dialogs.Answer(MessageAnswer::Yes);  // and no file is chosen
    Press(form, "cmdRun");
    rows = form.Engine().Data().Entries().size();
    ASSERT_EQ(form.Engine().CompletedSteps(), 2);
    m.shell.journals = nullptr;
  }
  for (const bool same : {false, true}) {
    test.LogStep = same ? 100 : 50;
    ASSERT_TRUE(m.documents.testSetup.SaveDef("substitution-am.tst"));
    dialogs.Clear();
    JournalFolder journals(m.directory.File("journals"), JournalFolder::Time::Virtual);
    m.shell.journals = &journals;
    m.desktop = std::make_unique<Desktop>(m.station, DesktopOptions{.journals = &journals});
    dialogs.Answer(MessageAnswer::Yes);
    ASSERT_TRUE(m.desktop->Start({}));
    auto& form = m.Opened<frmRunTest>();
    EXPECT_EQ(dialogs.WasShownContaining("The run can't be continued, and its journal stays:\r\nThe test definition "
                                         "substitution-am.tst is not the one of then."),
              !same);
    EXPECT_EQ(form.Engine().Data().Entries().size(), same ? 2U : 0U);
    if (same) {
      EXPECT_EQ(Find<QTableView>(form, "flxTestData").model()->rowCount(), 2);
      EXPECT_EQ(TextOf(form, "lblState"), "Continues at step 3 (0.6 MHz)");
      dialogs.Answer(MessageAnswer::Ok);
      dialogs.Answer(MessageAnswer::Yes);
      dialogs.AnswerSave(m.directory.File("out.run"));
      Press(form, "cmdRun");
      EXPECT_EQ(form.Engine().Outcome(), RunOutcome::Finished);
    }
    form.close();
    Turn();
    m.desktop.reset();
    EXPECT_EQ(journals.Abandoned().size() + journals.Kept().size(), same ? 0U : 1U);
    m.shell.journals = nullptr;
  }
  EXPECT_GT(rows, 0U);
}

TEST_F(DesktopTest, ExitButtonEndsTheProgram) {
  Press(m.desktop->Menu(), "cmdExit");
  EXPECT_EQ(m.ended, 1);
}

}  // namespace
}  // namespace hylden
