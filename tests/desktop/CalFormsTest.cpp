// The windows of the calibrations on the bench: set up, run, halted, closed in the middle, saved.

#include <gmock/gmock.h>

#include <QPushButton>
#include <QTabWidget>
#include <QTableView>

#include "calibration/qt/frmCblSetup.h"
#include "calibration/qt/frmRunCablCal.h"
#include "calibration/qt/frmRunCal.h"
#include "desktop/RunForms.h"
#include "documents/qt/frmCalSetup.h"
#include "support/ReadLines.h"
#include "text/RecordFile.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

class CalForms : public testing::Test {
 protected:
  void SetUp() override {
    m.LoadStation();
    ASSERT_TRUE(Cal().LoadDef("cdn-10v.csu"));
    Cal().Record.StartFreq = 1, Cal().Record.StopFreq = 3, Cal().Record.StepType = StepType::Linear;
    Cal().Saved = Cal().Record;
  }
  CalSetup& Cal() { return m.station.documents.calSetup; }
  bool RfIsOn() { return m.station.instruments.sigGen.RfIsOn(); }
  std::unique_ptr<frmCalSetup> OpenSetup() {
    return std::make_unique<frmCalSetup>(m.station.shell, m.station.instruments, m.station.documents);
  }
  std::unique_ptr<frmRunCal> OpenRun() {
    auto form = std::make_unique<frmRunCal>(m.station.shell, m.station.instruments, m.station.documents);
    form->OpenFrom(&caller);
    form->Load();
    return form;
  }
  int Questions() const {
    return static_cast<int>(std::count_if(dialogs.messages.begin(), dialogs.messages.end(),
                                          [](const Message& shown) { return shown.title == "Save Calibration"; }));
  }
  static std::string Cell(QWidget& form, const char* table, int row, int column) {
    const QAbstractItemModel& model = *Find<QTableView>(form, table).model();
    return model.index(row, column).data().toString().toStdString();
  }
  static int Rows(QWidget& form, const char* table) { return Find<QTableView>(form, table).model()->rowCount(); }

  FakeDialogs dialogs;
  BenchMachine m{dialogs};
  QWidget caller;
};

TEST_F(CalForms, FirstOpeningShowsUsableDefaults) {
  Cal().Record = {};
  const auto form = OpenSetup();
  EXPECT_EQ(TextOf(*form, "txtStartFreq"), "0.15");
  EXPECT_EQ(TextOf(*form, "txtStopFreq"), "80");
  EXPECT_EQ(TextOf(*form, "txtInitLev"), "-60");
  EXPECT_EQ(TextOf(*form, "txtInterDwell"), "1.0");
  EXPECT_EQ(Cal().Record.Dwell, double{m.station.instruments.meter.SettlingTime()});
}

TEST_F(CalForms, EveryEntryComesBackFromTheForm) {
  CalSetupRecord& setup = Cal().Record;
  setup.StepType = StepType::List, setup.LinearStep = setup.LogStep = 0;
  setup.ListFile = "radio-services.lst";
  setup.LimitType = LimitType::File, setup.CalLevel = 0, setup.LimitFile = "stepped.lev";
  setup.MaxLevel = -5, setup.MaxStep = 4, setup.InitLevel = -41;
  setup.RecordFwdPwr = setup.RecordRevPwr = setup.LimitFwdPwr = 1, setup.FwdPwrLimit = 12;
  setup.Dwell = 0.5, setup.CouplingMethod = CouplingMethod::UserDefined, setup.UserDefinedFactor = 2.5F;
  setup.AmpUsed = "A", setup.DeviceDescription = "D";
  const CalSetupRecord shown = setup;
  const auto form = OpenSetup();
  setup = {};
  ASSERT_TRUE(form->FormToSetup(true)) << dialogs.LastText();
  EXPECT_EQ(RecordText(setup), RecordText(shown));
}

