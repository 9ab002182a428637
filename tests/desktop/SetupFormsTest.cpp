// What the forms that edit a record have in common, each as the program opens it on the demo station.

#include <filesystem>

#include "calibration/qt/frmCblSetup.h"
#include "calibration/qt/frmRunCablCal.h"
#include "calibration/qt/frmRunCal.h"
#include "desktop/DemoWindows.h"
#include "documents/qt/frmCalSetup.h"
#include "documents/qt/frmEquipment.h"
#include "documents/qt/frmTestDef.h"
#include "testrun/qt/frmRunTest.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

WorkingForm& OpenEquipment(DemoWindows& m) {
  return *m.desktop->OpenEquipment(&m.desktop->Menu());
}
WorkingForm& OpenTest(DemoWindows& m) {
  m.desktop->OpenTestDefinition();
  return m.Opened<frmTestDef>();
}
WorkingForm& OpenCalSetup(DemoWindows& m) {
  m.desktop->OpenCalibrationSetup();
  return m.Opened<frmCalSetup>();
}

struct SetupCase {
  const char* name;
  WorkingForm& (*open)(DemoWindows& m);
  std::string (*record)(DemoWindows& m);
  const char *box, *same, *other, *bad;  ///< the value that stands there in another spelling, another one, and none
  const char* unused;                    ///< a box that the record does not take as it is; null for none
  bool keeps;                            ///< what was entered stays in the session also when it is not to be saved
  const char *load, *save, *saveAs;
  const char *title, *saveTitle, *filter, *what, *questionTitle;
  const char* another;  ///< a file of the demo station
  std::string_view kind;
};

void PrintTo(const SetupCase& setup, std::ostream* out) {
  *out << setup.name;
}

std::string EquipmentText(DemoWindows& m) {
  return RecordText(m.documents.equip.Record);
}
std::string TestText(DemoWindows& m) {
  return RecordText(m.Test());
}
std::string CalSetupText(DemoWindows& m) {
  return RecordText(m.documents.calSetup.Record);
}

const SetupCase kSetups[] = {
    {"equipment", OpenEquipment, EquipmentText, "txtSigGenAddr", "18.0", "7", "99", nullptr, true, "mnuEquipFileLoad",
     "mnuEquipFileSave", "mnuEquipFileSaveAs", "Select equipment file", "Select equipment file",
     "Equipment Setup Files (*.eqp)|*.eqp|All Files|*.*", "The equipment", "Save Equipment", "ifi-station.eqp",
     datakind::kEquip},
    {"test_definition", OpenTest, TestText, "txtStopFreq", "80.0", "70", "x", "txtEUTCircuitImpedance", false,
     "mnuFileLoad", "mnuFileSave", "mnuFileSaveAs", "Select Test Definition File", "Select Test Definition Filename",
     "Definitions (*.tst)|*.tst", "The test definition", "Save Test Definition", "net-power-fm.tst",
     datakind::kTestSetups},
    {"calibration_setup", OpenCalSetup, CalSetupText, "txtStopFreq", "3.00", "4", "0", "txtLogStep", true,
     "mnuFileLoad", "mnuFileSave", "mnuFileSaveAs", "Select Calibration Setup file", "Select Cal Setup file",
     "Cal Setup Files (*.csu)|*.csu|All Files|*.*", "The calibration setup", "Save Calibration Setup", "cdn-10v.csu",
     datakind::kCalibrations},
};

class SetupForms : public DemoWindowsTest, public testing::WithParamInterface<SetupCase> {
 protected:
  void SetUp() override {
    m.Start();
    m.LoadTest("substitution-am.tst");
    Open();
  }
  void Open() {
    Turn();
    form = &setup.open(m);
  }
  std::vector<std::string> Told(const char* name) { return hylden::Told(dialogs, *form, name); }
  void Type(const char* text) { hylden::Type(*form, setup.box, text); }
  std::string Text() { return TextOf(*form, setup.box); }
  std::string Title() { return form->windowTitle().toStdString(); }
  /// Saves the form in the test's own directory.
  std::string SaveAs(const std::string& name) {
    dialogs.AnswerSave(m.directory.File(name));
    EXPECT_THAT(Told(setup.saveAs), testing::IsEmpty());
    return m.directory.File(name);
  }

  const SetupCase& setup = GetParam();
  WorkingForm* form = nullptr;
};

