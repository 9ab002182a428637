#include <gmock/gmock.h>

#include <QPlainTextEdit>
#include <QRadioButton>

#include "desktop/DemoWindows.h"
#include "documents/qt/frmCalSetup.h"
#include "measure/qt/frmBuildList.h"
#include "shell/FormEntries.h"
#include "support/TestShell.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

class ListBuilderForm : public testing::Test {
 protected:
  void SetUp() override {
    form.show();
    QApplication::setActiveWindow(&form);
  }
  std::string List() { return list.toPlainText().toStdString(); }
  void Fill(const char* option, const char* start, const char* end, const char* step) {
    Press(form, option);
    Type(form, "txtRangeStart", start);
    Type(form, "txtRangeEnd", end);
    Type(form, "txtStepSize", step);
  }
  std::string Written(const char* name, const char* text) {
    ReplaceFile(t.directory.File(name), text);
    return t.directory.File(name);
  }
  std::string Caption() { return form.windowTitle().toStdString(); }

  TestShell t;
  frmBuildList form{t.shell};
  QPlainTextEdit& list = Find<QPlainTextEdit>(form, "txtList");
};

TEST_F(ListBuilderForm, TakesPartsOfEachKind) {
  EXPECT_TRUE(Find<QRadioButton>(form, "optHarmonics").isChecked());
  EXPECT_FALSE(Find<QLineEdit>(form, "txtRangeEnd").isVisible());
  EXPECT_EQ(TextOf(form, "lblStep"), "# of ha&rmonics");
  Type(form, "txtRangeStart", "30");
  Type(form, "txtStepSize", "3");
  QTest::keyClick(&Find<QLineEdit>(form, "txtStepSize"), Qt::Key_Return);
  EXPECT_EQ(List(), "30.0\n60.0\n90.0\n");
  EXPECT_EQ(TextOf(form, "txtRangeStart"), "");
  EXPECT_EQ(Caption(), "Frequency List: (unsaved)");
  Fill("optLog", "100", "150", "20");
  EXPECT_TRUE(Find<QLineEdit>(form, "txtRangeEnd").isVisible());
  Press(form, "cmdAdd");
  EXPECT_EQ(TextOf(form, "lblCount"), "7 frequencies, 30.0 to 150.0 MHz");
}

TEST_F(ListBuilderForm, LinesAreDeletedAndEveryStepIsTakenBack) {
  const auto undo = [&](const char* at) {
    Find<QWidget>(form, at).setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Z, Qt::ControlModifier);
    return List();
  };
  const std::string file = Written("first.lst", "1\r\n2\r\n3\r\n4\r\n");
  form.DoIt(QString::fromStdString(file));
  list.setFocus();
  QTest::keyClick(&list, Qt::Key_Down);
  QTest::keyClick(&list, Qt::Key_Down, Qt::ShiftModifier);
  QTest::keyClick(&list, Qt::Key_Down, Qt::ShiftModifier);
  QTest::keyClick(&list, Qt::Key_Delete);
  EXPECT_EQ(List(), "1.0\n4.0\n");
  EXPECT_EQ(TextOf(form, "lblCount"), "2 frequencies, 1.0 to 4.0 MHz");
  EXPECT_EQ(Caption(), "Frequency List: (unsaved)");
  QTest::keyClick(&list, Qt::Key_Delete);
  EXPECT_EQ(List(), "1.0\n") << "the line with the caret";
  QTest::keyClick(&list, Qt::Key_Delete);
  EXPECT_EQ(List(), "1.0\n") << "there is none";
  Fill("optHarmonics", "5", "", "2");
  QTest::keyClick(&Find<QLineEdit>(form, "txtRangeStart"), Qt::Key_Return);
  Press(form, "cmdClear");
  EXPECT_EQ(undo("txtRangeStart"), "1.0\n5.0\n10.0\n");
  EXPECT_EQ(undo("txtRangeStart"), "1.0\n");
  Find<QAction>(form, "mnuEditUndo").trigger();
  EXPECT_EQ(undo("txtList"), "1.0\n2.0\n3.0\n4.0\n");
  EXPECT_EQ(list.textCursor().blockNumber(), 1) << "where it has changed";
  EXPECT_FALSE(Find<QAction>(form, "mnuEditUndo").isEnabled());
  EXPECT_EQ(Caption(), "Frequency List: " + file);
  Type(form, "txtRangeStart", "12");
  QTest::keyClick(&Find<QWidget>(form, "txtRangeStart"), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_NE(TextOf(form, "txtRangeStart"), "12") << "what is typed is taken back in its box";
  EXPECT_TRUE(form.close());
  EXPECT_TRUE(t.dialogs.messages.empty()) << "it is the file again";
}

