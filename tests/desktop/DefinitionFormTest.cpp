// The editors of instrument definitions and the parse tester, opened from the demo station on the bench.

#include <gmock/gmock.h>

#include <QFile>
#include <QGroupBox>
#include <QMenu>
#include <QPlainTextEdit>
#include <filesystem>

#include "desktop/DemoWindows.h"
#include "documents/qt/frmEquipment.h"
#include "instruments/qt/frmMeter.h"
#include "instruments/qt/frmPMeter.h"
#include "instruments/qt/frmParseTest.h"
#include "instruments/qt/frmSigGen.h"
#include "text/RecordFile.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

struct EditorCase {
  InstrumentKind kind;
  const char *entry, *caption, *suffix, *file;
  std::string EquipRecord::*inEquipment;
};

constexpr EditorCase kEditors[] = {
    {InstrumentKind::SigGen, "mnuInstDefineSigGen", "Signal Generator File: ", "sg", "scpi.sg",
     &EquipRecord::SigGenFile},
    {InstrumentKind::Meter, "mnuInstDefineMeter", "Meter File: ", "mtr", "analyser.mtr", &EquipRecord::MeterFile},
    {InstrumentKind::PwrMtr, "mnuInstDefinePwrMtr", "Power Meter File: ", "pm", "two-channel.pm",
     &EquipRecord::PwrMtrFile}};

class DefinitionFormTest : public DemoWindowsTest {
 protected:
  void SetUp() override {
    m.Start();
    equipment = m.desktop->OpenEquipment(&m.desktop->Menu());
  }
  DefinitionForm& Open(InstrumentKind kind = InstrumentKind::SigGen) {
    Choose(*equipment, kEditors[static_cast<int>(kind)].entry);
    auto* const form = OpenWindow<DefinitionForm>();
    if (!form) throw std::runtime_error("no editor opened");
    return *form;
  }
  /// Chooses an entry with what is typed at its prompts.
  void Test(DefinitionForm& form, const char* entry, const std::vector<std::string>& typed = {}) {
    for (const std::string& text : typed) dialogs.AnswerInput(text);
    Choose(form, entry);
  }
  bool RfIsOn() { return m.bench.State().Generator.RfOn; }
  EquipRecord& Record() { return m.station.documents.equip.Record; }

  frmEquipment* equipment = nullptr;
};

TEST_F(DefinitionFormTest, SaysWhichFileItHoldsAndWhatOfItIsNotSaved) {
  for (const EditorCase& c : kEditors) {
    SCOPED_TRACE(c.caption);
    DefinitionForm& form = Open(c.kind);
    EXPECT_FALSE(equipment->isVisible());
    const QString title = form.windowTitle();
    EXPECT_TRUE(title.startsWith(c.caption) && title.endsWith(c.file)) << title.toStdString();
    EXPECT_EQ(Find<QAction>(form, "mnuFileSave").text().toStdString(), std::string("&Save ") + c.file);
    Type(form, "txtName", "Mine");
    EXPECT_EQ(form.windowTitle(), title + "*");
    dialogs.Answer(MessageAnswer::Cancel);
    EXPECT_FALSE(form.close());
    dialogs.Answer(MessageAnswer::No);
    EXPECT_TRUE(form.close());
    EXPECT_EQ(dialogs.messages.size(), 2u) << "asked once each";
    EXPECT_TRUE(equipment->isVisible());
    dialogs.Clear();
    Turn();
  }
  EXPECT_EQ(m.station.instruments.sigGen.InstrumentName(), "SCPI signal generator, 0.1 to 1000 MHz");
}

