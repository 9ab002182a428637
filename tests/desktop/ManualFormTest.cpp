#include <gmock/gmock.h>

#include <QCheckBox>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QSlider>
#include <QTableView>
#include <QTextBrowser>

#include "desktop/RunForms.h"
#include "shell/qt/frmHelp.h"
#include "testrun/qt/ArrowKeyHook.h"
#include "widgets/TableFollower.h"

namespace hylden {
namespace {

/// Manual mode after 12 steps of the demo test; its timer ticks at every turn of the event loop.
class ManualForm : public RunForms {
 protected:
  void SetUp() override {
    RunForms::SetUp();
    Open("substitution-am.tst");
    m.When(AtStep(12), [this] { Press(*form, "cmdManual"); });
    m.When([this] { return Manual() != nullptr; },
           [this] {
             auto& timer = *Manual()->findChild<QTimer*>("Timer1");
             EXPECT_TRUE(timer.isActive());
             EXPECT_EQ(timer.interval(), 500);
             timer.setInterval(0);
           });
  }
  /// Lets a few ticks of the timer pass, and does it.
  void Then(std::function<void()> action) {
    for (int i = 0; i < 3; ++i) m.When([] { return true; }, [] {});
    m.When([] { return true; }, std::move(action));
  }
  void Run() {
    Press(*form, "cmdRun");
    EXPECT_EQ(m.ActionsLeft(), 0u);
    EXPECT_FALSE(m.bench.State().Generator.RfOn);
    EXPECT_EQ(Manual(), nullptr);
  }
  QScrollBar& Bar(const char* name) { return Find<QScrollBar>(*Manual(), name); }
  const GeneratorState& Generator() { return m.bench.State().Generator; }
  int CurrentRow() { return Find<QTableView>(*form, "flxTestData").currentIndex().row(); }
  float LevelOf(int step) {
    return std::get<StepEntry>(Rows()[static_cast<std::size_t>(step - 1)]).Result->SigGenLevel;
  }
};

TEST_F(ManualForm, OperatorFindsAThresholdAndTheTestGoesOn) {
  dialogs.AnswerInput("display flickers");
  dialogs.AnswerSave(m.directory.File("manual.run"));
  Then([&] {
    EXPECT_EQ(Bar("scrFreqStep").minimum(), 1);
    EXPECT_EQ(Bar("scrFreqStep").maximum(), 12);
    EXPECT_EQ(Bar("scrFreqStep").value(), 12);
    EXPECT_TRUE(Find<QCheckBox>(*Manual(), "chkRfOn").isChecked());
    EXPECT_TRUE(Find<QCheckBox>(*Manual(), "chkModOn").isEnabled());
    EXPECT_FALSE(Buttons().isVisible());
    EXPECT_EQ(Text("pnlStatus"), "Manual Mode");
    Bar("scrFreqStep").setValue(11);
  });
  Then([&] {
    EXPECT_NEAR(Generator().FreqMHz, std::get<StepEntry>(Rows()[10]).Freq, 1e-6);
    EXPECT_EQ(TextOf(*Manual(), "lblFreq"), Row(11)[0]);
    EXPECT_EQ(Text("lblFreq"), Row(11)[0]);
    Bar("scrDbOffset").setValue(15);
    EXPECT_EQ(TextOf(*Manual(), "lblOffset"), "1.5");
  });
  Then([&] {
    EXPECT_NEAR(Generator().LevelDbm, double{LevelOf(11)} + 1.5, 0.051);
    Press(*Manual(), "chkRfOn");
    EXPECT_FALSE(Generator().RfOn);
    EXPECT_EQ(Text("lblRf"), "RF off");
    Press(*Manual(), "chkRfOn");
    EXPECT_TRUE(Generator().RfOn);
    Press(*Manual(), "chkModOn");
    EXPECT_EQ(Generator().Modulation, BenchModulation::None);
    Press(*Manual(), "chkModOn");
    EXPECT_EQ(Generator().Modulation, BenchModulation::Am);
  });
  Then([&] { Press(*Manual(), "cmdThreshold"); });
  Then([&] { Press(*Manual(), "cmdReturn"); });
  std::size_t rowsAtReturn = 0;
  m.When([&] { return Manual() == nullptr; },
         [&] {
           rowsAtReturn = Rows().size();
           EXPECT_TRUE(Buttons().isVisible());
           EXPECT_EQ(Text("lblStep"), "Step# 12") << "the step after the one returned to";
         });
  Run();
  EXPECT_EQ(form->Engine().Outcome(), RunOutcome::Finished);
  ASSERT_EQ(dialogs.inputs.size(), 1u);
  EXPECT_EQ(dialogs.inputs[0].title, "Threshold Comment");
  EXPECT_EQ(dialogs.inputs[0].prompt, "Enter comments");
  const RunRow threshold = Row(13);
  EXPECT_EQ(threshold[0], Row(11)[0]);
  EXPECT_EQ(threshold[1], "Threshold 1.5dB");
  EXPECT_EQ(threshold[2], "display flickers");
  EXPECT_THAT(m.directory.Read("manual.run"),
              testing::HasSubstr(threshold[0] + ", Threshold 1.5dB, display flickers\r\n"));
  Choose(*form, "mnuFilePrintThreshold");
  EXPECT_EQ(m.printer.Lines().back(), threshold[0] + ", Threshold 1.5dB, display flickers");
}

TEST_F(ManualForm, ArrowKeysBelongToManualModeWhereverTheFocusIs) {
  QSlider elsewhere;
  elsewhere.setValue(50);
  elsewhere.show();
  Then([&] {
    QTest::keyClick(&elsewhere, Qt::Key_Left);
    QTest::keyClick(&elsewhere, Qt::Key_Right);
    QTest::keyClick(&elsewhere, Qt::Key_Left);
    QTest::keyClick(&elsewhere, Qt::Key_Left);
    for (int i = 0; i < 4; ++i) QTest::keyClick(form.get(), Qt::Key_Up);
    QTest::keyClick(&Bar("scrDbOffset"), Qt::Key_Down);
    EXPECT_EQ(elsewhere.value(), 50) << "the press was passed on";
    QTest::keyClick(&elsewhere, Qt::Key_Home);
    EXPECT_EQ(elsewhere.value(), 0) << "another key was swallowed";
    EXPECT_EQ(Bar("scrFreqStep").value(), 10);
    EXPECT_EQ(Bar("scrDbOffset").value(), 3);
    EXPECT_EQ(TextOf(*Manual(), "lblOffset"), "0.3");
  });
  Then([&] {
    EXPECT_NEAR(Generator().LevelDbm, double{LevelOf(10)} + 0.3, 0.051);
    form->PressHalt();
  });
  Run();
  QTest::keyClick(&elsewhere, Qt::Key_Right);
  EXPECT_EQ(elsewhere.value(), 1) << "still caught after manual mode";
}

TEST_F(ManualForm, ArrowKeysStayWithATextABoxAMenuAndTheManual) {
  QWidget panel;
  QLineEdit text("abc", &panel);
  QMessageBox box;
  QMenu menu;
  menu.addAction("one");
  frmHelp manual;
  const auto press = [](QWidget& window, QWidget& target) {
    window.show();
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Up, Qt::Key_Left}) QTest::keyClick(&target, key);
    window.hide();
  };
  Then([&] {
    panel.show();
    panel.activateWindow();
    text.setFocus();
    press(panel, text);
    EXPECT_EQ(text.cursorPosition(), 2);
    press(box, box);
    press(menu, menu);
    press(manual, Find<QTextBrowser>(manual, "txtHelp"));
    form->activateWindow();
    form->menuBar()->setFocus();
    QTest::keyClick(form->menuBar(), Qt::Key_Left);
  });
  Then([&] {
    EXPECT_EQ(Bar("scrFreqStep").value(), 12);
    EXPECT_EQ(Bar("scrDbOffset").value(), 0);
    EXPECT_NEAR(Generator().LevelDbm, double{LevelOf(12)}, 0.051);
    form->PressHalt();
  });
  Run();
}

