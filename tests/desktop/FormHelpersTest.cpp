#include <QScrollBar>
#include <filesystem>

#include "desktop/FormDriver.h"
#include "shell/FormEntries.h"
#include "shell/qt/AboutBox.h"
#include "shell/qt/FormPrompts.h"
#include "shell/qt/OptionsMenu.h"
#include "shell/qt/frmHelp.h"
#include "shell/qt/frmPickDir.h"
#include "support/TestShell.h"
#include "widgets/PathLabel.h"
#include "widgets/RfLamp.h"
#include "widgets/ThemeColors.h"
#include "widgets/WindowPlace.h"

namespace hylden {
namespace {

TEST(PathLabel, ShowsAsMuchOfThePathAsFitsAndKeepsAllOfItInTheTag) {
  const std::string path = "/home/lab/stations/conducted immunity/cable loss 2026.los";
  PathLabel label;
  const auto width = [&](const char* text) {
    return label.fontMetrics().horizontalAdvance(QString::fromUtf8(text)) + 2 * label.margin();
  };
  FitPathLabel(path, label);
  const std::pair<int, const char*> rows[] = {{width(path.c_str()) + 1, path.c_str()},
                                              {width(path.c_str()) - 1, "/.../cable loss 2026.los"},
                                              {width("/.../cable loss 2026.los") - 1, "cable loss 2026.los"}};
  for (const auto& [wide, caption] : rows) {
    SCOPED_TRACE(caption);
    label.resize(wide, 20);
    QCoreApplication::sendPostedEvents();
    label.show();
    EXPECT_EQ(label.text().toStdString(), caption);
    EXPECT_EQ(label.Path(), path);
    EXPECT_EQ(label.toolTip().toStdString(), path);
  }
  FitPathLabel("", label);
  EXPECT_TRUE(label.text().isEmpty());
  EXPECT_TRUE(label.toolTip().isEmpty());
}

TEST(RfLamp, IsRedOfTheThemeThatComesWhileRfIsOnAndAsksWhileItIsNotKnown) {
  RfLamp lamp;
  lamp.show();
  lamp.ShowRf(true, false);
  EXPECT_EQ(lamp.text(), "RF ON?");
  EXPECT_FALSE(lamp.toolTip().isEmpty());
  const QPalette light = QApplication::palette();
  for (const QPalette& theme : {QPalette(QColor(30, 30, 30)), light}) {
    QApplication::setPalette(theme);
    QCoreApplication::processEvents();
    EXPECT_EQ(lamp.palette().color(QPalette::Window), HighlightRed(theme));
    EXPECT_EQ(lamp.palette().color(QPalette::WindowText), QColor(IsDark(theme) ? Qt::black : Qt::white));
  }
  lamp.ShowRf(false);
  EXPECT_EQ(lamp.text(), "RF off");
  EXPECT_TRUE(lamp.toolTip().isEmpty());
}

class FormHelpersTest : public testing::Test {
 protected:
  TestShell t;
};

TEST_F(FormHelpersTest, PromptSelectsAVisibleBoxAndLeavesAHiddenOneAlone) {
  QWidget form;
  QLineEdit shown("12x", &form), hidden("7", &form);
  shown.setObjectName("txtShown"), hidden.setObjectName("txtHidden");
  QLabel label("&Dwell, s:", &form);
  label.setBuddy(&shown);
  hidden.setVisible(false);
  form.show();
  QApplication::setActiveWindow(&form);
  PointOut(form, {"txtShown", EntryFailure::Kind::NotANumber, {}, "above 0 s", true}, t.dialogs);
  EXPECT_EQ(shown.selectedText(), "12x");
  EXPECT_EQ(QApplication::focusWidget(), &shown);
  PointOut(form, {"txtHidden", EntryFailure::Kind::OutOfRange}, t.dialogs);
  EXPECT_EQ(QApplication::focusWidget(), &shown);
  EXPECT_EQ(t.dialogs.Texts(), (std::vector<std::string>{"Value not a number, re-enter\r\nDwell: above 0 s",
                                                         "Number outside valid range, re-enter"}));
  EXPECT_EQ(t.dialogs.messages[0].buttons, MessageButtons::RetryCancel);
}

TEST_F(FormHelpersTest, WindowComesBackToItsPlaceOrIsCentred) {
  QWidget window;
  window.resize(200, 100);
  window.move(60, 40);
  const std::string place = WindowPosition(window);
  window.move(0, 0);
  PlaceWindow(window, place);
  EXPECT_EQ(window.pos(), QPoint(60, 40));
  PlaceWindow(window, "-15,900");
  const QSize screen = window.screen()->size();
  EXPECT_NEAR(window.x(), (screen.width() - 200) / 2, 1);
  EXPECT_NEAR(window.y(), (screen.height() - 100) / 2, 1);
}

TEST_F(FormHelpersTest, PickerTakesTheHighlightedDirectoryAndOpensOneByKeys) {
  std::filesystem::create_directories(t.directory.File("factors/cables"));
  frmPickDir picker(t.shell);
  picker.StartDir(t.directory.File("factors"));
  EXPECT_EQ(PathOf(picker, "lblPath"), t.directory.File("factors"));
  picker.accept();
  EXPECT_EQ(picker.PickedDir(), t.directory.File("factors"));
  auto& list = Find<QListWidget>(picker, "lstDir");
  list.setCurrentRow(list.count() - 1);
  picker.accept();
  EXPECT_EQ(picker.PickedDir(), t.directory.File("factors/cables"));
  picker.reject();
  EXPECT_EQ(picker.PickedDir(), "");
  QTest::keyClick(&list, Qt::Key_Right);
  EXPECT_EQ(PathOf(picker, "lblPath"), t.directory.File("factors/cables"));
  QTest::keyClick(&list, Qt::Key_Left);
  EXPECT_EQ(PathOf(picker, "lblPath"), t.directory.File("factors"));
  picker.StartDir(t.directory.File("gone"));
  EXPECT_EQ(t.dialogs.LastText(),
            "Existing entry, " + t.directory.File("gone") + ", does not exist on your system.\r\nChoose another path.");
  EXPECT_EQ(PathOf(picker, "lblPath"), t.directory.File("factors"));
  picker.StartDir("");
  EXPECT_EQ(t.dialogs.messages.size(), 1u);
}

TEST_F(FormHelpersTest, PickerTakesWhatIsTypedAndMakesWhatIsMissing) {
  frmPickDir picker(t.shell);
  picker.StartDir(t.directory.Path());
  EXPECT_EQ(TextOf(picker, "txtDir"), t.directory.Path()) << "what OK takes is in sight";
  Find<QLineEdit>(picker, "txtDir").setText("cables/long");
  t.dialogs.Answer(MessageAnswer::No);
  picker.accept();
  EXPECT_EQ(t.dialogs.LastText(), t.directory.File("cables/long") + " does not exist.\r\nCreate it?");
  EXPECT_EQ(picker.PickedDir(), "");
  picker.accept();
  EXPECT_EQ(picker.PickedDir(), t.directory.File("cables/long"));
  EXPECT_TRUE(std::filesystem::is_directory(t.directory.File("cables/long")));

  t.dialogs.AnswerInput("  ");
  Press(picker, "cmdNew");
  t.dialogs.AnswerInput(std::string(127, 'd'));
  Press(picker, "cmdNew");
  EXPECT_TRUE(t.dialogs.WasShownContaining("longer than 127 characters"));
  EXPECT_TRUE(std::filesystem::is_empty(t.directory.File("cables/long")));
  t.dialogs.AnswerInput(" short ");
  Press(picker, "cmdNew");
  picker.accept();
  EXPECT_EQ(picker.PickedDir(), t.directory.File("cables/long/short"));
  t.dialogs.AnswerInput("a.txt/below");
  t.directory.Write("cables/long/short/a.txt", "a file");
  Press(picker, "cmdNew");
  EXPECT_TRUE(t.dialogs.WasShownContaining("can't be created"));
}

TEST_F(FormHelpersTest, AboutNamesTheLicence) {
  ShowAbout(t.dialogs);
  EXPECT_TRUE(t.dialogs.WasShownContaining("GNU General Public License"));
}

class OptionsMenuTest : public FormHelpersTest {
 protected:
  OptionsMenuTest() { FillOptionsMenu(menu, t.shell); }
  QMenu menu;
};

TEST_F(OptionsMenuTest, PickedDirectoryIsKeptAndCancelKeepsTheOldOne) {
  std::filesystem::create_directories(t.directory.File("losses"));
  t.shell.settings.SaveDataDir(datakind::kCables, t.directory.File("losses"));
  OnModalWindow([](QWidget& picker) {
    EXPECT_EQ(TextOf(picker, "lblFor"), "Insertion Loss Output Dir");
    Press(picker, "cmdOK");
  });
  Choose(menu, "mnuFileOptInsLossDir");
  EXPECT_EQ(t.shell.settings.GetDataDir(datakind::kInsertionLoss), t.directory.Path());
  OnModalWindow([](QWidget& picker) {
    auto& list = Find<QListWidget>(picker, "lstDir");
    list.setCurrentRow(0);
    Press(picker, "cmdCancel");
  });
  Choose(menu, "mnuFileOptCableDir");
  EXPECT_EQ(t.shell.settings.GetDataDir(datakind::kCables), t.directory.File("losses"));
}

TEST_F(OptionsMenuTest, DefaultEquipmentIsKeptUnlessTheSettingsWouldCutIt) {
  t.dialogs.AnswerOpen("/lab/ring.eqp");
  Choose(menu, "mnuFileOptEquipfile");
  EXPECT_EQ(t.dialogs.openRequests[0].directory, t.directory.Path());
  EXPECT_EQ(t.shell.settings.GetDefaultEquipFile(), "/lab/ring.eqp");
  Choose(menu, "mnuFileOptEquipfile");
  EXPECT_EQ(t.dialogs.openRequests[1].fileName, "/lab/ring.eqp") << "the dialog opens where the file is";
  t.dialogs.AnswerOpen("/" + std::string(127, 'd'));
  Choose(menu, "mnuFileOptEquipfile");
  EXPECT_EQ(t.dialogs.messages.size(), 1u);
  EXPECT_EQ(t.shell.settings.GetDefaultEquipFile(), "/lab/ring.eqp") << "a cancel clears nothing either";
}

class HelpTest : public FormHelpersTest {
 protected:
  HelpTest() {
    std::string text = "# Manual\n\nSee [the level](#test-level-test-definition).\n\n";
    for (const char* heading : {"Frequencies", "Modulation", "Test level: test definition"}) {
      text += std::string("## ") + heading + "\n\n";
      for (int i = 0; i < 40; ++i) text += "A paragraph about it.\n\n";
    }
    help.LoadFile(QString::fromStdString(t.directory.Write("hylden.hlp", text)));
    help.show();
  }
  std::string TopLine() {
    auto& page = Find<QTextBrowser>(help, "txtHelp");
    return page.textCursor().block().text().toStdString();
  }
  frmHelp help;
};

TEST_F(HelpTest, OpensByKeywordAndGoesBack) {
  help.OpenTopic("frequencies");
  EXPECT_EQ(TopLine(), "Frequencies");
  help.OpenTopic("test level:test definition");
  EXPECT_EQ(TopLine(), "Test level: test definition");
  Press(help, "cmdBack");
  EXPECT_EQ(TopLine(), "Frequencies");
  Press(help, "cmdForward");
  EXPECT_EQ(TopLine(), "Test level: test definition");
  EXPECT_FALSE(Find<QPushButton>(help, "cmdForward").isEnabled());
  help.OpenTopic("no such topic");
  EXPECT_EQ(TopLine(), "Manual");
}

TEST_F(HelpTest, ContentsSearchAndLinksLeadToHeadings) {
  auto& contents = Find<QTreeWidget>(help, "trvContents");
  ASSERT_EQ(contents.topLevelItem(0)->childCount(), 3);
  emit contents.itemClicked(contents.topLevelItem(0)->child(1), 0);
  EXPECT_EQ(TopLine(), "Modulation");
  Type(help, "txtSearch", "manual");
  EXPECT_EQ(TextOf(help, "lblFound"), "Found: 1");
  Press(help, "cmdFind");
  Press(help, "cmdFind");
  EXPECT_EQ(Find<QTextBrowser>(help, "txtHelp").textCursor().selectedText(), "Manual");
  QApplication::setActiveWindow(&help);
  Type(help, "txtSearch", "paragraph");
  const auto place = [&] { return Find<QTextBrowser>(help, "txtHelp").textCursor().selectionStart(); };
  Press(help, "cmdFind");
  const int first = place();
  Press(help, "cmdFind");
  EXPECT_GT(place(), first);
  QTest::keyClick(&help, Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(place(), first);
  auto* const bar = Find<QTextBrowser>(help, "txtHelp").verticalScrollBar();
  bar->setValue(0);
  bar->setValue(bar->maximum());
  EXPECT_EQ(contents.currentItem()->text(0), "Test level: test definition");
  Find<QTextBrowser>(help, "txtHelp").setFocus();
  QTest::keyClick(&help, Qt::Key_F, Qt::ControlModifier);
  EXPECT_EQ(help.focusWidget(), &Find<QLineEdit>(help, "txtSearch"));
  emit Find<QTextBrowser>(help, "txtHelp").anchorClicked(QUrl("#test-level-test-definition"));
  EXPECT_EQ(TopLine(), "Test level: test definition");
}

}  // namespace
}  // namespace hylden