TEST_F(DefinitionFormTest, WhatIsSavedOrLoadedBecomesTheInstrumentOfTheStation) {
  for (const EditorCase& c : kEditors) {
    SCOPED_TRACE(c.caption);
    const std::string before = Record().*c.inEquipment;
    DefinitionForm& form = Open(c.kind);
    Choose(form, "mnuFileNew");
    EXPECT_EQ(form.windowTitle(), c.caption);
    Type(form, "txtName", "Mine");
    Type(form, "txtAddress", "21");
    const std::string mine = m.directory.File(std::string("mine.") + c.suffix);
    dialogs.AnswerSave(mine);
    Choose(form, "mnuFileSave");
    EXPECT_EQ(form.windowTitle().toStdString(), c.caption + mine);
    EXPECT_EQ(Record().*c.inEquipment, mine);
    dialogs.AnswerOpen(m.directory.Write("broken", "half a line\r\n"));
    Choose(form, "mnuFileLoad");
    EXPECT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(Record().*c.inEquipment, mine);
    EXPECT_TRUE(form.close());
    Turn();
    EXPECT_TRUE(equipment->windowTitle().endsWith("*"));
    DefinitionForm& again = Open(c.kind);
    EXPECT_EQ(TextOf(again, "txtName"), "Mine");
    EXPECT_EQ(TextOf(again, "txtAddress"), "21");
    again.LoadFile(QString::fromStdString(before));
    EXPECT_EQ(Record().*c.inEquipment, before);
    EXPECT_TRUE(again.close());
    dialogs.Clear();
    Turn();
  }
}

TEST_F(DefinitionFormTest, AnEntryThatCanNotBeTakenIsMarkedAndStopsSaveAndTest) {
  DefinitionForm& form = Open();
  Find<QTabWidget>(form, "tabSetup").setCurrentIndex(1);
  auto& box = Find<QLineEdit>(form, "txtRfOn");
  const QColor plain = box.palette().color(QPalette::Text);
  box.setText(QString::fromUtf8("OUTP \u2126"));
  EXPECT_NE(box.palette().color(QPalette::Text), plain);
  for (const char* const entry : {"mnuTestInit", "mnuFileSave", "mnuFilePrint"}) {
    Choose(form, entry);
    EXPECT_EQ(dialogs.LastText(), "The bus can't carry every character of this text, re-enter");
    EXPECT_TRUE(box.isVisible());
  }
  EXPECT_TRUE(dialogs.inputs.empty());
  box.setText("OUTP ON");
  EXPECT_EQ(box.palette().color(QPalette::Text), plain);
  Choose(form, "mnuFilePrint");
  EXPECT_EQ(m.printer.jobs.size(), 1u);
}

TEST_F(DefinitionFormTest, AFailingPrinterIsReportedWithItsEntry) {
  DefinitionForm& form = Open();
  m.printer.failure = ErrorNumber::DeviceIoError;
  Choose(form, "mnuFilePrint");
  EXPECT_THAT(dialogs.LastText(), testing::HasSubstr("Error # 57\rDevice I/O error\rmnuFilePrint\r"));
}

TEST_F(DefinitionFormTest, ASaveAsksBeforeItDropsWhatTheFileHoldsBesides) {
  DefinitionForm& form = Open();
  const std::string path = Record().SigGenFile;
  const std::string loaded = ReadFileBytes(path);
  struct {
    std::string written;
    bool load;
    const char* question;
  } const cases[] = {
      {loaded + "\r\n\x1A", true, nullptr},
      {loaded + "calibrated in May\r\n", true, "also holds further lines"},
      {loaded + "calibrated in June\r\n", false, "has been changed by somebody else since it was loaded"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.written);
    ReplaceFile(path, c.written);
    if (c.load) form.LoadFile(QString::fromStdString(path));
    dialogs.Clear();
    if (c.question) dialogs.Answer(MessageAnswer::No);
    Choose(form, "mnuFileSave");
    EXPECT_EQ(ReadFileBytes(path), c.question ? c.written : loaded);
    EXPECT_THAT(dialogs.LastText(), testing::HasSubstr(c.question ? c.question : ""));
    EXPECT_EQ(dialogs.messages.size(), c.question ? 1u : 0u);
  }
  dialogs.Clear();
  dialogs.Answer(MessageAnswer::Yes);
  Choose(form, "mnuFileSave");
  Choose(form, "mnuFileSave");
  EXPECT_EQ(dialogs.messages.size(), 1u) << "what was saved is known";
  std::filesystem::permissions(path, std::filesystem::perms::owner_read);
  Type(form, "txtName", "Mine");
  Choose(form, "mnuFileSave");
  EXPECT_THAT(dialogs.LastText(), testing::HasSubstr("SigGen.SaveFile\r"));
  EXPECT_TRUE(form.windowTitle().endsWith('*'));
  EXPECT_EQ(ReadFileBytes(path), loaded);
}