TEST_F(ListBuilderForm, EveryMnemonicIsThereOnce) {
  for (const char* const kind : {"optLinear", "optHarmonics"}) {
    Press(form, kind);
    ExpectMnemonicsShownApart(form);
  }
}

TEST_F(ListBuilderForm, LongListComesInTurnsAndIsWhole) {
  Fill("optLinear", "1", "12000", "1");
  Press(form, "cmdAdd");
  EXPECT_LT(list.blockCount(), 12'000) << "the window is not frozen until all is there";
  EXPECT_EQ(Told(t.dialogs, form, "mnuEditDelete").size(), 1U) << "nobody sees where the caret is";
  list.setFocus();
  Choose(form, "mnuEditDelete");
  Turn();
  EXPECT_EQ(list.blockCount(), 12'000);
  EXPECT_TRUE(List().starts_with("2.0\n3.0\n") && List().ends_with("\n11999.0\n12000.0\n"));
}

TEST_F(ListBuilderForm, RefusesWhatIsNoPartAndKeepsTheList) {
  Fill("optLinear", "10", "20", "10");
  Press(form, "cmdAdd");
  const struct {
    const char *option, *start, *end, *step, *prompt;
  } rows[] = {{"optLinear", "", "20", "1", kNotANumberText},    {"optLinear", "1,5", "20", "1", kNotANumberText},
              {"optLinear", "1", "x", "1", kNotANumberText},    {"optLog", "1", "20", "", kNotANumberText},
              {"optLinear", "1", "20", "0", kOutOfRangeText},   {"optLog", "0", "20", "1", kOutOfRangeText},
              {"optLog", "1", "20", "1e-30", kOutOfRangeText},  {"optLinear", "1e400", "20", "1", kNotANumberText},
              {"optHarmonics", "1", "", "1e9", kOutOfRangeText}};
  for (const auto& row : rows) {
    t.dialogs.Clear();
    Press(form, row.option);
    for (const auto& [box, text] :
         {std::pair{"txtRangeStart", row.start}, {"txtRangeEnd", row.end}, {"txtStepSize", row.step}})
      Find<QLineEdit>(form, box).setText(QString::fromLatin1(text));
    Press(form, "cmdAdd");
    EXPECT_THAT(t.dialogs.LastText(), testing::StartsWith(row.prompt))
        << row.option << ' ' << row.start << ' ' << row.step;
  }
  EXPECT_EQ(List(), "10.0\n20.0\n");
}

TEST_F(ListBuilderForm, FilesAreAddedAndWritten) {
  Choose(form, "mnuFileSaveAs");
  EXPECT_EQ(t.dialogs.LastText(), "Nothing to save!");
  const std::string first = Written("first.lst", "20\r\n10\r\n");
  t.dialogs.AnswerOpen(first);
  Choose(form, "mnuFileAdd");
  EXPECT_EQ(List(), "10.0\n20.0\n");
  EXPECT_EQ(Caption(), "Frequency List: " + first);
  for (const std::string& bad : {Written("bad.lst", "Freq\r\n"), Written("zero.lst", "0\r\n5\r\n")}) {
    t.dialogs.AnswerOpen(bad);
    Choose(form, "mnuFileAdd");
    EXPECT_EQ(List(), "10.0\n20.0\n") << t.dialogs.LastText();
    EXPECT_EQ(Caption(), "Frequency List: " + first);
  }
  EXPECT_EQ(t.dialogs.messages.size(), 3u);
  t.dialogs.AnswerOpen(Written("more.lst", "15\r\n"));
  Choose(form, "mnuFileAdd");
  t.dialogs.AnswerSave(t.directory.File("missing/all.lst"));
  Choose(form, "mnuFileSaveAs");
  EXPECT_TRUE(t.dialogs.WasShownContaining("frmBuildList.SaveFile"));
  EXPECT_EQ(Caption(), "Frequency List: (unsaved)");
  t.dialogs.AnswerSave(t.directory.File("all.lst"));
  Choose(form, "mnuFileSaveAs");
  EXPECT_EQ(ReadTextFile(t.directory.File("all.lst")), "10.0\r\n15.0\r\n20.0\r\n");
}

TEST_F(ListBuilderForm, ExitAsksWhatBecomesOfTheList) {
  const std::string old = Written("old.lst", "10\r\n20\r\n"), made = t.directory.File("new.lst");
  form.DoIt(QString::fromStdString(old));
  EXPECT_EQ(List(), "10.0\n20.0\n");
  EXPECT_TRUE(form.close()) << "unchanged: nothing to ask";
  EXPECT_EQ(form.GetFilename(), "");
  EXPECT_TRUE(t.dialogs.messages.empty());
  form.show();
  Fill("optLinear", "1", "2", "1");
  Press(form, "cmdAdd");
  t.dialogs.Answer(MessageAnswer::Cancel);
  EXPECT_FALSE(form.close());
  t.dialogs.Answer(MessageAnswer::Yes);
  t.dialogs.AnswerSave(made);
  EXPECT_FALSE(form.close()) << "saved, and still open";
  EXPECT_EQ(t.dialogs.LastText(), "Save before exiting?");
  t.dialogs.Answer(MessageAnswer::Cancel);
  EXPECT_FALSE(form.close());
  EXPECT_EQ(t.dialogs.LastText(), "Do you want to use file " + made + "?");
  EXPECT_TRUE(form.close());
  EXPECT_EQ(form.GetFilename().toStdString(), made);
}

TEST_F(ListBuilderForm, NoAtTheEndLeavesTheCallerItsList) {
  t.dialogs.AnswerOpen(Written("first.lst", "20\r\n10\r\n"));
  Choose(form, "mnuFileAdd");
  t.dialogs.Answer(MessageAnswer::No);
  EXPECT_TRUE(form.close());
  EXPECT_EQ(form.GetFilename(), "");
}

TEST(ListBuilderDesktop, ComposedListBecomesTheSetups) {
  DemoWindows m;
  m.Start();
  m.desktop->OpenCalibrationSetup();
  auto& setup = m.Opened<frmCalSetup>();
  Press(setup, "cmdCreateList");
  auto& builder = m.Opened<frmBuildList>();
  EXPECT_EQ(QApplication::activeModalWidget(), &builder);
  Type(builder, "txtRangeStart", "7");
  Type(builder, "txtStepSize", "3");
  Press(builder, "cmdAdd");
  m.dialogs.AnswerSave(m.directory.File("made.lst"));
  Choose(builder, "mnuFileSaveAs");
  Press(builder, "cmdExit");
  EXPECT_EQ(OpenWindow<frmBuildList>(), nullptr);
  EXPECT_TRUE(IsTicked(setup, "optListStep"));
  EXPECT_EQ(TextOf(setup, "txtStartFreq"), "7");
  EXPECT_EQ(TextOf(setup, "txtStopFreq"), "21");
}

}  // namespace
}  // namespace hylden
