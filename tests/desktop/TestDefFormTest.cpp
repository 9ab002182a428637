#include <filesystem>

#include "desktop/DemoWindows.h"
#include "documents/qt/frmTestDef.h"
#include "platform/qt/QtText.h"
#include "support/SameRecord.h"
#include "support/SampleDocuments.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Strings = std::vector<std::string>;

constexpr char kNotANumber[] = "Value not a number, re-enter";

/// A definition that passes every check, with everything in use.
TestDefinition GoodDefinition(const TempDir& directory) {
  TestDefinition d = RecordOf<TestDefinition>(kTestFile);
  d.CalInfoFile = directory.File("cal.hyinfo"), d.ListFile = directory.File("list.lst");
  d.FreqList = d.ConstPeak = d.UseAMdepth = d.Extrapolate = d.LimitCurrent = true;
  d.Spare1 = d.Spare2 = d.Spare3 = d.Spare4 = d.Spare5 = "";
  return d;
}

class TestDefForm : public DemoWindowsTest {
 protected:
  void SetUp() override {
    m.directory.Write("cal.hyinfo", "Setup <b>1</b>\r\nAmp\r\nCDN\r\n10v\r\n0.15 - 230\r\n 1 \r\n");
    other = m.directory.Write("other.hyinfo", "Other\r\nA2\r\nD2\r\n3v\r\n1 - 30\r\n 1 \r\n");
    m.directory.Write("list.lst", "1.0\r\n2.0\r\n");
    test() = m.documents.testSetup.Saved = GoodDefinition(m.directory);
    EXPECT_TRUE(m.documents.calInfo.LoadDef(test().CalInfoFile));
    Open();
  }
  TestDefinition& test() { return m.documents.testSetup.Definition; }
  CalInfoRec& info() { return m.documents.calInfo.Record; }

  void Open() {
    form.reset();
    form = std::make_unique<frmTestDef>(m.shell, m.documents);
    starts = std::make_unique<QSignalSpy>(form.get(), &frmTestDef::StartRequested);
    form->show();
    QApplication::setActiveWindow(form.get());
  }
  void Type(const char* name, const char* text) { hylden::Type(*form, name, text); }
  void Press(const char* name) { hylden::Press(*form, name); }
  std::string Text(const char* name) { return TextOf(*form, name); }
  std::string Path(const char* label) { return PathOf(*form, label); }
  QTabWidget& Tabs() { return Find<QTabWidget>(*form, "tabSetup"); }
  Strings Told(const char* name) { return hylden::Told(dialogs, *form, name); }

  std::string other;  ///< another calibration
  std::unique_ptr<frmTestDef> form;
  std::unique_ptr<QSignalSpy> starts;
};

TEST_F(TestDefForm, ShowsAndFillsEachFieldByItsControl) {
  TestDefinition second = test();
  second.FreqSweep = second.ConstPeak = second.ModOffBetweenFreqs = second.UseAMdepth = false;
  second.Extrapolate = second.LimitCurrent = false;
  second.StepType = StepType::Linear;  // kept only while the sweep is on
  second.ModType = Modulation::Fm, second.LevelingMethod = LevelingMethod::ForwardPower,
  second.LevelingMode = LevelingMode::Substitution;
  TestDefinition third = second;
  third.FreqSweep = true, third.FreqList = false;
  third.ModType = Modulation::Pulse, third.LevelingMethod = LevelingMethod::SigGen,
  third.ModOffBetweenFreqs = third.LimitCurrent = true;
  TestDefinition plain = third;
  plain.ModType = Modulation::None;
  for (const TestDefinition& shown : {GoodDefinition(m.directory), second, third, plain}) {
    test() = shown;
    Open();
    test() = {};
    EXPECT_TRUE(form->FormToDef());
    EXPECT_TRUE(SameRecord(test(), shown));
    EXPECT_THAT(dialogs.Texts(), IsEmpty());
  }
}