TEST_F(DefinitionFormTest, TheStationsEntriesAreAppliedBeforeAnEditorOpens) {
  Type(*equipment, "txtSigGenAddr", "99");
  Choose(*equipment, "mnuInstDefineSigGen");
  EXPECT_EQ(OpenWindow<DefinitionForm>(), nullptr);
  EXPECT_THAT(dialogs.LastText(), testing::StartsWith(kOutOfRangeText));
  Type(*equipment, "txtSigGenAddr", "7");
  EXPECT_EQ(TextOf(Open(), "txtAddress"), "7");
}

TEST_F(DefinitionFormTest, ClosingAndTheEndOfTheProgramLeaveRfOffAndTheGeneratorLocal) {
  for (const bool programEnds : {false, true}) {
    SCOPED_TRACE(programEnds);
    DefinitionForm& form = Open();
    Test(form, "mnuTestInit", {"10", "-30"});
    Choose(form, "mnuTestRfOn");
    EXPECT_TRUE(RfIsOn());
    EXPECT_EQ(TextOf(form, "lblRf"), "RF ON");
    EXPECT_TRUE(TextOf(form, "lblTrial").starts_with("RF On: done. The instrument is up"));
    QTest::keyClick(&form, Qt::Key_Escape);
    EXPECT_FALSE(RfIsOn()) << "Escape is Halt";
    Choose(form, "mnuTestRfOn");
    Type(form, "txtName", "Mine");
    bool rfWithQuestion = true;
    dialogs.onShow = [&](const Message&) { rfWithQuestion = RfIsOn() || TextOf(form, "lblRf") == "RF ON"; };
    dialogs.Answer(MessageAnswer::No);
    if (programEnds)
      m.desktop->CloseAll();
    else
      form.close();
    Turn();
    dialogs.onShow = nullptr;
    EXPECT_FALSE(rfWithQuestion);
    EXPECT_FALSE(RfIsOn());
    EXPECT_FALSE(m.station.shell.InstrumentsClaimed());
    EXPECT_EQ(OpenWindow<DefinitionForm>(), nullptr);
  }
}

TEST_F(DefinitionFormTest, AnEditorThatIsClosedDuringAWaitClosesBehindIt) {
  DefinitionForm& form = Open(InstrumentKind::Meter);
  Choose(form, "mnuTestInit");
  bool refused = false;
  m.events.onYield = [&] {
    if (!refused) refused = !form.close() && !Find<QAction>(form, "mnuTestTrigger").isEnabled();
  };
  Choose(form, "mnuTestRead");
  m.events.onYield = nullptr;
  EXPECT_TRUE(refused);
  Turn();
  EXPECT_EQ(OpenWindow<DefinitionForm>(), nullptr);
  EXPECT_TRUE(equipment->isVisible());
}

/// Fills a form in as a chapter of the manual says: rows of group, box, and text, or prefix and suffix.
void FillInAsInTheManual(DefinitionForm& form) {
  QFile manual(QStringLiteral(HYLDEN_SOURCE_DIR "/help/hylden.md"));
  ASSERT_TRUE(manual.open(QIODevice::ReadOnly));
  const QString chapter = QString::fromUtf8(manual.readAll()).section("\n# " + form.HelpTopic() + "\n", 1, 1);
  int rows = 0;
  for (const QString& line : chapter.section("\n# ", 0, 0).split('\n')) {
    const QStringList cells = line.split(" | ");
    if (cells.size() != 3 || !line.contains('`')) continue;
    const QString group = QString(cells[0]).remove("| "), label = cells[1], texts = cells[2].section('`', 1);
    SCOPED_TRACE(line.toStdString());
    QWidget* box = nullptr;
    for (const QGroupBox* const fields : form.findChildren<QGroupBox*>())
      for (const QLabel* const named : fields->findChildren<QLabel*>())
        if (fields->title() == group && named->text().remove('&') == label + ":") box = named->buddy();
    ASSERT_NE(box, nullptr);
    QString name = box->objectName();
    Type(form, name.toLatin1(), texts.section('`', 0, 0).toLatin1());
    ++rows;
    if (!texts.contains(", `")) continue;
    name = name.endsWith('1') ? name.replace('1', '2') : name.replace("Pre", "Suf");
    Type(form, name.toLatin1(), texts.section('`', 2, 2).toLatin1());
  }
  EXPECT_GT(rows, 10);
}

