#include "app/Desktop.h"

#include <gtest/gtest.h>

#include <QPushButton>
#include <QSignalSpy>

#include "app/Station.h"
#include "bench/Bench.h"
#include "desktop/FormDriver.h"
#include "documents/qt/frmEquipment.h"
#include "shell/qt/TopMenu.h"
#include "support/ScriptedBus.h"
#include "support/TestShell.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

class DesktopTest : public testing::Test {
 protected:
  DesktopTest() {
    SigGenDefinition generator;
    SaveRecord(t.directory.File("gen.sg"), generator);
    EquipRecord record;
    record.SigGenFile = t.directory.File("gen.sg");
    record.SigGenAddress = 18;
    SaveRecord(t.directory.File("My station.eqp"), record);
    MakeDesktop();
  }

  void MakeDesktop(Bench* theBench = nullptr) {
    station.bench = theBench;
    desktop.reset();
    desktop = std::make_unique<Desktop>(station);
    QObject::connect(desktop.get(), &Desktop::Ended, [this] { ended = true; });
  }
  /// The open equipment form; null when there is none.
  static frmEquipment* Form() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    for (QWidget* window : QApplication::topLevelWidgets())
      if (auto* const form = qobject_cast<frmEquipment*>(window)) return form;
    return nullptr;
  }

  ScriptedBus bus;
  TestShell t{bus};
  WorkingDirectory here{t.directory.Path()};
  Bench bench{t.clock};
  Station station{t.shell};
  Instruments& instruments = station.instruments;
  Documents& documents = station.documents;
  std::unique_ptr<Desktop> desktop;
  bool ended = false;
};

TEST_F(DesktopTest, StationOfTheCommandLineReachesTheDriversAndTheForm) {
  MakeDesktop(&bench);
  EXPECT_TRUE(desktop->Start("\"/e:" + t.directory.File("My station.eqp") + "\""));
  EXPECT_TRUE(t.dialogs.messages.empty()) << t.dialogs.LastText();
  EXPECT_EQ(instruments.sigGen.Address(), 18);
  EXPECT_EQ(bench.Equipment().SigGenAddress, 18);
  EXPECT_TRUE(desktop->Menu().isVisible());
  EXPECT_EQ(desktop->Menu().windowTitle(), "Hylden 1.1");
  EXPECT_EQ(TextOf(desktop->Menu(), "Label1"), "Hylden 1.1\nConducted RF Immunity");
  Press(desktop->Menu(), "cmdConfigSys");
  ASSERT_NE(Form(), nullptr);
  EXPECT_FALSE(desktop->Menu().isVisible());
  EXPECT_EQ(Form()->windowTitle().toStdString(), "Equipment File: " + t.directory.File("My station.eqp"));
  Type(*Form(), "txtSigGenAddr", "19");
  t.dialogs.Answer(MessageAnswer::No);
  Form()->close();
  EXPECT_TRUE(desktop->Menu().isVisible());
  EXPECT_EQ(Form(), nullptr);
  EXPECT_EQ(instruments.sigGen.Address(), 19);
  EXPECT_EQ(bench.Equipment().SigGenAddress, 19);
}

TEST_F(DesktopTest, WrongCommandLineGivesAnIdleMenu) {
  t.shell.settings.SaveDefaultEquipFile(t.directory.File("My station.eqp"));
  EXPECT_TRUE(desktop->Start("\"/x:abc\""));
  EXPECT_EQ(t.dialogs.Texts(), std::vector<std::string>{"Command line error, (\"/x:abc\")"});
  EXPECT_TRUE(documents.equip.Record.SigGenFile.empty());
  EXPECT_TRUE(desktop->Menu().isVisible());
}

TEST_F(DesktopTest, TestNamedOnTheCommandLineOpensInsteadOfTheMenu) {
  CalInfoRec info;
  SaveRecord(t.directory.File("ring.hyinfo"), info);
  TestDefinition test;
  test.CalInfoFile = t.directory.File("ring.hyinfo");
  SaveRecord(t.directory.File("x.tst"), test);
  EXPECT_TRUE(desktop->Start("\"/t:" + t.directory.File("x.tst") + "\""));
  EXPECT_TRUE(t.dialogs.messages.empty()) << t.dialogs.LastText();
  EXPECT_FALSE(desktop->Menu().isVisible());
}

TEST_F(DesktopTest, BenchIsAnnouncedOnEveryWindow) {
  desktop->Start("");
  EXPECT_EQ(desktop->Menu().findChild<QLabel*>("lblBench"), nullptr);
  MakeDesktop(&bench);
  desktop->Start("");
  EXPECT_TRUE(Find<QLabel>(desktop->Menu(), "lblBench").isVisible());
  Press(desktop->Menu(), "cmdConfigSys");
  EXPECT_TRUE(Find<QLabel>(*Form(), "lblBench").isVisible());
}

