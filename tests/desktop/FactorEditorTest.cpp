#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <filesystem>

#include "app/Desktop.h"
#include "app/Station.h"
#include "desktop/FormDriver.h"
#include "documents/qt/frmEquipment.h"
#include "editors/qt/frmEditFactor.h"
#include "shell/qt/TopMenu.h"
#include "support/TestShell.h"
#include "text/TextFile.h"
#include "widgets/CurveView.h"

namespace hylden {
namespace {

constexpr char kLoss[] = "0.15, 0.05\r\n100, 0.7\r\n230, 1.1\r\n";

class FactorEditorTest : public testing::Test {
 protected:
  FactorEditorTest() { Show(); }

  void Show() {
    form = std::make_unique<frmEditFactor>(t.shell);
    form->show();
    QApplication::setActiveWindow(form.get());
    view().setFocus();
  }
  QTableView& view() { return Find<QTableView>(*form, "fg2"); }
  CurveView& curve() { return Find<CurveView>(*form, "crvFactor"); }
  int Rows() { return view().model()->rowCount(); }
  std::string Cell(int row, int col) { return view().model()->index(row - 1, col - 1).data().toString().toStdString(); }
  void GoTo(int row, int col) { view().setCurrentIndex(view().model()->index(row - 1, col - 1)); }
  /// What is pressed where the focus is; "\t" and "\n" are keys, too.
  void Keys(const char* text) {
    for (const char* c = text; *c; ++c) {
      const int key = *c == '\t' ? Qt::Key_Tab : *c == '\n' ? Qt::Key_Return : *c == '\b' ? Qt::Key_Backspace : 0;
      key ? QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key))
          : QTest::keyClick(QApplication::focusWidget(), *c);
    }
    QCoreApplication::processEvents();
  }
  std::string Load(const std::string& text, const char* name = "cable.los") {
    const std::string path = t.directory.Write(name, text);
    t.dialogs.AnswerOpen(path);
    Choose(*form, "mnuFileLoad");
    return path;
  }
  bool IsMarked() { return form->windowTitle().endsWith("*"); }
  std::size_t Questions() { return t.dialogs.messages.size(); }

  TestShell t;
  std::unique_ptr<frmEditFactor> form;
};

TEST_F(FactorEditorTest, LoadedFileIsShownWithAnEmptyRowAndSavedAsItWas) {
  EXPECT_EQ(TextOf(*form, "lblFile"), "File: (none)");
  EXPECT_EQ(Find<QAction>(*form, "mnuFileSave").text(), "&Save");
  const std::string path = Load(kLoss);
  EXPECT_EQ(Rows(), 4);
  EXPECT_EQ(Cell(2, 1) + "|" + Cell(2, 2), "100|0.7");
  EXPECT_EQ(Cell(4, 1) + Cell(4, 2), "");
  EXPECT_EQ(TextOf(*form, "lblFile"), "File: " + path);
  EXPECT_EQ(Find<QAction>(*form, "mnuFileSave").text().toStdString(), "&Save " + path);
  EXPECT_EQ(TextOf(*form, "lblStatus"), "3 points, 0.15 to 230 MHz");
  EXPECT_EQ(TextOf(*form, "lblHeader"), "Item# 1 : Freq");
  Choose(*form, "mnuFileSave");
  EXPECT_EQ(t.directory.Read("cable.los"), kLoss);
  EXPECT_EQ(Questions(), 0U);
  EXPECT_TRUE(form->close());
  EXPECT_EQ(Questions(), 0U);
}

TEST_F(FactorEditorTest, NewTableIsTypedSeenAndSaved) {
  form->FilterDefault(2);
  Keys("1\t0.2\t10\t0.5\t20\t\b");
  EXPECT_EQ(curve().Curves()[0].Points, (std::vector<CurvePoint>{{1, 0.2F}, {10, 0.5}}));
  EXPECT_EQ(TextOf(*form, "lblStatus"), "2 points, 1 to 10 MHz; 1 row not saved (row 3: Factor is empty)");
  EXPECT_TRUE(IsMarked());
  t.dialogs.AnswerSave(t.directory.File("new.los"));
  Choose(*form, "mnuFileSave");
  EXPECT_EQ(t.dialogs.saveRequests[0].title, "Select filename");
  EXPECT_EQ(t.dialogs.saveRequests[0].fileName, "*.los");
  EXPECT_EQ(t.directory.Read("new.los"), "1, 0.2\r\n10, 0.5\r\n");
  EXPECT_TRUE(t.dialogs.LastText().starts_with("The file is saved, but not all rows are in it:\r\n2 points"));
  EXPECT_TRUE(IsMarked()) << "a row is in no file";
  t.dialogs.Answer(MessageAnswer::Yes);
  EXPECT_FALSE(form->close()) << "it would be lost";
  Press(*form, "cmdDelRow");
  EXPECT_FALSE(IsMarked());
}