// The stories of the manual, on the bench: from an empty definition to what the instrument does.

TEST_F(DefinitionFormTest, TheManualsGeneratorIsWrittenAndTried) {
  DefinitionForm& form = Open();
  Choose(form, "mnuFileNew");
  Press(form, "optEOScrlf");
  Press(form, "chkAmCapable");
  FillInAsInTheManual(form);
  const auto generator = [this] { return m.bench.State().Generator; };
  Test(form, "mnuTestInit", {"10", "-30"});
  Choose(form, "mnuTestRfOn");
  EXPECT_TRUE(generator().RfOn && generator().FreqMHz == 10 && generator().LevelDbm == -30);
  Test(form, "mnuTestSetFreqLev", {"20", "-20"});
  EXPECT_TRUE(generator().RfOn && generator().FreqMHz == 20 && generator().LevelDbm == -20);
  Test(form, "mnuTestSetFreqLev", {"20", "5"});
  EXPECT_EQ(dialogs.Texts(), std::vector<std::string>{"Level requested outside of range of instrument"});
  EXPECT_FALSE(generator().RfOn);
  Choose(form, "mnuTestRfOn");
  Test(form, "mnuTestEnableAm", {"1", "80"});
  EXPECT_EQ(generator().Modulation, BenchModulation::Am);
  Choose(form, "mnuTestModOff");
  EXPECT_EQ(generator().Modulation, BenchModulation::None);
  Choose(form, "mnuTestLocal");
  EXPECT_FALSE(generator().RfOn);
  EXPECT_EQ(dialogs.messages.size(), 1u);
}

TEST_F(DefinitionFormTest, TheManualsMeterIsWrittenAndTriedUntilItReads) {
  DefinitionForm& form = Open(InstrumentKind::Meter);
  Choose(form, "mnuFileNew");
  Press(form, "optEOScrlf");
  Press(form, "optUnitDbuv");
  FillInAsInTheManual(form);
  Choose(form, "mnuTestInit");
  Test(form, "mnuTestSetFreq", {"10"});
  Test(form, "mnuTestSetLevel", {"40"});
  Choose(form, "mnuTestRead");
  ASSERT_EQ(dialogs.messages.size(), 1u);
  EXPECT_TRUE(dialogs.LastText().starts_with("The meter's answer holds no number:\r\n\"MKA ")) << dialogs.LastText();

  Choose(form, "mnuTestParse");
  auto& tester = *OpenWindow<frmParseTest>();
  EXPECT_TRUE(TextOf(tester, "txtRetString").starts_with("MKA "));
  EXPECT_EQ(TextOf(tester, "txtEvalExpression"), "X");
  Type(tester, "txtEvalExpression", "Mid(x, 5)");
  Press(tester, "cmdTest");
  EXPECT_TRUE(Find<QPlainTextEdit>(tester, "txtExplanation").toPlainText().contains("is read from it"));
  Press(tester, "cmdSave");
  Turn();
  EXPECT_EQ(OpenWindow<frmParseTest>(), nullptr);
  EXPECT_EQ(TextOf(form, "txtParse"), "Mid(x, 5)");
  dialogs.Clear();
  Choose(form, "mnuTestRead");
  EXPECT_TRUE(dialogs.LastText().starts_with("Result = ")) << dialogs.LastText();
  EXPECT_TRUE(dialogs.LastText().find(" dBuv\r\nReturned String = \"MKA ") != std::string::npos);
  Choose(form, "mnuTestShutdown");
  EXPECT_EQ(dialogs.messages.size(), 1u);
}

TEST_F(DefinitionFormTest, TheManualsPowerMeterIsWrittenAndTriedUntilItReads) {
  DefinitionForm& form = Open(InstrumentKind::PwrMtr);
  Choose(form, "mnuFileNew");
  for (const char* const option : {"optEOScrlf", "optTypePwrMeter", "optUnitDbm"}) Press(form, option);
  FillInAsInTheManual(form);
  Choose(form, "mnuTestInit");
  Test(form, "mnuTestSetFreq", {"10"});
  Choose(form, "mnuTestRead");
  EXPECT_TRUE(dialogs.LastText().starts_with("Result = -")) << dialogs.LastText();
  Choose(form, "mnuTestShutdown");
  EXPECT_EQ(dialogs.messages.size(), 1u);
}