TEST_F(DesktopTest, EndSignalHaltsAndClosesEveryWindow) {
  desktop->Start("");
  Press(desktop->Menu(), "cmdConfigSys");
  desktop->CloseAll();
  EXPECT_TRUE(t.shell.delay.HaltRequested());
  for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
  EXPECT_EQ(Form(), nullptr);
  EXPECT_FALSE(desktop->Menu().isVisible());
  EXPECT_TRUE(ended);
}

TEST_F(DesktopTest, EntryThatCanNotBeTakenRefusesTheEndAndSaysSo) {
  desktop->Start("\"/e:" + t.directory.File("My station.eqp") + "\"");
  Press(desktop->Menu(), "cmdConfigSys");
  Type(*Form(), "txtSigGenAddr", "99");
  desktop->CloseAll();
  for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
  ASSERT_NE(Form(), nullptr);
  EXPECT_EQ(t.dialogs.Texts(),
            (std::vector<std::string>{"Number outside valid range, re-enter",
                                      "The program was asked to end, but this window stays open:\r\n" +
                                          Form()->windowTitle().toStdString()}));
  EXPECT_EQ(t.shell.end.Now(), EndOfProgram::State::Refused);
}

TEST_F(DesktopTest, CancelledEndLeavesEverythingAsItWas) {
  desktop->Start("\"/e:" + t.directory.File("My station.eqp") + "\"");
  Press(desktop->Menu(), "cmdConfigSys");
  Type(*Form(), "txtSigGenAddr", "9");
  t.dialogs.Answer(MessageAnswer::Cancel);
  desktop->CloseAll();
  for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
  ASSERT_NE(Form(), nullptr);
  EXPECT_EQ(t.shell.end.Now(), EndOfProgram::State::Refused);
  Type(*Form(), "txtSigGenAddr", "99");
  EXPECT_FALSE(Form()->close()) << "it is checked as before";
  Type(*Form(), "txtSigGenAddr", "9");
  t.dialogs.Answer(MessageAnswer::No);
  Form()->close();
  for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
  EXPECT_FALSE(ended);
  EXPECT_TRUE(desktop->Menu().isVisible());
  EXPECT_EQ(documents.equip.Record.SigGenAddress, 9) << "and kept in the session as before";
}

TEST_F(DesktopTest, SecondEquipmentFormCostsTheFirstNothingThatWasChangedThere) {
  desktop->Start("\"/e:" + t.directory.File("My station.eqp") + "\"");
  frmEquipment& first = *desktop->OpenEquipment(&desktop->Menu());
  Type(first, "txtSigGenAddr", "9");
  ASSERT_TRUE(first.ApplyEquipment());  // as on the way to the insertion loss
  frmEquipment& second = *desktop->OpenEquipment(&first, 0, true);
  second.close();
  EXPECT_TRUE(t.dialogs.messages.empty()) << "nothing was changed in the second";
  frmEquipment& third = *desktop->OpenEquipment(&first, 0, true);
  Type(third, "txtSigGenAddr", "7");
  const std::string other = t.directory.File("Other.eqp");
  t.dialogs.AnswerSave(other);
  Choose(third, "mnuEquipFileSaveAs");
  Press(third, "cmdNoSigGen");
  t.dialogs.Answer(MessageAnswer::No);  // kept in the session
  ASSERT_TRUE(third.close());
  EXPECT_EQ(TextOf(first, "txtSigGenAddr"), "");
  EXPECT_EQ(first.windowTitle().toStdString(), "Equipment File: " + other + "*");
  t.dialogs.Clear();
  EXPECT_TRUE(first.close());
  EXPECT_TRUE(t.dialogs.messages.empty()) << "asked about once";
  EXPECT_EQ(documents.equip.Record.SigGenFile, "");
}

TEST_F(DesktopTest, MainMenuNamesStationAndTest) {
  desktop->Start("\"/e:" + t.directory.File("My station.eqp") + "\"");
  EXPECT_EQ(TextOf(desktop->Menu(), "lblStation"), "Station: My station.eqp\nTest: none");
  Press(desktop->Menu(), "cmdConfigSys");
  SaveRecord(t.directory.File("Other.eqp"), documents.equip.Record);
  Form()->LoadFile(QString::fromStdString(t.directory.File("Other.eqp")));
  Form()->close();
  EXPECT_EQ(TextOf(desktop->Menu(), "lblStation"), "Station: Other.eqp\nTest: none");
  EXPECT_FALSE(QApplication::windowIcon().isNull()) << "boxes carry the program's icon";
}

TEST_F(DesktopTest, MissingHelpFileIsTold) {
  desktop->Start("");
  QTest::keyClick(&desktop->Menu(), Qt::Key_F1);
  EXPECT_EQ(t.dialogs.LastText(), "The help file can't be read:\r\n" + t.directory.File("hylden.hlp"));
}

TEST_F(DesktopTest, ExitButtonEndsTheProgram) {
  desktop->Start("");
  Press(desktop->Menu(), "cmdExit");
  EXPECT_TRUE(ended);
}

}  // namespace
}  // namespace hylden