TEST_F(FactorEditorTest, DialogsOfferTheKindAndTheFactorDirectory) {
  t.shell.settings.SaveDataDir(datakind::kFactors, t.directory.Path());
  const char* const patterns[] = {"*.fac", "*.lev", "*.los", "*.txt", "*.*"};
  for (int kind = 0; kind < 5; ++kind) {
    form->FilterDefault(kind);
    form->FilterDefault(7);
    Choose(*form, "mnuFileLoad");
    EXPECT_EQ(t.dialogs.openRequests.back().fileName, patterns[kind]);
  }
  const FileRequest& request = t.dialogs.openRequests.back();
  EXPECT_EQ(request.title, "Select Factor File");
  EXPECT_EQ(request.directory, t.directory.Path());
  EXPECT_EQ(request.filter,
            "Amp Power File (*.pwr)|*.pwr|Cable Loss File (*.los)|*.los|Factor File (*.fac)|*.fac|Test Level File "
            "(*.lev)|*.lev|Probe File (*.prb)|*.prb|Text File (*.txt)|*.txt|All Files (*.*)|*.*");
}

TEST_F(FactorEditorTest, FileThatIsNoTableCostsNothing) {
  const std::string good = Load(kLoss);
  Load("no table\r\n", "junk.los");
  EXPECT_EQ(t.dialogs.Texts(), (std::vector<std::string>{"Unexpected end of file in " + t.directory.File("junk.los"),
                                                         "error loading factor file"}));
  EXPECT_EQ(Rows(), 4);
  EXPECT_EQ(TextOf(*form, "lblFile"), "File: " + good);
}

TEST_F(FactorEditorTest, WhatIsPressedWhileATableComesIsNotLostInIt) {
  int turns = 0;
  t.events.onYield = [&] {
    ++turns;
    QTest::keyClick(form->windowHandle(), '9');
    QTest::keyClick(form->windowHandle(), Qt::Key_S, Qt::ControlModifier);
  };
  Load(kLoss);
  EXPECT_EQ(turns, 3);
  EXPECT_TRUE(t.dialogs.saveRequests.empty());
  EXPECT_FALSE(Find<QAction>(*form, "mnuEditUndo").isEnabled());
  Keys("9");
  EXPECT_EQ(Cell(1, 1), "0.159") << "the keys are the table's again";
}

TEST_F(FactorEditorTest, RunOfEqualValuesIsLoadedAndSavedByItsEnds) {
  Load("1, 2\r\n2, 2\r\n3, 2\r\n4, 2\r\n5, 3\r\n");
  EXPECT_EQ(Rows(), 4);
  Choose(*form, "mnuFileSave");
  EXPECT_EQ(t.directory.Read("cable.los"), "1, 2\r\n4, 2\r\n5, 3\r\n");
}

TEST_F(FactorEditorTest, ExponentIsWrittenMarkedAndTold) {
  Load(kLoss);
  GoTo(2, 2);
  Keys("E1\n");
  EXPECT_EQ(view().model()->index(1, 1).data(Qt::ToolTipRole).toString(),
            "Factor has an exponent, or is no decimal number: no table is read with it");
  Choose(*form, "mnuFileSave");
  EXPECT_EQ(t.directory.Read("cable.los"), "0.15, 0.05\r\n100, 0.7E1\r\n230, 1.1\r\n");
  EXPECT_TRUE(t.dialogs.LastText().starts_with("The file is saved, but Hylden can't use it as a table:\r\n2 points"));
}