TEST_F(CalForms, InvalidEntryIsShownOnItsPage) {
  const struct {
    const char *box, *text;
    int tab;
    const char* told;
  } cases[] = {{"txtStartFreq", "abc", 0, "Value not a number, re-enter"},
               {"txtStopFreq", "1", 0, "Number outside valid range, re-enter"},
               {"txtMaxStep", "0", 1, "Number outside valid range, re-enter"},
               {"txtFinalDwell", "-1", 1, "Number outside valid range, re-enter"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.box);
    const auto form = OpenSetup();
    form->show();
    Find<QTabWidget>(*form, "tabSetup").setCurrentIndex(3);
    Find<QLineEdit>(*form, c.box).setText(c.text);
    Press(*form, "cmdStart");
    EXPECT_EQ(Find<QTabWidget>(*form, "tabSetup").currentIndex(), c.tab);
    EXPECT_EQ(dialogs.LastText(), c.told);
  }
}

TEST_F(CalForms, ListStepsWithoutAFileOpenThePickerInsteadOfStarting) {
  Cal().Record.ListFile.clear();
  const auto form = OpenSetup();
  bool started = false;
  QObject::connect(form.get(), &frmCalSetup::StartRequested, [&] { started = true; });
  Press(*form, "optListStep");
  dialogs.AnswerOpen("radio-services.lst");
  Press(*form, "cmdStart");
  EXPECT_FALSE(started);
  EXPECT_EQ(dialogs.LastText(), "Need filename, please pick frequency list file");
  EXPECT_EQ(TextOf(*form, "txtStartFreq"),
            std::to_string(Cal().Record.StartFreq).substr(0, TextOf(*form, "txtStartFreq").size()));
  Press(*form, "cmdStart");
  EXPECT_TRUE(started) << dialogs.LastText();
}

TEST_F(CalForms, ClosingKeepsWhatWasTyped) {
  const auto form = OpenSetup();
  Find<QLineEdit>(*form, "txtMaxLev").setText("-99");
  Find<QLineEdit>(*form, "txtStartFreq").setText("nothing");
  dialogs.Answer(MessageAnswer::No);
  form->close();
  EXPECT_EQ(dialogs.messages.size(), 1U);
  EXPECT_EQ(Cal().Record.MaxLevel, -99.0F);
  EXPECT_EQ(Cal().Record.StartFreq, 1);
}

TEST_F(CalForms, NoDwellAndZeroDbmComeBackWhenTheFormOpensAgain) {
  Cal().Record.InitLevel = 0, Cal().Record.Dwell = 0;
  const auto form = OpenSetup();
  EXPECT_EQ(TextOf(*form, "txtInitLev"), "0");
  EXPECT_EQ(TextOf(*form, "txtFinalDwell"), "0.0");
}

TEST_F(CalForms, CancelledPromptForAListOpensNoPicker) {
  Cal().Record.ListFile.clear();
  const auto form = OpenSetup();
  Press(*form, "optListStep");
  dialogs.Answer(MessageAnswer::Cancel);
  Press(*form, "cmdStart");
  EXPECT_EQ(dialogs.LastText(), "Need filename, please pick frequency list file");
  EXPECT_TRUE(dialogs.openRequests.empty());
}

TEST_F(CalForms, UnsavedSetupIsMarkedAndAskedAbout) {
  const auto form = OpenSetup();
  const std::string file = m.directory.File("own.csu");
  dialogs.AnswerSave(file);
  Find<QLineEdit>(*form, "txtLogStep").setText("7");  // of no use in linear steps
  Press(*form, "cmdSave");
  const QString title = QString::fromStdString("Cal Setup File: " + file);
  EXPECT_EQ(form->windowTitle(), title);
  Find<QLineEdit>(*form, "txtStopFreq").setText("3.00");
  EXPECT_EQ(form->windowTitle(), title);
  Press(*form, "chkRecordFP");
  EXPECT_EQ(form->windowTitle(), title + "*");
  dialogs.Answer(MessageAnswer::Cancel);
  form->LoadFile("cdn-10v.csu");
  EXPECT_EQ(dialogs.LastText(), "The calibration setup has changes that are not saved.\r\nSave them?");
  EXPECT_EQ(form->windowTitle(), title + "*");
  dialogs.Answer(MessageAnswer::No);
  form->close();
  const auto again = OpenSetup();
  EXPECT_EQ(again->windowTitle(), title + "*") << "what was typed stays, and so does its file";
  EXPECT_TRUE(again->close()) << "asked once";
  EXPECT_EQ(dialogs.UnusedAnswers(), 0U);
}