TEST_F(TestDefForm, SelectsNothingForACodeThatNoOptionStandsFor) {
  test().StepType = static_cast<StepType>(5), test().ModType = static_cast<Modulation>(9),
  test().LevelingMethod = static_cast<LevelingMethod>(7), test().LevelingMode = static_cast<LevelingMode>(4);
  Open();
  for (const char* option : {"optLinStep", "optLogStep", "optNoMod", "optAMMod", "optFMMod", "optPulseMod",
                             "optSigGenLevel", "optUseFwdPwr", "optNetPwrLev", "optRealTimeLevel"})
    EXPECT_FALSE(IsTicked(*form, option)) << option;
  EXPECT_TRUE(IsTicked(*form, "optSubstitution"));
  Press("optFMMod");
  Press("optPulseMod");
  EXPECT_FALSE(IsTicked(*form, "optFMMod"));
}

TEST_F(TestDefForm, StartsNoTestWithABoxThatHoldsNoNumberAndPointsItOut) {
  EXPECT_EQ(ExpectPointedOut(dialogs, *form, test(), "cmdStart"), 14U);
  for (const char* modulation : {"optFMMod", "optPulseMod"}) {
    Press(modulation);
    EXPECT_EQ(ExpectPointedOut(dialogs, *form, test(), "cmdStart"), 14U) << modulation;
  }
  EXPECT_EQ(starts->count(), 0);
}

TEST_F(TestDefForm, ShowsThePageOfWhatIsMissing) {
  const std::tuple<void (*)(TestDefinition&), const char*, int> rows[] = {
      {[](auto& t) { t.CalInfoFile.clear(); }, "No calibration setup file specified!", 2},
      {[](auto& t) { t.FreqSweep = t.FreqList = false; },
       "Either a swept frequency test or \r\na discrete frequency test must be specified", 0},
      {[](auto& t) { t.ModType = Modulation::Pulse, t.ConstPeak = t.ModOffBetweenFreqs = false; },
       "The power meter reads the mean of a pulsed signal", 1}};
  for (const auto& [change, message, tab] : rows) {
    SCOPED_TRACE(message);
    test() = GoodDefinition(m.directory);
    change(test());
    Open();
    Tabs().setCurrentIndex(3);
    EXPECT_THAT(Told("cmdStart"), ElementsAre(testing::StartsWith(message)));
    EXPECT_EQ(dialogs.messages.back().buttons, MessageButtons::Ok);
    EXPECT_EQ(Tabs().currentIndex(), tab);
    EXPECT_EQ(starts->count(), 0);
  }
}

TEST_F(TestDefForm, AnnouncesATestOutsideItsCalibrationAndStartsItWithin) {
  Type("txtStartFreq", "0.1");
  Type("txtStopFreq", "1e3");
  EXPECT_EQ(Told("cmdStart").size(), 2U);
  EXPECT_EQ(Text("txtStartFreq"), "0.15");
  EXPECT_EQ(Text("txtStopFreq"), "230");
  EXPECT_EQ(starts->count(), 1);
}

TEST_F(TestDefForm, AClickEnablesWhatItPutsInUseAndFollowsItsRule) {
  Press("optFMMod");
  EXPECT_TRUE(IsEnabled(*form, "txtFmDev"));
  EXPECT_FALSE(IsEnabled(*form, "txtAmDepth"));
  Press("optAMMod");
  Press("chkModOffBetweenFreqs");
  EXPECT_FALSE(IsTicked(*form, "chkConstPeak") || IsEnabled(*form, "chkUseAMdepth"));
  Press("chkConstPeak");
  EXPECT_TRUE(IsTicked(*form, "chkModOffBetweenFreqs") && IsEnabled(*form, "chkUseAMdepth"));
  Press("chkMonitorProbe");
  EXPECT_FALSE(IsEnabled(*form, "chkLimitCurrent") || IsEnabled(*form, "lblLimitMargin2"));
}

TEST_F(TestDefForm, OpensTheEquipmentPageThatAnIncompleteStationLacks) {
  QSignalSpy pages(form.get(), &frmTestDef::EditEquipmentRequested);
  m.documents.equip.Record.RevPortFile.clear();
  EXPECT_THAT(Told("cmdStart"), ElementsAre("No reverse coupler port file has been selected"));
  m.documents.equip.Record.AmpConfiguration = AmpConfig::Single;
  EXPECT_EQ(Told("cmdStart").size(), 1U);
  ASSERT_EQ(pages.count(), 2);
  EXPECT_EQ(pages[0][0].toInt(), 1);
  EXPECT_EQ(pages[1][0].toInt(), 0);
  EXPECT_EQ(starts->count(), 0);
  Press("optSigGenLevel");
  EXPECT_THAT(Told("cmdStart"), IsEmpty());
  EXPECT_EQ(starts->count(), 1);
}

