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
    Open();
    InManualMode(12, [this] {
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
    RunForms::Run();
    EXPECT_EQ(Manual(), nullptr);
  }
  /// The same as the last thing, and a halt.
  void ThenHaltAndRun(std::function<void()> action) {
    Then([this, action] {
      action();
      form->PressHalt();
    });
    Run();
  }
  QScrollBar& Bar(const char* name) { return Find<QScrollBar>(*Manual(), name); }
  QScrollBar& Step() { return Bar("scrFreqStep"); }
  QScrollBar& Offset() { return Bar("scrDbOffset"); }
  const GeneratorState& Generator() { return m.bench.State().Generator; }
  int CurrentRow() { return Find<QTableView>(*form, "flxTestData").currentIndex().row(); }
  void ExpectLevelAbove(int step, double offsetDb) {
    const auto& entry = std::get<StepEntry>(Rows()[static_cast<std::size_t>(step - 1)]);
    EXPECT_NEAR(Generator().LevelDbm, double{entry.Result->SigGenLevel} + offsetDb, 0.051);
  }
};

TEST_F(ManualForm, OperatorFindsAThresholdAndTheTestGoesOn) {
  dialogs.AnswerInput("display flickers");
  dialogs.AnswerSave(m.directory.File("manual.run"));
  Then([&] {
    EXPECT_EQ(Step().minimum(), 1);
    EXPECT_EQ(Step().maximum(), 12);
    EXPECT_EQ(Step().value(), 12);
    EXPECT_TRUE(QRect(0, 0, 800, 560).contains(Manual()->rect())) << "on a small screen";
    EXPECT_TRUE(IsTicked(*Manual(), "chkRfOn"));
    EXPECT_TRUE(IsEnabled(*Manual(), "chkModOn"));
    EXPECT_FALSE(Buttons().isVisible());
    EXPECT_EQ(Text("pnlStatus"), "Manual Mode");
    Step().setValue(11);
  });
  Then([&] {
    EXPECT_NEAR(Generator().FreqMHz, std::get<StepEntry>(Rows()[10]).Freq, 1e-6);
    EXPECT_EQ(TextOf(*Manual(), "lblFreq"), Row(11)[0]);
    EXPECT_EQ(Text("lblFreq"), Row(11)[0]);
    Offset().setValue(15);
    EXPECT_EQ(TextOf(*Manual(), "lblOffset"), "1.5");
  });
  Then([&] {
    ExpectLevelAbove(11, 1.5);
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
  m.When([&] { return Manual() == nullptr; },
         [&] {
           EXPECT_TRUE(Buttons().isVisible());
           EXPECT_EQ(Text("lblStep"), "Step# 12") << "the step after the one returned to";
         });
  Run();
  EXPECT_EQ(form->Engine().Outcome(), RunOutcome::Finished);
  ASSERT_EQ(dialogs.inputs.size(), 1u);
  EXPECT_EQ(dialogs.inputs[0].title, "Threshold Comment");
  EXPECT_EQ(dialogs.inputs[0].prompt, "Enter comments");
  const std::string threshold = Row(11)[0] + ", Threshold 1.5dB, display flickers";
  EXPECT_EQ(Row(13)[0] + ", " + Row(13)[1] + ", " + Row(13)[2], threshold);
  EXPECT_THAT(m.directory.Read("manual.run"), testing::HasSubstr(threshold + "\r\n"));
  Choose(*form, "mnuFilePrintThreshold");
  EXPECT_EQ(m.printer.Lines().back(), threshold);
}

TEST_F(ManualForm, ArrowKeysBelongToManualModeWhereverTheFocusIs) {
  QSlider elsewhere;
  elsewhere.setValue(50);
  elsewhere.show();
  Then([&] {
    QTest::keyClick(form.get(), Qt::Key_Right);
    EXPECT_EQ(Step().value(), 12) << "the highest step reached";
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Left, Qt::Key_Left})
      QTest::keyClick(&elsewhere, key);
    for (int i = 0; i < 4; ++i) QTest::keyClick(form.get(), Qt::Key_Up);
    QTest::keyClick(&Offset(), Qt::Key_Down);
    EXPECT_EQ(elsewhere.value(), 50) << "the press was passed on";
    QTest::keyClick(&elsewhere, Qt::Key_Home);
    EXPECT_EQ(elsewhere.value(), 0) << "another key was swallowed";
    EXPECT_EQ(Step().value(), 10);
    EXPECT_EQ(TextOf(*Manual(), "lblOffset"), "0.3");
  });
  ThenHaltAndRun([&] { ExpectLevelAbove(10, 0.3); });
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
  ThenHaltAndRun([&] {
    EXPECT_EQ(Step().value(), 12);
    EXPECT_EQ(Offset().value(), 0);
    ExpectLevelAbove(12, 0);
  });
}

