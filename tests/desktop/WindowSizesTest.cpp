// Windows keep their place, and fit small screens.

#include <QAbstractButton>
#include <QScrollArea>
#include <filesystem>
#include <set>

#include "app/Desktop.h"
#include "calibration/qt/frmCblSetup.h"
#include "desktop/DemoWindows.h"
#include "documents/CurveOverlay.h"
#include "documents/qt/frmCalSetup.h"
#include "documents/qt/frmEquipment.h"
#include "documents/qt/frmTestDef.h"
#include "instruments/InstrumentDefinition.h"
#include "instruments/qt/frmMeter.h"
#include "platform/qt/RepaintFilter.h"
#include "shell/qt/frmHelp.h"
#include "text/TextFile.h"
#include "widgets/WindowPlace.h"

namespace hylden {
namespace {

TEST(WindowPlaces, FormOpensOverItsCallerAndWithinTheScreen) {
  const QRect screen(0, 20, 800, 560), second(800, 0, 1920, 1080);
  const std::tuple<const char*, QRect, QSize, QRect, QRect> rows[] = {
      {"in its middle", {200, 200, 400, 200}, {300, 100}, screen, {250, 250, 300, 100}},
      {"not above the screen", {200, 20, 400, 100}, {300, 300}, screen, {250, 20, 300, 300}},
      {"not below it", {500, 400, 300, 180}, {400, 400}, screen, {400, 180, 400, 400}},
      {"no larger than it", {100, 100, 100, 100}, {900, 700}, screen, screen},
      {"on its screen", {900, 100, 200, 200}, {400, 300}, second, {800, 50, 400, 300}}};
  for (const auto& [what, caller, size, available, place] : rows)
    EXPECT_EQ(PlaceOver(caller, size, available), place) << what;
}

class Windows : public DemoWindowsTest {
 protected:
  void SetUp() override { m.Start(); }
  frmEquipment& OpenEquipment() {
    Press(m.desktop->Menu(), "cmdConfigSys");
    return m.Opened<frmEquipment>();
  }
};

class WindowSizes : public Windows, public testing::WithParamInterface<QSize> {};

/// Whatever can halt there is within the window, and nothing can scroll it away.
bool HaltIsInSight(QMainWindow& form) {
  for (const QAbstractButton* const button : form.findChildren<QAbstractButton*>()) {
    if (button->window() != &form || !button->property(kHaltsProperty).toBool()) continue;
    for (const QWidget* around = button; around != &form; around = around->parentWidget())
      if (qobject_cast<const QScrollArea*>(around)) return false;
    if (!form.rect().contains(QRect(button->mapTo(&form, QPoint()), button->size()))) return false;
  }
  return true;
}

/// The windows that src/ has, by their names.
std::set<std::string> WindowsOfTheProgram() {
  std::set<std::string> names;
  for (const auto& file : std::filesystem::recursive_directory_iterator(HYLDEN_SOURCE_DIR "/src"))
    if (file.path().extension() == ".ui" &&
        ReadTextFile(file.path().string()).find("<widget class=\"QMainWindow\"") != std::string::npos)
      names.insert(file.path().stem().string());
  return names;
}

TEST_P(WindowSizes, EveryWindowFitsASmallScreenWithItsTitleBarAndItsNotice) {
  const QSize room = GetParam() - QSize(4, 32);
  Desktop& desktop = *m.desktop;
  frmEquipment& station = OpenEquipment();
  for (const auto kind : {InstrumentKind::SigGen, InstrumentKind::Meter, InstrumentKind::PwrMtr})
    desktop.OpenDefinition(&station, kind);
  desktop.OpenParseTester(&m.Opened<frmMeter>(), {}, {});
  desktop.OpenFactorEditor(&station, FactorKind::Level);
  desktop.OpenCableSetup(&station);
  desktop.OpenCalibrationRun(&station);
  emit m.Opened<frmCblSetup>().StartRequested();
  m.LoadTest("substitution-am.tst");
  desktop.OpenTestRun(&station);
  desktop.OpenTestDefinition();
  frmCalSetup& setup = *desktop.OpenCalibrationSetup();
  desktop.OpenListBuilder(&setup, {});
  desktop.ShowCurves(&setup, CurveKind::Calibration, QStringLiteral("cdn-10v.hyinfo"));
  desktop.OpenRunData("none.run");
  desktop.ShowBus();
  desktop.ShowBenchPanel();
  m.directory.Write("hylden.hlp", ReadTextFile(HYLDEN_SOURCE_DIR "/help/hylden.md"));
  desktop.ShowHelp({});
  const auto& manual = Find<QTextBrowser>(m.Opened<frmHelp>(), "txtHelp");
  std::set<std::string> unseen = WindowsOfTheProgram();
  for (QWidget* const window : QApplication::topLevelWidgets()) {
    SCOPED_TRACE(window->objectName().toStdString());
    auto* const form = qobject_cast<QMainWindow*>(window);
    if (!form) {
      EXPECT_LE(window->minimumSizeHint().width(), room.width());
      EXPECT_LE(window->minimumSizeHint().height(), room.height());
      continue;
    }
    unseen.erase(form->objectName().toStdString());
    if (auto* const working = qobject_cast<WorkingForm*>(form)) {
      QTest::keyClick(form, Qt::Key_F1);
      EXPECT_NE(manual.textCursor().position(), 0) << "no chapter is called " << working->HelpTopic().toStdString();
    }
    ScrollWhatIsBeyond(*form, room);
    EXPECT_LE(form->minimumSizeHint().width(), room.width());
    EXPECT_LE(form->minimumSizeHint().height(), room.height());
    const QRect available = form->screen()->availableGeometry();
    EXPECT_TRUE(available.contains(form->frameGeometry()));
    form->layout()->activate();
    form->resize(room);
    form->layout()->activate();
    EXPECT_TRUE(HaltIsInSight(*form));
  }
  EXPECT_THAT(unseen, testing::IsEmpty()) << "each window has to be opened above";
}

INSTANTIATE_TEST_SUITE_P(Screens, WindowSizes, testing::Values(QSize(800, 560), QSize(960, 500)));

TEST_F(Windows, FormKeepsItsSizeAndTheCallerItsPlace) {
  TopMenu& menu = m.desktop->Menu();
  menu.move(100, 150);
  frmEquipment* form = &OpenEquipment();
  EXPECT_NEAR(form->geometry().center().x(), menu.geometry().center().x(), 1);
  Turn();
  EXPECT_EQ(m.shell.settings.Get("frmEquipment", "Size", "none"), "none");
  form->resize(700, 500);
  form->close();
  Turn();
  EXPECT_EQ(menu.pos(), QPoint(100, 150));
  EXPECT_EQ(OpenEquipment().size(), QSize(700, 500));
}

TEST_F(Windows, SaveIsToldInItsWindowUntilTheNextCommand) {
  frmEquipment& form = OpenEquipment();
  m.dialogs.AnswerSave(m.directory.File("room2.eqp"));
  Choose(form, "mnuEquipFileSaveAs");
  EXPECT_EQ(TextOf(form, "lblSaved"), "Saved: room2.eqp");
  EXPECT_TRUE(Find<QLabel>(form, "lblSaved").isVisible());
  Press(form, "cmdNoSigGen");
  EXPECT_EQ(TextOf(form, "lblSaved"), "");
  m.dialogs.Answer(MessageAnswer::No);
}

TEST_F(Windows, SecondStartOpensItsFileWhereTheFirstStandsOrSaysWhyNot) {
  Desktop& desktop = *m.desktop;
  const std::string eqp = "\"/e:" + m.directory.File("station/ifi-station.eqp") + "\" ",
                    tst = "\"/t:" + m.directory.File("station/substitution-am.tst") + "\"";
  EXPECT_EQ(desktop.StartedAgain(""), "");
  EXPECT_EQ(desktop.StartedAgain(eqp + tst), "");
  Turn();
  EXPECT_EQ(m.documents.equip.EquipFileName, m.directory.File("station/ifi-station.eqp"));
  ASSERT_NE(OpenWindow<frmTestDef>(), nullptr);
  EXPECT_NE(desktop.StartedAgain(eqp), "") << "under an open window";
  EXPECT_EQ(desktop.StartedAgain(tst), "");
  Turn();
  desktop.OpenTestRun(OpenWindow<frmTestDef>());
  EXPECT_NE(desktop.StartedAgain(tst), "");
  EXPECT_EQ(m.documents.testSetup.TestFileName, m.directory.File("station/substitution-am.tst"));
}

TEST(Caption, ShowsTheFilesNameOfALongPath) {
  const std::string folder(60, 'd'), name = "/conducted immunity of the radio in room 2.tst";
  const std::pair<std::string, std::string> rows[] = {
      {"Equipment File: /lab/room2.eqp", "Equipment File: /lab/room2.eqp"},
      {"Insertion Loss Setup", "Insertion Loss Setup"},
      {"Factor File: /" + folder + name, "Factor File: /ddddddddd..." + name}};
  for (const auto& [whole, shown] : rows) EXPECT_EQ(FittedCaption(QString::fromStdString(whole)).toStdString(), shown);
}

}  // namespace
}  // namespace hylden