TEST_F(FactorEditorTest, DecimalCommaAndFortyDigitsAreNoPoints) {
  Load(kLoss);
  GoTo(4, 1);
  Keys("10,5\t1\t1\t1111111111111111111111111111111111111111\n");
  EXPECT_EQ(
      TextOf(*form, "lblStatus"),
      "3 points, 0.15 to 230 MHz; 1 row that can't be read back; 1 row not saved (row 5: Factor is too large for a "
      "table)");
  GoTo(5, 2);
  Choose(*form, "mnuEditClear");
  QCoreApplication::processEvents();
  EXPECT_TRUE(TextOf(*form, "lblStatus").ends_with("(row 4: Freq has a comma: the decimal sign is the point)"));
}

TEST_F(FactorEditorTest, UnsavedChangesAreAskedAboutOnce) {
  Load(kLoss);
  GoTo(1, 2);
  Keys("\b\b5\b05\n");
  EXPECT_FALSE(IsMarked()) << "typed back";
  Keys("0\n");
  EXPECT_FALSE(IsMarked()) << "0.050 is 0.05";
  Keys("9\n");
  EXPECT_TRUE(IsMarked());
  t.dialogs.Answer(MessageAnswer::Cancel);
  Load(kLoss, "other.los");
  EXPECT_EQ(Cell(1, 2), "0.0509");
  t.dialogs.Answer(MessageAnswer::Cancel);
  EXPECT_FALSE(form->close());
  EXPECT_EQ(t.dialogs.LastText(), "The factor table has changes that are not saved.\r\nSave them?");
  t.dialogs.Answer(MessageAnswer::Yes);
  EXPECT_TRUE(form->close());
  EXPECT_EQ(t.directory.Read("cable.los"), "0.15, 0.0509\r\n100, 0.7\r\n230, 1.1\r\n");
}

TEST_F(FactorEditorTest, WhatASaveWouldLoseOfTheFileIsAskedAboutFirst) {
  const std::string path = Load(std::string("Cable W17\r\n") + kLoss);
  t.dialogs.Answer(MessageAnswer::No);
  Choose(*form, "mnuFileSave");
  EXPECT_EQ(t.dialogs.LastText(),
            path + "\r\nalso holds 1 heading line. A save keeps frequencies and values only.\r\nReplace it?");
  EXPECT_TRUE(t.directory.Read("cable.los").starts_with("Cable W17"));
  Choose(*form, "mnuFileSave");
  EXPECT_EQ(t.directory.Read("cable.los"), kLoss);
  t.dialogs.Clear();
  Choose(*form, "mnuFileSave");
  EXPECT_EQ(Questions(), 0U);
  t.directory.Write("cable.los", "1, 1\r\n2, 2\r\n");
  t.dialogs.Answer(MessageAnswer::No);
  Choose(*form, "mnuFileSave");
  EXPECT_TRUE(t.dialogs.LastText().starts_with("The file has been changed by somebody else"));
  EXPECT_EQ(t.directory.Read("cable.los"), "1, 1\r\n2, 2\r\n");
}

TEST_F(FactorEditorTest, ReadOnlyFileCostsAMessageNotTheEdits) {
  const std::string path = Load(kLoss);
  GoTo(1, 2);
  Keys("1\n");
  std::filesystem::permissions(path, std::filesystem::perms::owner_read);
  Choose(*form, "mnuFileSave");
  EXPECT_EQ(t.dialogs.messages.back().title, "Error");
  EXPECT_TRUE(t.dialogs.LastText().ends_with("frmEditFactor.SaveGrid\r" + path)) << t.dialogs.LastText();
  EXPECT_EQ(Cell(1, 2), "0.051");
  EXPECT_TRUE(IsMarked());
  EXPECT_EQ(t.directory.Read("cable.los"), kLoss);
}

TEST_F(FactorEditorTest, CurveAndTableFollowEachOther) {
  Load("0, 1\r\n100, 2\r\n10, 3\r\n", "steps.lev");
  EXPECT_EQ(curve().Curves()[0].Unit, "V");
  EXPECT_EQ(curve().Curves()[0].StraightOn, FreqAxis::Log) << "as the program looks test levels up";
  GoTo(3, 1);
  EXPECT_EQ(curve().Current(), (CurvePlace{0, 2}));
  GoTo(4, 1);
  EXPECT_FALSE(curve().Current()) << "an empty row is no point";
  QCoreApplication::processEvents();
  QTest::mouseClick(curve().findChild<QWidget*>("plot"), Qt::LeftButton, {}, curve().PositionOf({0, 1}));
  EXPECT_EQ(view().currentIndex().row(), 1);
  EXPECT_EQ(QApplication::focusWidget(), &view()) << "what is typed next mends the point";
  Load(kLoss);
  EXPECT_EQ(curve().Curves()[0].StraightOn, FreqAxis::Linear);
}