TEST_F(TestDefForm, ChecksATestAgainstItsOwnCalibration) {
  TestDefinition orphan = test();
  orphan.CalInfoFile = m.directory.File("vanished.hyinfo");
  SaveRecord(m.directory.File("orphan.tst"), orphan);
  dialogs.AnswerOpen(m.directory.File("orphan.tst"));
  EXPECT_THAT(Told("cmdLoad"), ElementsAre(testing::HasSubstr("CalInfo.LoadDef")));
  EXPECT_EQ(Text("lblCalFreqRange"), "");
  EXPECT_THAT(Told("cmdStart"), ElementsAre(testing::HasSubstr("No start/stop frequencies")));
}

TEST_F(TestDefForm, ShowsItsCalibrationAndTakesAChosenOneWholeOrNotAtAll) {
  EXPECT_EQ(Text("lblCalDescription"), "Setup <b>1</b>");
  EXPECT_EQ(Find<QLabel>(*form, "lblCalDescription").textFormat(), Qt::PlainText);
  EXPECT_EQ(Text("lblAmplifier"), "Amp");
  EXPECT_EQ(Text("lblCouplingMethod"), "CDN");
  EXPECT_EQ(Path("lblCalLevel"), "10v");
  EXPECT_EQ(Text("lblCalFreqRange"), "0.15 - 230");
  EXPECT_EQ(Path("lblCalFileName"), test().CalInfoFile);
  Told("cmdCalFile");
  EXPECT_EQ(dialogs.openRequests.back().title, "Select Calibration File");
  EXPECT_EQ(dialogs.openRequests.back().filter, "CalInfo (*.hyinfo)|*.hyinfo");
  EXPECT_EQ(dialogs.openRequests.back().fileName, test().CalInfoFile);
  dialogs.AnswerOpen(other);
  EXPECT_THAT(Told("cmdCalFile"), IsEmpty());
  dialogs.AnswerOpen(m.directory.Write("bad.hyinfo", "Bad\r\n"));
  EXPECT_THAT(Told("cmdCalFile"), ElementsAre(testing::HasSubstr("CalInfo.LoadDef")));
  EXPECT_EQ(Path("lblCalFileName"), other);
  EXPECT_EQ(Text("lblCalDescription"), "Other");
  EXPECT_EQ(info().SetupDescription, "Other");
}

TEST_F(TestDefForm, DropsACalibrationFromFormAndRecord) {
  dialogs.AnswerOpen(other);
  Press("cmdCalFile");
  dialogs.Answer(MessageAnswer::No);
  Press("cmdExit");
  EXPECT_FALSE(form->isVisible());
  EXPECT_EQ(info().FreqRange, "0.15 - 230");

  dialogs.AnswerOpen(other);
  Open();
  Press("cmdCalFile");
  ASSERT_TRUE(form->FormToDef());
  dialogs.Answer(MessageAnswer::No);
  Choose(*form, "mnuFileExit");
  EXPECT_EQ(test().CalInfoFile, other);
  EXPECT_EQ(info().FreqRange, "1 - 30");
}

TEST_F(TestDefForm, TakesNoFileThatIsNoListAndAsksForTheBuilderWithItsList) {
  QSignalSpy lists(form.get(), &frmTestDef::CreateListRequested);
  Press("cmdCreateList");
  ASSERT_EQ(lists.count(), 1);
  EXPECT_EQ(lists[0][0].toString(), ToQt(test().ListFile));
  test().FreqList = false;
  Open();
  const std::string before = test().ListFile;
  for (const std::string& path : {m.directory.Write("bad.lst", "1\r\ntwo\r\n"), m.directory.File("vanished.lst")}) {
    dialogs.AnswerOpen(path);
    EXPECT_EQ(Told("cmdListFile").size(), 1U);
    EXPECT_EQ(Path("lblListFile"), before);
    EXPECT_FALSE(IsTicked(*form, "chkFreqList"));
  }
  const std::string path = m.directory.Write("good.lst", "1\r\n2\r\n");
  dialogs.AnswerOpen(path);
  EXPECT_THAT(Told("cmdListFile"), IsEmpty());
  EXPECT_EQ(dialogs.openRequests.back().title, "Select frequency list file");
  EXPECT_EQ(dialogs.openRequests.back().filter, "Frequency List (*.lst)|*.lst|All Files|*.*");
  EXPECT_EQ(dialogs.openRequests.back().fileName, before);
  EXPECT_EQ(Path("lblListFile"), path);
  EXPECT_TRUE(IsTicked(*form, "chkFreqList"));
}