TEST_P(SetupForms, UnsavedEntriesAreMarkedByTheirValuesAndAskedAboutOnce) {
  if (setup.unused) hylden::Type(*form, setup.unused, "7");
  const std::string path = SaveAs("own"), title = Title();
  EXPECT_TRUE(title.ends_with(": " + path)) << "the form shows what the file holds: " << title;
  Type(setup.same);
  EXPECT_EQ(Title(), title);
  Type(setup.other);
  EXPECT_EQ(Title(), title + "*");
  dialogs.AnswerOpen(path);
  dialogs.Answer(MessageAnswer::Cancel);
  EXPECT_EQ(Told(setup.load),
            std::vector<std::string>{std::string(setup.what) + " has changes that are not saved.\r\nSave them?"});
  EXPECT_EQ(dialogs.messages.back().title, setup.questionTitle);
  dialogs.Answer(MessageAnswer::Cancel);
  EXPECT_FALSE(form->close());
  EXPECT_EQ(Text(), setup.other);

  dialogs.Answer(MessageAnswer::No);
  EXPECT_TRUE(form->close());
  Open();
  EXPECT_EQ(Title(), setup.keeps ? title + "*" : title);
  dialogs.Clear();
  EXPECT_TRUE(form->close());
  EXPECT_THAT(dialogs.Texts(), testing::IsEmpty()) << "asked once";

  Open();
  Type(setup.bad);
  EXPECT_FALSE(form->close()) << "Yes, but it can't be saved";
  const std::string third = std::string("1") + setup.other;
  Type(third.c_str());
  EXPECT_TRUE(form->close()) << "Yes";
  Open();
  EXPECT_EQ(Title(), title);
  EXPECT_EQ(Text(), third);
}

using SetupFormsPlan = DemoWindowsTest;

TEST_F(SetupFormsPlan, TheFormTellsWhatItsEntriesDefine) {
  m.Start();
  m.LoadTest("substitution-am.tst");
  m.desktop->OpenTestDefinition();
  auto& form = m.Opened<frmTestDef>();
  EXPECT_THAT(Find<QLabel>(form, "lblPlan").text().toStdString(), testing::HasSubstr(" frequencies, about 0:"));
  Type(form, "txtLogStep", "0");
  form.ShowPlan();
  EXPECT_EQ(TextOf(form, "lblPlan"), "step of 0: no frequencies");
}

TEST_F(SetupFormsPlan, ATemplateOfTheLabsOwnBeginsADefinitionWithoutAFile) {
  std::filesystem::create_directories(m.directory.File("templates"));
  TestDefinition ours;
  ours.StopFreq = 40;
  SaveRecord(m.directory.File("templates/R&D.tst"), ours);
  m.Start();
  m.LoadTest("substitution-am.tst");
  m.desktop->OpenTestDefinition();
  auto& form = m.Opened<frmTestDef>();
  const QList<QAction*> entries = Find<QMenu>(form, "mnuFileNew").actions();
  ASSERT_EQ(entries.size(), 1);
  EXPECT_EQ(entries.front()->text(), QLatin1String("R&&D"));
  entries.front()->trigger();
  EXPECT_THAT(dialogs.Texts(), testing::IsEmpty());
  EXPECT_EQ(TextOf(form, "txtStopFreq"), "40");
  EXPECT_EQ(form.windowTitle(), QLatin1String("Test Definition File: *"));
  EXPECT_NE(PathOf(form, "lblCalFileName"), "");
}

TEST_P(SetupForms, FileThatDoesNotLoadCostsNothing) {
  const std::string record = setup.record(m), title = Title();
  Type(setup.other);
  for (const std::string& path :
       {m.directory.Write("half", "5\r\n6\r\n"), m.directory.File("vanished"), m.directory.Path()}) {
    SCOPED_TRACE(path);
    dialogs.AnswerOpen(path);
    dialogs.Answer(MessageAnswer::No);
    EXPECT_EQ(Told(setup.load).size(), 2U);
    EXPECT_EQ(Title(), title + "*");
    EXPECT_EQ(setup.record(m), record);
    EXPECT_EQ(Text(), setup.other);
  }
}