TEST_F(FactorEditorTest, EditMenuUndoesPastesAndRowCommands) {
  Load(kLoss);
  QApplication::clipboard()->setText("1\t2\n3\t4\n");
  GoTo(4, 1);
  QTest::keyClick(&view(), Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(Rows(), 6) << "and a row for new entries";
  GoTo(2, 1);
  Press(*form, "cmdInsRow");
  EXPECT_EQ(Cell(2, 1), "");
  EXPECT_EQ(QApplication::focusWidget(), &view());
  GoTo(3, 1);
  Press(*form, "cmdDelRow");
  EXPECT_EQ(t.dialogs.LastText(), "There is data in Row 3 ! Delete anyway?");
  for (int i = 0; i < 3; ++i) QTest::keyClick(&view(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_FALSE(IsMarked());
  EXPECT_FALSE(Find<QAction>(*form, "mnuEditUndo").isEnabled());
  QTest::keyClick(&view(), Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(Rows(), 6);
}

TEST_F(FactorEditorTest, RecentFilesAndPicturesOfTheCurve) {
  const std::string path = Load(kLoss);
  auto& recent = Find<QMenu>(*form, "mnuFileRecent");
  emit recent.aboutToShow();
  EXPECT_EQ(recent.actions().first()->text().toStdString(), "&1  " + path);
  for (const auto& [name, start] : {std::pair("a.png", "\x89PNG"), std::pair("a.pdf", "%PDF")}) {
    t.dialogs.AnswerSave(t.directory.File(name));
    Choose(*form, "mnuFileExport");
    EXPECT_TRUE(t.directory.Read(name).starts_with(start));
  }
  ExpectMnemonicsShownApart(*form);
}

TEST_F(FactorEditorTest, F1OpensItsChapterOfTheManual) {
  QSignalSpy asked(form.get(), &WorkingForm::HelpRequested);
  Keys("1");
  for (QWidget* const focused : {QApplication::focusWidget(), static_cast<QWidget*>(&view())})
    QTest::keyClick(focused, Qt::Key_F1);
  ASSERT_EQ(asked.count(), 2);
  const std::string chapter = "\n# " + asked.last().first().toString().toStdString() + "\n";
  EXPECT_NE(ReadFileBytes(HYLDEN_SOURCE_DIR "/help/hylden.md").find(chapter), std::string::npos);
}

TEST(FactorEditorDesktop, EquipmentFormOpensItForTheKindAndComesBack) {
  ScriptedBus bus;
  TestShell t{bus};
  WorkingDirectory here{t.directory.Path()};
  Station station{t.shell};
  Desktop desktop(station);
  desktop.Start("");
  frmEquipment& equipment = *desktop.OpenEquipment(&desktop.Menu());
  for (const auto& [entry, pattern] :
       {std::pair("mnuFactorEditFactor", "*.fac"), {"mnuFactorEditLevel", "*.lev"}, {"mnuFactorEditLoss", "*.los"}}) {
    Choose(equipment, entry);
    auto* const form = OpenWindow<frmEditFactor>();
    ASSERT_NE(form, nullptr);
    EXPECT_FALSE(equipment.isVisible());
    Choose(*form, "mnuFileLoad");
    EXPECT_EQ(t.dialogs.openRequests.back().fileName, pattern);
    Choose(*form, "mnuFileExit");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(equipment.isVisible());
  }
  Choose(equipment, "mnuFactorEditLoss");
  auto* const form = OpenWindow<frmEditFactor>();
  QTest::keyClick(&Find<QTableView>(*form, "fg2"), '1');
  t.dialogs.Answer(MessageAnswer::Cancel);
  desktop.CloseAll();
  for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
  EXPECT_TRUE(t.dialogs.LastText().starts_with("The program was asked to end, but this window stays open"));
  EXPECT_TRUE(form->isVisible());
}

}  // namespace
}  // namespace hylden
