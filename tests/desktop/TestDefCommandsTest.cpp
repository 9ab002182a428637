#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <filesystem>

#include "desktop/TestDefForm.h"
#include "support/SameRecord.h"

namespace hylden {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Strings = std::vector<std::string>;

constexpr char kNotANumber[] = "Value not a number, re-enter";

TEST_F(TestDefForm, ShowsALoadedFileWhole) {
  documents.testSetup.TestFileName.clear();
  const TestDefinition saved = test();
  const std::string path = WriteTest("A & B.tst", saved);
  test() = documents.testSetup.Saved = {};
  documents.calInfo.Record = {};
  t.shell.settings.SaveDataDir(datakind::kTestSetups, t.directory.Path());
  EXPECT_EQ(form().windowTitle(), "Test Definition File: ");
  t.dialogs.AnswerOpen(path);
  EXPECT_THAT(Told("cmdLoad"), IsEmpty());
  EXPECT_EQ(t.dialogs.openRequests.back().title, "Select Test Definition File");
  EXPECT_EQ(t.dialogs.openRequests.back().filter, "Definitions (*.tst)|*.tst");
  EXPECT_EQ(t.dialogs.openRequests.back().directory, t.directory.Path());
  EXPECT_EQ(form().windowTitle(), ToQt("Test Definition File: " + path));
  EXPECT_EQ(Find<QAction>("mnuFileSave").text(), ToQt("&Save " + t.directory.File("A && B.tst")));
  EXPECT_EQ(Text("lblCalFreqRange"), "0.15 - 230");
  EXPECT_TRUE(form().FormToDef());
  EXPECT_TRUE(SameRecord(test(), saved));

  emit Find<QMenu>("mnuFileRecent").aboutToShow();
  ASSERT_EQ(Find<QMenu>("mnuFileRecent").actions().size(), 1);
  Type("txtStopFreq", "7");
  t.dialogs.Answer(MessageAnswer::No);
  Find<QMenu>("mnuFileRecent").actions().first()->trigger();
  EXPECT_EQ(Box("txtStopFreq").text(), "80");
}

TEST_F(TestDefForm, KeepsWhatWasThereWhenALoadFails) {
  const TestDefinition before = test();
  documents.testSetup.TestFileName = "kept.tst";
  const std::string cut = t.directory.Write("cut.tst", "other.hyinfo\r\n 1 \r\n");
  for (const std::string& path : {cut, t.directory.File("vanished.tst"), t.directory.Path()}) {
    SCOPED_TRACE(path);
    t.dialogs.AnswerOpen(path);
    EXPECT_EQ(Told("mnuFileLoad").size(), 1U);
    EXPECT_TRUE(t.dialogs.WasShownContaining("TestSetup.LoadDef"));
    EXPECT_EQ(form().windowTitle(), "Test Definition File: kept.tst");
    EXPECT_TRUE(SameRecord(test(), before));
    EXPECT_EQ(Box("txtStartFreq").text(), "0.2");
  }
}

TEST_F(TestDefForm, ChecksATestAgainstItsOwnCalibration) {
  TestDefinition orphan = test();
  orphan.CalInfoFile = t.directory.File("vanished.hyinfo");
  t.dialogs.AnswerOpen(WriteTest("orphan.tst", orphan));
  EXPECT_THAT(Told("cmdLoad"), ElementsAre(testing::HasSubstr("CalInfo.LoadDef")));
  EXPECT_EQ(Text("lblCalFreqRange"), "");
  EXPECT_THAT(Told("cmdStart"), ElementsAre(testing::HasSubstr("No start/stop frequencies")));
  EXPECT_EQ(requests().starts, 0);
}

TEST_F(TestDefForm, SavesEveryEntryUnderTheNameAskedFor) {
  const std::string path = t.directory.File("new.tst");
  Type("txtStopFreq", "60");
  t.dialogs.AnswerSave(path);
  EXPECT_THAT(Told("cmdSave"), IsEmpty());
  EXPECT_EQ(t.dialogs.saveRequests.back().title, "Select Test Definition Filename");
  EXPECT_EQ(t.dialogs.saveRequests.back().filter, "Definitions (*.tst)|*.tst");
  EXPECT_EQ(form().windowTitle(), ToQt("Test Definition File: " + path));
  EXPECT_EQ(Find<QAction>("mnuFileSave").text(), ToQt("&Save " + path));
  Type("txtStopFreq", "70");
  EXPECT_THAT(Told("mnuFileSave"), IsEmpty());
  EXPECT_THAT(t.dialogs.saveRequests, IsEmpty());
  TestDefinition saved;
  LoadRecord(path, saved);
  EXPECT_EQ(saved.StopFreq, 70);
}

TEST_F(TestDefForm, KeepsTheFileWhenASaveIsRefusedOrFails) {
  const std::string path = t.directory.Write("old.tst", "old");
  t.dialogs.AnswerSave(path);
  Type("txtStopFreq", "x");
  EXPECT_THAT(Told("mnuFileSaveAs"), ElementsAre(kNotANumber));
  EXPECT_EQ(t.directory.Read("old.tst"), "old");
  Type("txtStopFreq", "60");
  t.dialogs.AnswerSave(t.directory.File("nowhere/x.tst"));
  EXPECT_THAT(Told("mnuFileSaveAs"), ElementsAre(testing::HasSubstr("TestSetup.SaveDef")));
  EXPECT_EQ(form().windowTitle(), "Test Definition File: *");
}

TEST_F(TestDefForm, ChangesNothingAtACancelledDialog) {
  const TestDefinition before = test();
  const Strings commands{"mnuFileLoad", "cmdLoad", "mnuFileSaveAs", "cmdSave", "cmdCalFile", "cmdListFile"};
  form();
  for (const std::string& command : commands) {
    SCOPED_TRACE(command);
    EXPECT_THAT(Told(command.c_str()), IsEmpty());
    EXPECT_EQ(t.dialogs.openRequests.size() + t.dialogs.saveRequests.size(), 1U);
    EXPECT_EQ(form().windowTitle(), "Test Definition File: ");
    EXPECT_EQ(Path("lblCalFileName"), before.CalInfoFile);
    EXPECT_EQ(Path("lblListFile"), before.ListFile);
    EXPECT_TRUE(SameRecord(test(), before));
  }
}

TEST_F(TestDefForm, TakesAChosenCalibrationWhole) {
  const std::string path = t.directory.Write("other.hyinfo", "Other\r\nA2\r\nD2\r\n3v\r\n1 - 30\r\n 1 \r\n");
  t.shell.settings.SaveDataDir(datakind::kCalibrations, t.directory.Path());
  t.dialogs.AnswerOpen(path);
  EXPECT_THAT(Told("cmdCalFile"), IsEmpty());
  EXPECT_EQ(t.dialogs.openRequests.back().title, "Select Calibration File");
  EXPECT_EQ(t.dialogs.openRequests.back().filter, "CalInfo (*.hyinfo)|*.hyinfo");
  EXPECT_EQ(t.dialogs.openRequests.back().directory, t.directory.Path());
  EXPECT_EQ(Path("lblCalFileName"), path);
  EXPECT_EQ(Text("lblCalDescription"), "Other");

  // A bad one leaves both the file and its info.
  t.dialogs.AnswerOpen(t.directory.Write("bad.hyinfo", "Bad\r\n"));
  EXPECT_THAT(Told("cmdCalFile"), ElementsAre(testing::HasSubstr("CalInfo.LoadDef")));
  EXPECT_EQ(Path("lblCalFileName"), path);
  EXPECT_EQ(documents.calInfo.Record.SetupDescription, "Other");
}

TEST_F(TestDefForm, DropsACalibrationFromFormAndRecord) {
  const std::string path = t.directory.Write("other.hyinfo", "Other\r\nA2\r\nD2\r\n3v\r\n1 - 30\r\n 1 \r\n");
  t.dialogs.AnswerOpen(path);
  Press("cmdCalFile");
  t.dialogs.Answer(MessageAnswer::No);
  Press("cmdExit");
  EXPECT_FALSE(form().isVisible());
  EXPECT_EQ(documents.calInfo.Record.FreqRange, "0.15 - 230");

  t.dialogs.AnswerOpen(path);
  Open();
  Press("cmdCalFile");
  ASSERT_TRUE(form().FormToDef());
  t.dialogs.Answer(MessageAnswer::No);
  Choose("mnuFileExit");
  EXPECT_EQ(test().CalInfoFile, path);
  EXPECT_EQ(documents.calInfo.Record.FreqRange, "1 - 30");
}

TEST_F(TestDefForm, TakesNoFileThatIsNoList) {
  test().FreqList = false;
  const std::string before = test().ListFile;
  t.shell.settings.SaveDataDir(datakind::kFreqList, t.directory.Path());
  for (const std::string& path : {t.directory.Write("bad.lst", "1\r\ntwo\r\n"), t.directory.File("vanished.lst")}) {
    t.dialogs.AnswerOpen(path);
    EXPECT_EQ(Told("cmdListFile").size(), 1U);
    EXPECT_EQ(Path("lblListFile"), before);
    EXPECT_FALSE(Ticked("chkFreqList"));
  }
  const std::string path = t.directory.Write("good.lst", "1\r\n2\r\n");
  t.dialogs.AnswerOpen(path);
  EXPECT_THAT(Told("cmdListFile"), IsEmpty());
  EXPECT_EQ(t.dialogs.openRequests.back().title, "Select frequency list file");
  EXPECT_EQ(t.dialogs.openRequests.back().filter, "Frequency List (*.lst)|*.lst|All Files|*.*");
  EXPECT_EQ(t.dialogs.openRequests.back().directory, t.directory.Path());
  EXPECT_EQ(Path("lblListFile"), path);
  EXPECT_TRUE(Ticked("chkFreqList"));
}

TEST_F(TestDefForm, AsksForTheListBuilderWithItsList) {
  Press("cmdCreateList");
  EXPECT_EQ(requests().lists, QStringList(ToQt(test().ListFile)));
}

TEST_F(TestDefForm, LocksAReadOnlyTestOnly) {
  const Strings locked{"fraFeedback", "fraCalFileData", "fraLevelingMode", "fraLevelRamping", "cmdCalFile"};
  const auto expect = [&](bool enabled) {
    for (const std::string& name : locked) EXPECT_EQ(Enabled(name.c_str()), enabled) << name;
    EXPECT_TRUE(Enabled("txtStartFreq"));
    EXPECT_EQ(Find<QLabel>("lblReadOnly").isVisible(), !enabled);
  };
  const std::string path = WriteTest("fixed.tst", test());
  std::filesystem::permissions(path, std::filesystem::perms::owner_read);
  documents.testSetup.TestFileName = path;
  Open();
  expect(false);
  Press("chkMonitorProbe");
  EXPECT_TRUE(Ticked("chkMonitorProbe"));
  EXPECT_THAT(Told("cmdSave"), ElementsAre(testing::HasSubstr("TestSetup.SaveDef")));

  t.dialogs.AnswerSave(t.directory.File("copy.tst"));
  EXPECT_THAT(Told("mnuFileSaveAs"), IsEmpty());
  expect(true);
  t.dialogs.AnswerOpen(path);
  Press("cmdLoad");
  expect(false);
}

TEST_F(TestDefForm, ReportsAFailingPrinter) {
  Choose("mnuFilePrint");
  ASSERT_EQ(t.printer.jobs.size(), 1U);
  EXPECT_EQ(t.printer.Lines().front(), "                 Test Run Parameters");
  t.printer.failure = ErrorNumber::DeviceIoError;
  EXPECT_THAT(Told("mnuFilePrint"), ElementsAre(testing::HasSubstr("TestSetup.PrintTestSetup")));
  Choose("mnuFilePreview");
  EXPECT_EQ(requests().previews, 1);
}

TEST_F(TestDefForm, PrintsWhatIsOnTheScreen) {
  Type("txtStopFreq", "60");
  Choose("mnuFilePrint");
  ASSERT_EQ(t.printer.jobs.size(), 1U);
  EXPECT_THAT(t.printer.Lines(), testing::Contains("          Freq Range: 0.2 - 60.0"));
  EXPECT_EQ(test().StopFreq, 80) << "printing takes nothing over";
  Type("txtStopFreq", "x");
  EXPECT_THAT(Told("mnuFilePrint"), ElementsAre(kNotANumber));
  EXPECT_EQ(t.printer.jobs.size(), 1U) << "a page that shows another test than the screen";
}

TEST_F(TestDefForm, MarksWhatIsNotSavedByItsValues) {
  documents.testSetup.TestFileName = t.directory.File("a.tst");
  const QString title = ToQt("Test Definition File: " + t.directory.File("a.tst"));
  EXPECT_EQ(form().windowTitle(), title);
  Type("txtStopFreq", "80.0");
  EXPECT_EQ(form().windowTitle(), title) << "the same value";
  Type("txtStopFreq", "70");
  EXPECT_EQ(form().windowTitle(), title + "*");
  Type("txtStopFreq", "80");
  EXPECT_EQ(form().windowTitle(), title);
  Press("optFMMod");
  EXPECT_EQ(form().windowTitle(), title + "*");
  Type("txtInitLevOffset", "6");
  Press("chkMonitorProbe");
  Type("txtEUTCircuitImpedance", "70");
  EXPECT_THAT(Told("mnuFileSave"), IsEmpty());
  EXPECT_EQ(form().windowTitle(), title) << "the form shows what the file holds";
  EXPECT_EQ(Box("txtInitLevOffset").text(), "-6");
}

TEST_F(TestDefForm, AsksBeforeUnsavedEntriesAreDropped) {
  const std::string path = WriteTest("a.tst", test());
  documents.testSetup.TestFileName = path;
  Type("txtStopFreq", "70");
  t.dialogs.Answer(MessageAnswer::Cancel);
  t.dialogs.AnswerOpen(path);
  EXPECT_THAT(Told("cmdLoad"), ElementsAre("The test definition has changes that are not saved.\r\nSave them?"));
  EXPECT_EQ(t.dialogs.messages.back().title, "Save Test Definition");
  EXPECT_EQ(Box("txtStopFreq").text(), "70");

  Type("txtStartFreq", "x");
  Press("cmdExit");
  EXPECT_EQ(t.dialogs.LastText(), kNotANumber) << "Yes, but it can't be saved";
  EXPECT_TRUE(form().isVisible());
  Type("txtStartFreq", "0.2");
  Press("cmdExit");
  EXPECT_FALSE(form().isVisible());
  TestDefinition saved;
  LoadRecord(path, saved);
  EXPECT_EQ(saved.StopFreq, 70);
}

TEST_F(TestDefForm, AsksOnceAboutWhatStaysInTheSession) {
  Type("txtStopFreq", "70");
  Press("cmdStart");
  t.dialogs.Answer(MessageAnswer::No);
  Press("cmdExit");
  Open();
  EXPECT_EQ(form().windowTitle(), "Test Definition File: *");
  EXPECT_THAT(Told("cmdExit"), IsEmpty());
  EXPECT_FALSE(form().isVisible());
}

TEST_F(TestDefForm, TabSkipsTheStepThatIsNotChosen) {
  EXPECT_FALSE(Box("txtLinearStep").focusPolicy() & Qt::TabFocus);
  EXPECT_TRUE(Box("txtLogStep").focusPolicy() & Qt::TabFocus);
  Press("optLinStep");
  EXPECT_TRUE(Box("txtLinearStep").focusPolicy() & Qt::TabFocus);
  EXPECT_FALSE(Box("txtLogStep").focusPolicy() & Qt::TabFocus);
}

TEST_F(TestDefForm, DialogsBeginBesideTheFileThatIsLoaded) {
  const WorkingDirectory here(t.directory.Path());
  t.shell.settings.SaveDataDir(datakind::kTestSetups, "/configured");
  documents.testSetup.TestFileName = "a.tst";
  Told("cmdLoad");
  EXPECT_EQ(t.dialogs.openRequests.back().fileName, t.directory.File("a.tst")) << "named without its directory";
  EXPECT_EQ(t.dialogs.openRequests.back().directory, "/configured");
  Told("mnuFileSaveAs");
  EXPECT_EQ(t.dialogs.saveRequests.back().fileName, t.directory.File("a.tst"));
  Told("cmdCalFile");
  EXPECT_EQ(t.dialogs.openRequests.back().fileName, test().CalInfoFile);
  Told("cmdListFile");
  EXPECT_EQ(t.dialogs.openRequests.back().fileName, test().ListFile);
}

TEST_F(TestDefForm, OpensHelpAtItsChapter) {
  for (int tab = 0; tab < 4; ++tab) {
    Find<QTabWidget>("tabSetup").setCurrentIndex(tab);
    Choose("mnuHelpTestdef");
  }
  QTest::keyClick(&Box("txtLevelInc"), Qt::Key_F1);
  EXPECT_EQ(requests().help, QStringList({"frequencies", "modulation", "calibration file", "test level:test definition",
                                          "test level:test definition"}));
}

TEST_F(TestDefForm, TakesNoDroppedFileForTheTextOfABox) {
  TestDefinition other = test();
  other.StartFreq = 4;
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(ToQt(WriteTest("dropped.tst", other)))});
  QLineEdit& box = Box("txtStartFreq");
  QDragEnterEvent enter({2, 2}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&box, &enter);
  QDropEvent drop({2, 2}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&box, &drop);
  QApplication::processEvents();
  EXPECT_EQ(box.text(), "4");
  EXPECT_EQ(form().windowTitle(), ToQt("Test Definition File: " + t.directory.File("dropped.tst")));
}

}  // namespace
}  // namespace hylden