TEST_F(ManualForm, WindowShowsTheStepAndTheLevelThatStand) {
  Then([&] {
    EXPECT_EQ(CurrentRow(), 11);
    Bar("scrFreqStep").setValue(3);
    Bar("scrDbOffset").setValue(-15);
  });
  Then([&] {
    EXPECT_EQ(CurrentRow(), 2);
    EXPECT_EQ(Text("lblStep"), "Step# 3");
    EXPECT_NEAR(std::stod(Text("lblTestLevel")), std::stod(Row(3)[2]) - 1.5, 0.051);
    Press(*Manual(), "cmdThreshold");
  });
  Then([&] {
    form->findChild<TableFollower*>()->Follow();
    EXPECT_EQ(CurrentRow(), 2) << "the row added is not where the run stands";
    Press(*Manual(), "cmdReturn");
  });
  m.When(AtStep(5), [&] {
    EXPECT_GT(CurrentRow(), 11);
    form->PressHalt();
  });
  Run();
}

TEST_F(ManualForm, LevelThatTheGeneratorRefusesGoesBackOnTheBar) {
  Then([&] { Bar("scrDbOffset").setValue(-10); });
  Then([&] {
    m.driver.FailLine("> 18 POW", gpib::kEnol);
    Bar("scrDbOffset").setValue(-20);
  });
  Then([&] {
    EXPECT_EQ(Bar("scrDbOffset").value(), -10);
    EXPECT_EQ(TextOf(*Manual(), "lblOffset"), "-1.0");
    form->PressHalt();
  });
  Run();
}