TEST_F(TestDefForm, LocksAReadOnlyTestOnly) {
  const auto expect = [&](bool enabled) {
    for (const char* name : {"fraFeedback", "fraCalFileData", "fraLevelingMode", "fraLevelRamping", "cmdCalFile"})
      EXPECT_EQ(IsEnabled(*form, name), enabled) << name;
    EXPECT_TRUE(IsEnabled(*form, "txtStartFreq"));
    EXPECT_EQ(Find<QLabel>(*form, "lblReadOnly").isVisible(), !enabled);
  };
  const std::string path = m.directory.File("fixed.tst");
  SaveRecord(path, test());
  std::filesystem::permissions(path, std::filesystem::perms::owner_read);
  m.documents.testSetup.TestFileName = path;
  Open();
  expect(false);
  EXPECT_THAT(Told("cmdSave"), ElementsAre(testing::HasSubstr("TestSetup.SaveDef")));
  dialogs.AnswerSave(m.directory.File("copy.tst"));
  EXPECT_THAT(Told("mnuFileSaveAs"), IsEmpty());
  expect(true);
  dialogs.AnswerOpen(path);
  Press("cmdLoad");
  expect(false);
}

TEST_F(TestDefForm, PrintsWhatIsOnTheScreenAndReportsAFailingPrinter) {
  Type("txtStopFreq", "60");
  Choose(*form, "mnuFilePrint");
  ASSERT_EQ(m.printer.jobs.size(), 1U);
  EXPECT_THAT(m.printer.Lines(), testing::Contains("          Freq Range: 0.15 - 60.0"));
  EXPECT_EQ(test().StopFreq, 80) << "printing takes nothing over";
  Type("txtStopFreq", "x");
  EXPECT_THAT(Told("mnuFilePrint"), ElementsAre(std::string(kNotANumber) + "\r\nStop: above 0.15 MHz"));
  EXPECT_EQ(m.printer.jobs.size(), 1U) << "a page that shows another test than the screen";
  Type("txtStopFreq", "60");
  m.printer.failure = ErrorNumber::DeviceIoError;
  EXPECT_THAT(Told("mnuFilePrint"), ElementsAre(testing::HasSubstr("TestSetup.PrintTestSetup")));
  QSignalSpy previews(form.get(), &frmTestDef::PrintPreviewRequested);
  Choose(*form, "mnuFilePreview");
  EXPECT_EQ(previews.count(), 1);
}

TEST_F(TestDefForm, AsksOnceAboutWhatStaysInTheSession) {
  Type("txtStopFreq", "70");
  Press("cmdStart");
  dialogs.Answer(MessageAnswer::No);
  Press("cmdExit");
  Open();
  EXPECT_EQ(form->windowTitle(), "Test Definition File: *");
  EXPECT_THAT(Told("cmdExit"), IsEmpty());
  EXPECT_FALSE(form->isVisible());
}

TEST_F(TestDefForm, TabSkipsTheStepThatIsNotChosen) {
  const auto stops = [this](const char* box) {
    return (Find<QLineEdit>(*form, box).focusPolicy() & Qt::TabFocus) != 0;
  };
  EXPECT_TRUE(stops("txtLogStep") && !stops("txtLinearStep"));
  Press("optLinStep");
  EXPECT_TRUE(stops("txtLinearStep") && !stops("txtLogStep"));
}

TEST_F(TestDefForm, OpensHelpAtItsChapter) {
  QStringList topics;
  QObject::connect(form.get(), &WorkingForm::HelpRequested, [&](const QString& topic) { topics << topic; });
  for (int tab = 0; tab < 4; ++tab) {
    Tabs().setCurrentIndex(tab);
    Choose(*form, "mnuHelpTestdef");
  }
  QTest::keyClick(&Find<QLineEdit>(*form, "txtLevelInc"), Qt::Key_F1);
  EXPECT_EQ(topics, QStringList({"frequencies", "modulation", "calibration file", "test level:test definition",
                                 "test level:test definition"}));
}

}  // namespace
}  // namespace hylden