TEST_F(CalForms, FileThatDoesNotLoadCostsNothing) {
  const auto form = OpenSetup();
  m.directory.Write("short.csu", "5\r\n6\r\n");
  form->LoadFile(QString::fromStdString(m.directory.File("short.csu")));
  EXPECT_EQ(Cal().Record.StartFreq, 1);
  EXPECT_EQ(form->windowTitle(), "Cal Setup File: ");
  EXPECT_EQ(dialogs.messages.size(), 1U);
}

TEST_F(CalForms, MissingCableLossLeadsToTheFactorTables) {
  m.station.documents.equip.Record.CableLossFile.clear();
  const auto form = OpenSetup();
  int tab = -1;
  QObject::connect(form.get(), &frmCalSetup::EditEquipmentRequested, [&](int page) { tab = page; });
  Press(*form, "cmdStart");
  EXPECT_EQ(tab, 1);
  EXPECT_EQ(dialogs.LastText(), "No cable loss file has been selected");
}

TEST_F(CalForms, WholeRunIsShownAndSaved) {
  const auto form = OpenRun();
  EXPECT_EQ(form->windowTitle(), "CDI Calibration: 10 V, 0.15 to 230 MHz");
  const std::string file = m.directory.File("done.cal");
  dialogs.AnswerSave(file);
  bool lit = false;
  m.events.onYield = [&] {
    lit = lit || TextOf(*form, "lblRf") == "RF ON";
    EXPECT_FALSE(Find<QWidget>(*form, "cmdStart").isEnabled() || Find<QWidget>(*form, "cmdExit").isEnabled());
  };
  Press(*form, "cmdStart");
  EXPECT_TRUE(lit);
  EXPECT_FALSE(RfIsOn());
  EXPECT_EQ(TextOf(*form, "lblRf"), "RF off");
  ASSERT_EQ(Rows(*form, "flxCalData"), 3);
  EXPECT_EQ(Cell(*form, "flxCalData", 2, 0), "3.0");
  EXPECT_EQ(Cell(*form, "flxCalData", 0, 2), "140.00");
  EXPECT_EQ(TextOf(*form, "pnlStep"), "Step Number 3");
  EXPECT_EQ(ReadLines(file).size(), 3U);
  EXPECT_TRUE(Find<QWidget>(*form, "cmdSave").isEnabled() && Find<QWidget>(*form, "cmdStart").isEnabled());
}

TEST_F(CalForms, RunThatCanNotBePreparedCanNotBeStarted) {
  Cal().Record.StopFreq = 5000;
  std::string title;
  dialogs.onShow = [&](const Message&) { title = OpenWindow<frmRunCal>()->windowTitle().toStdString(); };
  const auto form = OpenRun();
  EXPECT_EQ(dialogs.LastText(), "Cable loss file does not cover frequency range");
  EXPECT_EQ(title, "CDI Calibration: 10 V, 0.15 to 230 MHz");
  EXPECT_EQ(TextOf(*form, "pnlStatus"), "Not ready: Cable loss file does not cover frequency range");
  EXPECT_EQ(TextOf(*form, "lblState"), "Not ready");
  EXPECT_FALSE(Find<QWidget>(*form, "cmdStart").isEnabled());
}

TEST_F(CalForms, UserDefinedFactorLowersTheReadingThatIsWanted) {
  Cal().Record.RecordFwdPwr = Cal().Record.RecordRevPwr = Cal().Record.LimitFwdPwr = 0;
  const auto setup = OpenSetup();
  Press(*setup, "optUserDefinedCF");
  Find<QLineEdit>(*setup, "txtUserDefCF").setText("9.5");
  ASSERT_TRUE(setup->FormToSetup(true)) << dialogs.LastText();
  EXPECT_EQ(Cal().CouplingFactor(), 9.5);
  const std::string file = m.directory.File("own.csu");
  ASSERT_TRUE(Cal().SaveDef(file));
  Cal().Record = {};
  ASSERT_TRUE(Cal().LoadDef(file));
  EXPECT_EQ(TextOf(*OpenSetup(), "txtUserDefCF"), "9.5");
}