TEST_F(ManualForm, HasAHaltOfItsOwnAndStaysWithTheRunWindow) {
  Then([&] {
    EXPECT_EQ(Manual()->windowHandle()->transientParent(), form->windowHandle());
    EXPECT_FALSE(Manual()->windowFlags().testFlag(Qt::WindowMinimizeButtonHint));
    Press(*Manual(), "cmdManualHalt");
    EXPECT_TRUE(m.station.shell.delay.HaltRequested());
  });
  Run();
}

TEST_F(ManualForm, F1OpensItsChapterOfTheManual) {
  QStringList topics;
  QObject::connect(form.get(), &WorkingForm::HelpRequested, [&](const QString& topic) { topics << topic; });
  Then([&] {
    QTest::keyClick(Manual(), Qt::Key_F1);
    QTest::keyClick(form.get(), Qt::Key_F1);
    form->PressHalt();
  });
  Run();
  QTest::keyClick(&Buttons(), Qt::Key_F1);
  EXPECT_EQ(topics, (QStringList{"Manual mode", "Manual mode", "Running a test"}));
}

TEST_F(ManualForm, KeysStopAtTheHighestStepReached) {
  Then([&] {
    QTest::keyClick(form.get(), Qt::Key_Right);
    EXPECT_EQ(Bar("scrFreqStep").value(), 12);
    form->close();
  });
  Run();
}

TEST_F(ManualForm, DraggedLevelIsAppliedWhenItIsReleased) {
  Then([&] {
    Bar("scrDbOffset").setSliderDown(true);
    Bar("scrDbOffset").setSliderPosition(-30);
    EXPECT_EQ(TextOf(*Manual(), "lblOffset"), "-3.0");
  });
  Then([&] {
    EXPECT_NEAR(Generator().LevelDbm, double{LevelOf(12)}, 0.051) << "still being dragged";
    Bar("scrDbOffset").setSliderDown(false);
  });
  Then([&] {
    EXPECT_NEAR(Generator().LevelDbm, double{LevelOf(12)} - 3, 0.051);
    form->PressHalt();
  });
  Run();
}

TEST_F(ManualForm, CloseBoxReturnsToTheTest) {
  Then([&] { EXPECT_FALSE(Manual()->close()); });
  m.When(AtStep(13), [&] { Press(*form, "cmdHalt"); });
  Run();
}

TEST_F(ManualForm, EscapeOnItHaltsAndTakesItAway) {
  Then([&] { QTest::keyClick(&Bar("scrDbOffset"), Qt::Key_Escape); });
  Run();
  EXPECT_EQ(form->Engine().CompletedSteps(), 12);
  EXPECT_TRUE(Buttons().isVisible());
}

TEST_F(ManualForm, OpensWithoutTakingTheFocus) {
  Then([&] {
    EXPECT_TRUE(Manual()->testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_TRUE(Manual()->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    form->PressHalt();
  });
  Run();
}

TEST_F(ManualForm, HasTheKeysAgainAfterTheComment) {
  Then([&] {
    QObject::connect(Manual(), &frmManual::manThresholdClick, [this] { form->activateWindow(); });
    Manual()->activateWindow();
    Press(*Manual(), "cmdThreshold");
    EXPECT_EQ(QApplication::activeWindow(), Manual());
    form->PressHalt();
  });
  Run();
}

TEST_F(ManualForm, MnemonicsPressTheirButtons) {
  const struct {
    Qt::Key key;
    const char* button;
  } rows[] = {{Qt::Key_T, "cmdThreshold"}, {Qt::Key_N, "cmdReturn"}, {Qt::Key_H, "cmdRunHalt"}};
  Then([&] {
    Manual()->activateWindow();
    for (const auto& row : rows) {
      QTest::keyClick(Manual(), row.key, Qt::AltModifier);
      EXPECT_TRUE(Find<QPushButton>(*form, row.button).isDown()) << row.button;
    }
    form->PressHalt();
  });
  Run();
}

TEST_F(ManualForm, SecondHookIsRefused) {
  Then([&] {
    ArrowKeyHook second([](ArrowKey) { ADD_FAILURE() << "two hooks"; });
    EXPECT_FALSE(second.Install(dialogs));
    EXPECT_EQ(dialogs.LastText(), "Don't hook WH_KEYBOARD twice or you will be unable to unhook it.");
    QTest::keyClick(form.get(), Qt::Key_Up);
    EXPECT_EQ(Bar("scrDbOffset").value(), 1) << "the first one is gone";
    form->PressHalt();
  });
  Run();
}

TEST_F(ManualForm, RefusingGeneratorIsShownWithRfOff) {
  Then([&] {
    m.driver.FailLine("> 18 POW", gpib::kEnol);
    Bar("scrDbOffset").setValue(-10);
  });
  Then([&] {
    EXPECT_FALSE(Generator().RfOn);
    EXPECT_FALSE(Find<QCheckBox>(*Manual(), "chkRfOn").isChecked());
    EXPECT_FALSE(dialogs.messages.empty());
    form->PressHalt();
  });
  Run();
}

}  // namespace
}  // namespace hylden