TEST_P(SetupForms, SavedFileLoadsAgainFromTheRecentFiles) {
  const std::string path = SaveAs("A & B");
  const std::string entry = Find<QAction>(*form, setup.save).text().toStdString();
  EXPECT_TRUE(entry.starts_with("&Save ") && entry.ends_with("A && B")) << entry;
  Type(setup.other);
  EXPECT_THAT(Told(setup.save), testing::IsEmpty());
  EXPECT_THAT(dialogs.saveRequests, testing::IsEmpty());
  Type(setup.bad);
  dialogs.Answer(MessageAnswer::No);
  auto& recent = Find<QMenu>(*form, "mnuFileRecent");
  emit recent.aboutToShow();
  ASSERT_GE(recent.actions().size(), 1);
  recent.actions().first()->trigger();
  EXPECT_EQ(Text(), setup.other);
}

TEST_P(SetupForms, NothingIsSavedOfABadEntryAndAFailedSaveIsTold) {
  const std::string title = Title();
  dialogs.AnswerSave(m.directory.File("nowhere/x"));
  Type(setup.other);
  EXPECT_EQ(Told(setup.saveAs).size(), 1U);
  EXPECT_EQ(Title(), title + "*");
  m.directory.Write("old", "old");
  dialogs.AnswerSave(m.directory.File("old"));
  Type(setup.bad);
  EXPECT_EQ(Told(setup.saveAs).size(), 1U);
  EXPECT_EQ(Title(), title + "*");
  EXPECT_EQ(m.directory.Read("old"), "old");
}

TEST_P(SetupForms, DialogsBeginBesideTheLoadedFileAndCancelChangesNothing) {
  const std::string path = SaveAs("own"), title = Title(), record = setup.record(m);
  m.shell.settings.SaveDataDir(setup.kind, "/configured");
  const auto expect = [&](const std::vector<FileRequest>& requests, const char* caption) {
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].title, caption);
    EXPECT_EQ(requests[0].filter, setup.filter);
    EXPECT_EQ(requests[0].directory, "/configured");
    EXPECT_EQ(requests[0].fileName, path);
  };
  Told(setup.load);
  expect(dialogs.openRequests, setup.title);
  Told(setup.saveAs);
  expect(dialogs.saveRequests, setup.saveTitle);
  EXPECT_EQ(Title(), title);
  EXPECT_EQ(setup.record(m), record);
}

TEST_P(SetupForms, DroppedFileIsLoadedAlsoOnABox) {
  const std::string path = m.directory.File("station/") + setup.another;
  Drop(Find<QLineEdit>(*form, setup.box), {QUrl::fromLocalFile(QString::fromStdString(path))});
  Turn();
  EXPECT_TRUE(Title().ends_with(path)) << Title();
  EXPECT_TRUE(Text().size() < 10) << "the path went into the box: " << Text();
}

INSTANTIATE_TEST_SUITE_P(, SetupForms, testing::ValuesIn(kSetups),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(DemoWindowsTest, EveryFormFitsASmallScreenAndCanBeWorkedByKeysAndByEar) {
  m.Start();
  m.LoadTest("substitution-am.tst");
  RunCablCal cable(m.shell, m.instruments);
  frmCblSetup cableSetup(m.shell, m.documents, cable);
  frmRunCablCal cableRun(m.shell, m.instruments, cable);
  m.desktop->OpenCalibrationRun(&m.desktop->Menu());
  m.desktop->OpenTestRun(&m.desktop->Menu());
  for (QMainWindow* const form :
       {static_cast<QMainWindow*>(&OpenEquipment(m)), static_cast<QMainWindow*>(&OpenTest(m)),
        static_cast<QMainWindow*>(&OpenCalSetup(m)), static_cast<QMainWindow*>(&cableSetup),
        static_cast<QMainWindow*>(&cableRun), static_cast<QMainWindow*>(OpenWindow<frmRunCal>()),
        static_cast<QMainWindow*>(OpenWindow<frmRunTest>())}) {
    SCOPED_TRACE(form->objectName().toStdString());
    form->show();
    ExpectMnemonicsApart(*form);
    EXPECT_LE(form->minimumSizeHint().width(), 1024);
    EXPECT_LE(form->minimumSizeHint().height(), 720);
    for (const QLineEdit* box : form->findChildren<QLineEdit*>())
      EXPECT_FALSE(box->accessibleName().isEmpty() && !box->isReadOnly()) << box->objectName().toStdString();
    if (form->objectName().startsWith(QLatin1String("frmRun"))) continue;
    for (const QPushButton* button : form->findChildren<QPushButton*>())
      EXPECT_FALSE(button->isDefault()) << "Enter would press " << button->objectName().toStdString();
  }
}

}  // namespace
}  // namespace hylden
