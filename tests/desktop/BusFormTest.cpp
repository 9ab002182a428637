// The window of the bus among the program's windows, on the demo station.

#include "instruments/qt/frmBus.h"

#include <QPlainTextEdit>
#include <QTableWidget>

#include "desktop/DemoWindows.h"
#include "documents/qt/frmEquipment.h"
#include "instruments/Instruments.h"
#include "instruments/qt/DefinitionForm.h"
#include "support/SilentRun.h"

namespace hylden {
namespace {

class BusForm : public DemoWindowsTest {
 protected:
  void SetUp() override {
    m.Start();
    equipment = m.desktop->OpenEquipment(&m.desktop->Menu());
    Choose(*equipment, "mnuUtilBus");
    form = &m.Opened<frmBus>();
  }
  void Send(int address, const char* command, const char* button = "cmdSend") {
    Find<QSpinBox>(*form, "spnAddress").setValue(address);
    Type(*form, "txtCommand", command);
    Press(*form, button);
  }
  std::string State() { return TextOf(*form, "lblState"); }
  std::string Trace() { return Find<QPlainTextEdit>(*form, "txtTrace").toPlainText().toStdString(); }
  int Generator() { return m.instruments.sigGen.Address(); }

  frmEquipment* equipment = nullptr;
  frmBus* form = nullptr;
};

TEST_F(BusForm, ShowsTheStationsInstrumentsTheirWaysAndLastCalls) {
  auto& table = Find<QTableWidget>(*form, "grdUnits");
  ASSERT_EQ(table.rowCount(), 3);
  const auto cell = [&](int column) { return table.item(0, column)->text().toStdString(); };
  EXPECT_EQ(cell(0), std::to_string(Generator()));
  EXPECT_TRUE(cell(1).starts_with("Signal generator: "));
  EXPECT_EQ(cell(3), "not called yet");
  table.selectRow(1);
  EXPECT_EQ(Find<QSpinBox>(*form, "spnAddress").value(), m.instruments.meter.Address());
  Send(Generator(), "OUTP OFF");
  EXPECT_EQ(cell(3), "done");
  EXPECT_TRUE(equipment->isVisible()) << "it stands beside the work";
}

TEST_F(BusForm, ASecondPressShowsTheSameWindow) {
  Choose(*equipment, "mnuUtilBus");
  EXPECT_EQ(OpenWindows<frmBus>().size(), 1U);
}

TEST_F(BusForm, SendsReadsAndShowsTheBytes) {
  const MeterDefinition& meter = m.instruments.meter.Definition();
  Find<QSpinBox>(*form, "spnAddress").setValue(meter.Address);
  Type(*form, "txtCommand", meter.Read.c_str());
  QTest::keyClick(&Find<QLineEdit>(*form, "txtCommand"), Qt::Key_Return);
  EXPECT_THAT(TextOf(*form, "txtAnswer"), testing::EndsWith(" END")) << State();
  EXPECT_THAT(Trace(), testing::HasSubstr("-> " + std::to_string(meter.Address) + " \"" + meter.Read + "\\r\\n\""));
  Send(3, "A");
  EXPECT_EQ(State(), "Nothing was sent to 3: nobody listens there (ENOL).");
  Press(*form, "cmdRead");
  EXPECT_EQ(TextOf(*form, "txtAnswer"), "") << "no answer of another read";
  Press(*form, "cmdListeners");
  EXPECT_THAT(State(), testing::HasSubstr(std::to_string(Generator())));
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(BusForm, RfSwitchedOnByHandGoesOffWhereverTheWindowGoes) {
  const std::pair<const char*, std::function<void()>> ends[] = {
      {"Escape", [this] { QTest::keyClick(form, Qt::Key_Escape); }},
      {"Escape in a box", [this] { m.desktop->EscapeInBox(); }},
      {"the button", [this] { Press(*form, "cmdRfOff"); }},
      {"a trial", [this] {
         Choose(*equipment, "mnuInstDefineMeter");
         Choose(*OpenWindow<DefinitionForm>(), "mnuTestInit");
       }}};
  for (const auto& [how, end] : ends) {
    SCOPED_TRACE(how);
    Send(Generator(), "OUTP ON");
    EXPECT_TRUE(m.RfIsOn());
    form->Refresh();
    EXPECT_EQ(TextOf(*form, "lblRf"), "RF ON?");
    end();
    EXPECT_FALSE(m.RfIsOn());
    form->Refresh();
    EXPECT_FALSE(Find<QLabel>(*form, "lblRf").isVisible());
  }
}

TEST_F(BusForm, RfSwitchedOnByHandGoesOffWhenTheWindowTheMenuOrTheProgramCloses) {
  const std::pair<const char*, std::function<void()>> ends[] = {{"window", [this] { form->close(); }},
                                                                {"deleted", [this] { m.desktop.reset(); }}};
  for (const auto& [how, end] : ends) {
    SCOPED_TRACE(how);
    Send(Generator(), "OUTP ON");
    EXPECT_TRUE(m.RfIsOn());
    end();
    Turn();
    EXPECT_FALSE(m.RfIsOn() || m.shell.InstrumentsClaimed());
    EXPECT_EQ(OpenWindow<frmBus>(), nullptr);
    m.desktop.reset();
    SetUp();
  }
  equipment->close();
  Turn();
  Send(Generator(), "OUTP ON");
  EXPECT_TRUE(m.RfIsOn() && form->isVisible());
  m.desktop->Menu().close();
  EXPECT_FALSE(m.RfIsOn());
  EXPECT_EQ(OpenWindow<frmBus>(), nullptr);
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(BusForm, TheEndOfTheProgramSwitchesOffTheRfThatWasSwitchedOnByHand) {
  Send(Generator(), "OUTP ON");
  m.desktop->CloseAll();
  Turn();
  EXPECT_FALSE(m.RfIsOn() || m.shell.InstrumentsClaimed());
  EXPECT_EQ(m.ended, 1);
}

TEST_F(BusForm, WhileARunHasTheInstrumentsOnlyTheTraceGoesOn) {
  SilentRun run;
  ASSERT_TRUE(m.shell.ClaimInstruments(run));
  form->Refresh();
  for (const char* const command :
       {"cmdSend", "cmdAsk", "cmdRead", "cmdLocal", "cmdClearInterface", "cmdListeners", "cmdRfOff", "cmdSaveAs"})
    EXPECT_FALSE(IsEnabled(*form, command)) << command;
  EXPECT_THAT(State(), testing::StartsWith("Another run is using the instruments"));
  (void)m.instruments.gpib.Send(Generator(), "A\n");
  form->Refresh();
  EXPECT_THAT(Trace(), testing::HasSubstr("\"A\\n\" 2 EOI"));
  QSignalSpy escapes(m.desktop.get(), &Desktop::EscapePressed);
  QTest::keyClick(form, Qt::Key_Escape);
  EXPECT_EQ(escapes.count(), 1) << "Escape is the run's Halt";
  m.shell.ReleaseInstruments();
  form->Refresh();
  EXPECT_TRUE(IsEnabled(*form, "cmdSend"));
}

TEST_F(BusForm, TheTraceIsPausedClearedAndSaved) {
  Send(Generator(), "FIRST");
  Press(*form, "cmdClear");
  EXPECT_EQ(Trace(), "");
  Press(*form, "chkPause");
  Send(Generator(), "SECOND");
  EXPECT_EQ(Trace(), "");
  Press(*form, "chkPause");
  EXPECT_THAT(Trace(), testing::HasSubstr("SECOND"));
  const std::string file = m.directory.File("bus.txt");
  dialogs.AnswerSave(file);
  Press(*form, "cmdSaveAs");
  const std::string saved = m.directory.Read("bus.txt");
  EXPECT_TRUE(saved.find("SECOND") != std::string::npos && saved.find("FIRST") == std::string::npos) << saved;
  EXPECT_EQ(State(), "The trace is in " + file);
  dialogs.AnswerSave(m.directory.File("none/bus.txt"));
  Press(*form, "cmdSaveAs");
  EXPECT_TRUE(dialogs.WasShownContaining("Error # ")) << dialogs.LastText();
}

TEST_F(BusForm, EveryControlHasAKeyAndTheFormFitsASmallScreen) {
  ExpectMnemonicsApart(*form);
  EXPECT_LE(form->minimumSizeHint().width(), 1024);
  EXPECT_LE(form->minimumSizeHint().height(), 700);
}

}  // namespace
}  // namespace hylden