TEST_F(ManualForm, WindowShowsTheStepAndTheLevelThatStand) {
  Then([&] {
    EXPECT_EQ(CurrentRow(), 11);
    Step().setValue(3);
    Offset().setValue(-15);
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

TEST_F(ManualForm, LevelThatTheGeneratorRefusesGoesBackOnTheBarWithRfOff) {
  Then([&] { Offset().setValue(-10); });
  Then([&] {
    m.driver.FailLine("> 18 POW", gpib::kEnol);
    Offset().setValue(-20);
  });
  ThenHaltAndRun([&] {
    EXPECT_EQ(TextOf(*Manual(), "lblOffset"), "-1.0");
    EXPECT_EQ(Offset().value(), -10);
    EXPECT_FALSE(Generator().RfOn || IsTicked(*Manual(), "chkRfOn"));
    EXPECT_FALSE(dialogs.messages.empty());
  });
}

TEST_F(ManualForm, OpensAboveTheRunWindowWithoutTheKeysAndHasAHaltOfItsOwn) {
  Then([&] {
    EXPECT_TRUE(Manual()->testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_TRUE(Manual()->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_FALSE(Manual()->windowFlags().testFlag(Qt::WindowMinimizeButtonHint));
    EXPECT_EQ(Manual()->windowHandle()->transientParent(), form->windowHandle());
    Press(*Manual(), "cmdManualHalt");
    EXPECT_TRUE(m.shell.delay.HaltRequested());
  });
  Run();
}

TEST_F(ManualForm, F1OpensItsChapterOfTheManual) {
  QStringList topics;
  QObject::connect(form.get(), &WorkingForm::HelpRequested, [&](const QString& topic) { topics << topic; });
  ThenHaltAndRun([&] {
    QTest::keyClick(Manual(), Qt::Key_F1);
    QTest::keyClick(form.get(), Qt::Key_F1);
  });
  QTest::keyClick(&Buttons(), Qt::Key_F1);
  EXPECT_EQ(topics, (QStringList{"Manual mode", "Manual mode", "Running a test"}));
}

TEST_F(ManualForm, DraggedLevelIsAppliedWhenItIsReleased) {
  Then([&] {
    Offset().setSliderDown(true);
    Offset().setSliderPosition(-30);
    EXPECT_EQ(TextOf(*Manual(), "lblOffset"), "-3.0");
  });
  Then([&] {
    ExpectLevelAbove(12, 0);  // still being dragged
    Offset().setSliderDown(false);
  });
  Then([&] {
    ExpectLevelAbove(12, -3);
    form->close();
  });
  Run();
}

TEST_F(ManualForm, CloseBoxReturnsToTheTest) {
  Then([&] { EXPECT_FALSE(Manual()->close()); });
  HaltAtStep(13);
  Run();
}

TEST_F(ManualForm, EscapeOnItHaltsAndTakesItAway) {
  Then([&] { QTest::keyClick(&Offset(), Qt::Key_Escape); });
  Run();
  EXPECT_EQ(form->Engine().CompletedSteps(), 12);
  EXPECT_TRUE(Buttons().isVisible());
}

TEST_F(ManualForm, HasTheKeysAfterTheCommentAndMnemonicsPressTheirButtons) {
  ThenHaltAndRun([&] {
    QObject::connect(Manual(), &frmManual::manThresholdClick, [this] { form->activateWindow(); });
    Manual()->activateWindow();
    Press(*Manual(), "cmdThreshold");
    EXPECT_EQ(QApplication::activeWindow(), Manual());
    const std::pair<Qt::Key, const char*> mnemonics[] = {
        {Qt::Key_T, "cmdThreshold"}, {Qt::Key_N, "cmdReturn"}, {Qt::Key_H, "cmdRunHalt"}};
    QStringList keys;
    for (const QLabel* label : Manual()->findChildren<QLabel*>())
      if (label->buddy()) keys << QKeySequence::mnemonic(label->text()).toString();
    for (const QAbstractButton* button : Manual()->findChildren<QAbstractButton*>())
      keys << QKeySequence::mnemonic(button->text()).toString();
    for (const QAction* menu : form->menuBar()->actions())
      EXPECT_FALSE(keys.contains(QKeySequence::mnemonic(menu->text()).toString())) << menu->text().toStdString();
    for (const auto& [key, button] : mnemonics) {
      QTest::keyClick(Manual(), key, Qt::AltModifier);
      EXPECT_TRUE(Find<QPushButton>(*form, button).isDown()) << button;
    }
  });
}

TEST_F(ManualForm, SecondHookIsRefused) {
  ThenHaltAndRun([&] {
    ArrowKeyHook second([](ArrowKey) { ADD_FAILURE() << "two hooks"; });
    EXPECT_FALSE(second.Install(dialogs));
    EXPECT_EQ(dialogs.LastText(), "Don't hook WH_KEYBOARD twice or you will be unable to unhook it.");
    QTest::keyClick(form.get(), Qt::Key_Up);
    EXPECT_EQ(Offset().value(), 1) << "the first one is gone";
  });
}

}  // namespace
}  // namespace hylden