TEST_F(CalForms, MnemonicsAreApart) {
  RunCablCal calibration(m.station.shell, m.station.instruments);
  frmCblSetup cableSetup(m.station.shell, m.station.documents, calibration);
  frmRunCablCal cableRun(m.station.shell, m.station.instruments, calibration);
  const auto setup = OpenSetup();
  for (QMainWindow* const form : std::initializer_list<QMainWindow*>{setup.get(), &cableSetup, &cableRun}) {
    form->show();
    ExpectMnemonicsApart(*form);
  }
  EXPECT_FALSE(Find<QPushButton>(*setup, "cmdStart").shortcut().isEmpty());
  ExpectMnemonicsApart(*OpenRun());
}

TEST_F(CalForms, NoButtonOfASetupLooksAsIfEnterPressedIt) {
  RunCablCal calibration(m.station.shell, m.station.instruments);
  frmCblSetup cableSetup(m.station.shell, m.station.documents, calibration);
  const auto setup = OpenSetup();
  for (QMainWindow* const form : std::initializer_list<QMainWindow*>{setup.get(), &cableSetup})
    for (const QPushButton* button : form->findChildren<QPushButton*>())
      EXPECT_FALSE(button->isDefault()) << button->objectName().toStdString();
}

TEST_F(CalForms, KeyHeldDownStartsNoSecondRun) {
  const auto form = OpenRun();
  auto& start = Find<QPushButton>(*form, "cmdStart");
  start.setAutoDefault(true);
  const auto press = [&](bool repeated) {
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), repeated);
    QCoreApplication::sendEvent(&start, &key);
  };
  press(false);
  EXPECT_EQ(Questions(), 1);
  press(true);
  EXPECT_EQ(Questions(), 1);
}

TEST_F(CalForms, ClosingWindowStaysForPointsThatMakeARecord) {
  for (const char* last : {"2.0", "3.0"}) {
    const auto form = OpenRun();
    // To be saved, and the file dialog is cancelled.
    m.When([&] { return TextOf(*form, "lblFreq") == last && RfIsOn(); }, [&] { form->close(); });
    Press(*form, "cmdStart");
    QCoreApplication::processEvents();
    const std::size_t points = form->Calibration().Rows().size();
    EXPECT_EQ(form->isVisible(), points >= 2) << points;
    EXPECT_EQ(Find<QWidget>(*form, "cmdSave").isVisible(), points >= 2);
    EXPECT_FALSE(RfIsOn());
  }
}

/// The two passes over 1, 1.5 and 2 MHz.
class CableForms : public CalForms {
 protected:
  void SetUp() override {
    CalForms::SetUp();
    CableSetup& setup = calibration.Setup;
    setup.StartFreq = 1, setup.StopFreq = 2, setup.StepType = StepType::Log, setup.LogStep = 50;
    ASSERT_TRUE(calibration.BuildPlan());
  }
  std::unique_ptr<frmRunCablCal> OpenPasses() {
    auto form = std::make_unique<frmRunCablCal>(m.station.shell, m.station.instruments, calibration);
    QObject::connect(form.get(), &frmRunCablCal::PassStarting,
                     [&](bool inserted) { m.bench.Connect(inserted ? MeterAt::Cable : MeterAt::Generator); });
    form->OpenFrom(&caller);
    return form;
  }

  RunCablCal calibration{m.station.shell, m.station.instruments};
};