TEST_F(DefinitionFormTest, AMeterShowsItsLimitsInTheUnitsThatAreChosen) {
  DefinitionForm& form = Open(InstrumentKind::Meter);
  Type(form, "txtMaxLev", "120");
  Press(form, "optUnitDbm");
  EXPECT_EQ(TextOf(form, "txtMaxLev"), "13.01");
  EXPECT_EQ(TextOf(form, "lblMaxLevUnit"), "dBm");
  Press(form, "optUnitVolts");
  EXPECT_EQ(TextOf(form, "txtMaxLev"), "1.0");
}

TEST_F(DefinitionFormTest, EveryControlHasANameAKeyAndTheFormsFitASmallScreen) {
  for (const EditorCase& c : kEditors) {
    DefinitionForm& form = Open(c.kind);
    ExpectMnemonicsApart(form);
    for (const QLineEdit* const box : form.findChildren<QLineEdit*>()) {
      EXPECT_FALSE(box->accessibleName().isEmpty() || box->toolTip().isEmpty()) << box->objectName().toStdString();
    }
    EXPECT_LE(form.minimumSizeHint().width(), 1024);
    EXPECT_LE(form.minimumSizeHint().height(), 720);
    form.close();
    Turn();
  }
}

struct ParseRow {
  const char *answer, *expression, *result, *explained;
};

TEST_F(DefinitionFormTest, ParseTesterExplainsResultAndError) {
  const ParseRow rows[] = {
      {"VALUE 72.669 DBUV", "Mid(x, 7, 6)", "72.669", "The result is a text. The number 72.669 is read from it."},
      {"+7.26690E+01\r\n", "X", "+7.26690E+01\r\n", "The number 72.669 is read from it."},
      {"2.5", "CDbl(x) * 2", "5", "The result is a number. The number 5 is read"},
      {"2", "x > 1", "True", "The result is a truth value. No number stands at its start"},
      {"", "x", "", "The result is a text. Nothing can be read from it, so a reading fails."},
      {"5", "nobody", "", "The result is empty. Nothing can be read"},
      {"5", "#2024-02-03#", "2/3/2024", "The result is a date. The number 2 is read"},
      {"9.91E+37", "x", "9.91E+37", "for no value, so a reading fails"},
      {"5", "Mid(x, 1", "", "Expected ')' at column 9\nMid(x, 1\n        ^"},
      {"abc", "1 + CDbl(x)", "", "Type mismatch: 'CDbl' at column 5\n1 + CDbl(x)\n    ^"},
      {"5", "\"\u00B5\" & x / 0", "", "Division by zero at column 9\n"},
      {"5", "x; 2", "", "Invalid character at column 2\nx; 2\n ^"},
      {"5",
       "((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((("
       "(((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((",
       "", "Out of stack space at column 201"},
      {"5", "String(2000000, x)", "", "Out of string space at column 1\n"}};
  frmParseTest form(m.station.shell, m.station.instruments.parser);
  form.show();
  for (const ParseRow& row : rows) {
    SCOPED_TRACE(row.expression);
    dialogs.Clear();
    form.ReturnString(QString::fromUtf8(row.answer));
    form.ParseExpression(QString::fromUtf8(row.expression));
    QTest::keyClick(&Find<QLineEdit>(form, "txtEvalExpression"), Qt::Key_Return);
    EXPECT_EQ(TextOf(form, "txtResult"), row.result);
    const std::string explained = Find<QPlainTextEdit>(form, "txtExplanation").toPlainText().toStdString();
    EXPECT_NE(explained.find(row.explained), std::string::npos) << explained;
    const bool failed = explained.find("The result is") == std::string::npos;
    EXPECT_EQ(dialogs.messages.size(), failed ? 1u : 0u);
    EXPECT_EQ(dialogs.LastText().starts_with("Scripting error\r\nError number "), failed);
  }
  form.ParseExpression({});
  EXPECT_EQ(TextOf(form, "txtEvalExpression"), "X");
  EXPECT_EQ(TextOf(form, "txtResult"), "") << "no result of another expression";
  form.close();
}

}  // namespace
}  // namespace hylden