TEST_F(CableForms, BothPassesGiveTheLoss) {
  frmCblSetup setup(m.station.shell, m.station.documents, calibration);
  bool started = false;
  QObject::connect(&setup, &frmCblSetup::StartRequested, [&] { started = true; });
  calibration.Setup.StopFreq = 0;
  frmCblSetup fresh(m.station.shell, m.station.documents, calibration);
  EXPECT_EQ(TextOf(fresh, "txtStartFreq"), "") << "a placeholder is no value";
  EXPECT_EQ(Find<QLineEdit>(fresh, "txtStartFreq").placeholderText(), "Lowest Frequency");
  Press(fresh, "cmdStart");
  EXPECT_EQ(dialogs.LastText(), "Value not a number, re-enter");
  Find<QLineEdit>(setup, "txtStartFreq").setText("1");
  Press(setup, "cmdStart");
  ASSERT_TRUE(started);

  const auto form = OpenPasses();
  Press(*form, "cmdInsert");
  EXPECT_EQ(dialogs.LastText(), "You must take direct readings first");
  Press(*form, "cmdDirect");
  ASSERT_EQ(Rows(*form, "lvwData"), 3);
  EXPECT_NE(Cell(*form, "lvwData", 1, 2), "");
  EXPECT_EQ(Cell(*form, "lvwData", 1, 4), "");
  Press(*form, "cmdInsert");
  const double loss = std::stod(Cell(*form, "lvwData", 1, 4));
  EXPECT_NEAR(loss, m.bench.Config().CableUnderTest.At(1.5), 0.1);
  EXPECT_FALSE(RfIsOn());
  const std::string file = m.directory.File("cable.los");
  dialogs.AnswerSave(file);
  Press(*form, "cmdSave");
  EXPECT_EQ(ReadLines(file).size(), 15U);
  EXPECT_TRUE(form->close());
  EXPECT_FALSE(dialogs.WasShownContaining("has not been saved"));
}

TEST_F(CableForms, MeasuredLossIsNotLostByClosing) {
  auto form = OpenPasses();
  Press(*form, "cmdDirect");
  dialogs.Answer(MessageAnswer::Cancel);
  dialogs.onShow = [&](const Message&) { EXPECT_TRUE(form->AsksToSave()) << "the end of the program takes it away"; };
  m.When([&] { return TextOf(*form, "lblFreq") == "2.0" && RfIsOn(); }, [&] { form->close(); });
  Press(*form, "cmdInsert");
  QCoreApplication::processEvents();
  EXPECT_FALSE(RfIsOn());
  EXPECT_TRUE(dialogs.WasShownContaining("has not been saved"));
  EXPECT_TRUE(form->isVisible());
  EXPECT_EQ(Rows(*form, "lvwData"), 3);
  EXPECT_EQ(Cell(*form, "lvwData", 2, 4), "") << "it was halted there";

  const std::string file = m.directory.File("cable.los");
  dialogs.Answer(MessageAnswer::Yes);
  dialogs.AnswerSave(file);
  EXPECT_TRUE(form->close());
  EXPECT_EQ(ReadLines(file).size(), 14U);
}

TEST_F(CableForms, DirectReadingsAreThereWhenTheWindowOpensAgain) {
  auto form = OpenPasses();
  Press(*form, "cmdDirect");
  const std::string reading = Cell(*form, "lvwData", 2, 2);
  EXPECT_TRUE(form->close());
  ASSERT_TRUE(calibration.BuildPlan());
  form = OpenPasses();
  ASSERT_EQ(Rows(*form, "lvwData"), 3);
  EXPECT_EQ(Cell(*form, "lvwData", 2, 2), reading);
  calibration.Setup.StopFreq = 3;
  dialogs.Answer(MessageAnswer::No);
  ASSERT_FALSE(calibration.BuildPlan());
  EXPECT_TRUE(calibration.Points().front().HasDirect());
  ASSERT_TRUE(calibration.BuildPlan());
  EXPECT_FALSE(calibration.Points().front().HasDirect());
}

TEST_F(CableForms, PassThatComesToNothingHidesNoReading) {
  const auto form = OpenPasses();
  Press(*form, "cmdDirect");
  Press(*form, "cmdInsert");
  const std::string loss = Cell(*form, "lvwData", 2, 4);
  ASSERT_NE(loss, "");
  m.bench.Inject({.Kind = FaultKind::Absent, .Who = BenchRole::Meter});
  dialogs.Answer(MessageAnswer::No);  // not to be saved
  Press(*form, "cmdDirect");
  EXPECT_TRUE(dialogs.LastText().ends_with("\r\nError initializing meter"));
  ASSERT_EQ(Rows(*form, "lvwData"), 3);
  EXPECT_EQ(Cell(*form, "lvwData", 2, 4), loss);
  EXPECT_TRUE(form->close());
}

}  // namespace
}  // namespace hylden
