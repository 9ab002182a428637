#include <gtest/gtest.h>

#include <QCheckBox>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>

#include "app/Station.h"
#include "desktop/FormDriver.h"
#include "documents/Documents.h"
#include "documents/qt/frmEquipment.h"
#include "instruments/Instruments.h"
#include "support/ScriptedBus.h"
#include "support/TestShell.h"
#include "text/RecordFile.h"
#include "widgets/PathLabel.h"

namespace hylden {
namespace {

constexpr char kTable[] = "0.15 0.1\r\n80 0.5\r\n";

class EquipmentFormTest : public testing::Test {
 protected:
  EquipmentFormTest() {
    SigGenDefinition generator;
    generator.InstrumentName = "Demo generator";
    generator.Address = 18;
    SaveRecord(t.directory.File("gen.sg"), generator);
    PowerMeterDefinition powerMeter;
    powerMeter.InstrumentName = "Demo power meter";
    SaveRecord(t.directory.File("power.pm"), powerMeter);
    documents.equip.Record.SigGenFile = t.directory.File("gen.sg");
    documents.equip.Record.SigGenAddress = 19;
    documents.equip.Record.PwrMtrFile = t.directory.File("power.pm");
    documents.equip.Record.PwrMtrAddress = 13;
    documents.equip.Record.IfiBandSwitch = 220;
    documents.equip.Saved = documents.equip.Record;
  }

  frmEquipment& Open() {
    station.LoadDefinitions();
    form = std::make_unique<frmEquipment>(t.shell, instruments, documents.equip);
    QObject::connect(form.get(), &frmEquipment::StationLoaded, [this] { station.LoadDefinitions(); });
    QObject::connect(form.get(), &frmEquipment::EntriesTaken, [this] { station.TakeAddresses(); });
    form->show();
    QApplication::setActiveWindow(form.get());
    return *form;
  }
  EquipRecord& Record() { return documents.equip.Record; }

  ScriptedBus bus;
  TestShell t{bus};
  Station station{t.shell};
  Instruments& instruments = station.instruments;
  Documents& documents = station.documents;
  std::unique_ptr<frmEquipment> form;
};

TEST_F(EquipmentFormTest, ShowsTheStation) {
  Record().AmpConfiguration = AmpConfig::DualSplit;
  Record().AmplifierType = AmpType::Ifi;
  Record().IfiPower = true;
  Record().CableLossFile = "/lab/cable.los";
  frmEquipment& f = Open();
  EXPECT_EQ(Find<PathLabel>(f, "lblSigGen").Path(), Record().SigGenFile);
  EXPECT_EQ(Find<PathLabel>(f, "lblSigGen").toolTip(), "Demo generator");
  EXPECT_EQ(TextOf(f, "txtSigGenAddr"), "19");
  EXPECT_EQ(TextOf(f, "txtMeterAddr"), "") << "no meter, no address";
  EXPECT_EQ(TextOf(f, "txtPmBandSwitchFreq"), "220");
  EXPECT_EQ(Find<PathLabel>(f, "lblCalCable").Path(), "/lab/cable.los");
  EXPECT_TRUE(Find<QRadioButton>(f, "optDualSplit").isChecked());
  EXPECT_TRUE(Find<QRadioButton>(f, "optIFIAmp").isChecked());
  EXPECT_TRUE(Find<QCheckBox>(f, "chkIfiPwr").isChecked());
  EXPECT_EQ(instruments.sigGen.Address(), 19) << "the station's address rules";
}

TEST_F(EquipmentFormTest, MarksAnInstrumentWhoseDefinitionDoesNotLoad) {
  Record().MeterFile = t.directory.File("missing.mtr");
  frmEquipment& f = Open();
  const PathLabel& meter = Find<PathLabel>(f, "lblMeter");
  EXPECT_TRUE(meter.font().strikeOut());
  EXPECT_TRUE(meter.toolTip().contains("could not be loaded"));
  EXPECT_EQ(meter.Path(), Record().MeterFile);
  EXPECT_FALSE(Find<PathLabel>(f, "lblSigGen").font().strikeOut());
  Find<QAbstractButton>(f, "cmdNoMeter").click();
  EXPECT_FALSE(meter.font().strikeOut());
}

struct AddressCase {
  const char* text;
  const char* message;
};

class AddressTest : public EquipmentFormTest, public testing::WithParamInterface<AddressCase> {};

TEST_P(AddressTest, WrongAddressKeepsTheFormOpenAndTheOldAddress) {
  frmEquipment& f = Open();
  f.ShowTab(2);
  Find<QLineEdit>(f, "txtSigGenAddr").setText(GetParam().text);
  EXPECT_FALSE(f.close());
  EXPECT_TRUE(f.isVisible());
  EXPECT_EQ(t.dialogs.LastText(), GetParam().message);
  EXPECT_EQ(QApplication::focusWidget(), &Find<QLineEdit>(f, "txtSigGenAddr"));
  EXPECT_EQ(Find<QLineEdit>(f, "txtSigGenAddr").selectedText(), GetParam().text);
  EXPECT_EQ(Record().SigGenAddress, 19);
}

INSTANTIATE_TEST_SUITE_P(Texts, AddressTest,
                         testing::Values(AddressCase{"31", "Number outside valid range, re-enter"},
                                         AddressCase{"-1", "Number outside valid range, re-enter"},
                                         AddressCase{"1e99", "Number outside valid range, re-enter"},
                                         AddressCase{"abc", "Value not a number, re-enter"},
                                         AddressCase{"", "Value not a number, re-enter"}));

TEST_F(EquipmentFormTest, ClosingAppliesAndShowsTheCaller) {
  QWidget caller;
  frmEquipment& f = Open();
  f.OpenFrom(&caller);
  Type(f, "txtSigGenAddr", "30");
  QSignalSpy unloaded(&f, &WorkingForm::Unloaded);
  t.dialogs.Answer(MessageAnswer::No);
  EXPECT_TRUE(f.close());
  EXPECT_TRUE(caller.isVisible());
  EXPECT_EQ(unloaded.count(), 1);
  EXPECT_EQ(Record().SigGenAddress, 30);
  EXPECT_EQ(instruments.sigGen.Address(), 30);
}

TEST_F(EquipmentFormTest, AmplifierBandSwitchRulesThePowerMeters) {
  frmEquipment& f = Open();
  f.ShowTab(2);
  Press(f, "optIFIAmp");
  Type(f, "txtIfiBandSwitch", "215");
  EXPECT_TRUE(f.ApplyEquipment());
  EXPECT_EQ(instruments.pm.Bandswitch(), 215);
  EXPECT_EQ(Record().PmBandSwitch, 215);
  for (const char* wrong : {"199.9", "230.1"}) {
    f.ShowTab(0);
    Find<QLineEdit>(f, "txtIfiBandSwitch").setText(wrong);
    EXPECT_FALSE(f.close()) << wrong;
    EXPECT_EQ(Find<QTabWidget>(f, "tabSetup").currentIndex(), 2);
  }
}

TEST_F(EquipmentFormTest, ChoicesAreStoredAtOnceAndRuleTheirControls) {
  frmEquipment& f = Open();
  const auto enabled = [&](const char* name) { return Find<QWidget>(f, name).isEnabled(); };
  Press(f, "optDualFwdRev");
  EXPECT_TRUE(Record().Is(AmpConfig::DualFwdRev));
  EXPECT_FALSE(enabled("lblBandSwitchFreq"));
  Press(f, "optDualSplit");
  EXPECT_TRUE(enabled("lblBandSwitchFreq"));
  EXPECT_FALSE(enabled("txtPmBandSwitchFreq")) << "display only";
  EXPECT_FALSE(enabled("chkIfiPwr"));
  Press(f, "optIFIAmp");
  EXPECT_TRUE(Record().HasIfiAmplifier());
  EXPECT_TRUE(enabled("chkIfiPwr") && enabled("txtIfiBandSwitch") && enabled("lblAmpSwitchFreq"));
  Press(f, "chkIfiPwr");
  EXPECT_TRUE(Record().IfiPower);
  EXPECT_TRUE(enabled("chkIfiAtten")) << "also on a form that was opened with a generic amplifier";
  Press(f, "optGenericAmp");
  EXPECT_FALSE(enabled("chkIfiPwr") || enabled("chkIfiAtten") || enabled("txtIfiBandSwitch"));
}

TEST_F(EquipmentFormTest, SelectedDefinitionBringsItsNameAndAddress) {
  MeterDefinition meter;
  meter.InstrumentName = "Demo analyser";
  meter.Address = 20;
  SaveRecord(t.directory.File("analyser.mtr"), meter);
  frmEquipment& f = Open();
  t.dialogs.AnswerOpen(t.directory.File("analyser.mtr"));
  Choose(f, "mnuInstSelMeter");
  EXPECT_EQ(t.dialogs.openRequests.back().title, "Select meter definition file");
  EXPECT_EQ(Record().MeterFile, t.directory.File("analyser.mtr"));
  EXPECT_EQ(TextOf(f, "txtMeterAddr"), "20");
  EXPECT_EQ(Find<PathLabel>(f, "lblMeter").toolTip(), "Demo analyser");
}

TEST_F(EquipmentFormTest, CancelledOrBrokenDefinitionLeavesTheOldOne) {
  const std::string before = Record().SigGenFile;
  frmEquipment& f = Open();
  Type(f, "txtSigGenAddr", "7");
  Press(f, "cmdSigGen");
  t.dialogs.AnswerOpen(t.directory.Write("broken.sg", "Half a generator\r\n5\r\n"));
  Press(f, "cmdSigGen");
  EXPECT_EQ(t.dialogs.messages.size(), 1u);
  EXPECT_EQ(Record().SigGenFile, before);
  EXPECT_EQ(TextOf(f, "txtSigGenAddr"), "7");
  EXPECT_EQ(instruments.sigGen.InstrumentName(), "Demo generator");
}

TEST_F(EquipmentFormTest, TableIsTakenOnlyWhenItLoads) {
  frmEquipment& f = Open();
  const std::string good = t.directory.Write("port.fac", kTable);
  t.dialogs.AnswerOpen(good);
  Press(f, "cmdFwdPort");
  EXPECT_EQ(t.dialogs.openRequests.back().filter, "Factor File (*.fac)|*.fac");
  EXPECT_EQ(Record().FwdPortFile, good);
  t.dialogs.AnswerOpen(t.directory.Write("junk.fac", "no table\r\n"));
  Choose(f, "mnuFactorsSelectFwdPort");
  EXPECT_EQ(Record().FwdPortFile, good);
  EXPECT_EQ(Find<PathLabel>(f, "lblFwdPort").Path(), good);
  EXPECT_EQ(t.dialogs.messages.size(), 1u);
  Press(f, "cmdNoFwdPort");
  EXPECT_TRUE(f.ApplyEquipment());
  EXPECT_EQ(Record().FwdPortFile, "");
}

TEST_F(EquipmentFormTest, SavedStationLoadsAgainThroughRecentFiles) {
  frmEquipment& f = Open();
  Type(f, "txtSigGenAddr", "5");
  t.dialogs.AnswerSave(t.directory.File("lab.eqp"));
  Choose(f, "mnuEquipFileSave");
  EXPECT_EQ(f.windowTitle().toStdString(), "Equipment File: " + t.directory.File("lab.eqp"));
  EXPECT_EQ(Find<QAction>(f, "mnuEquipFileSave").text(), "&Save lab.eqp");
  Record() = EquipRecord();
  f.ShowChanges();
  EXPECT_EQ(TextOf(f, "txtSigGenAddr"), "");
  auto& recent = Find<QMenu>(f, "mnuFileRecent");
  emit recent.aboutToShow();
  ASSERT_EQ(recent.actions().size(), 1);
  t.dialogs.Answer(MessageAnswer::No);
  recent.actions().first()->trigger();
  EXPECT_EQ(TextOf(f, "txtSigGenAddr"), "5");
}

TEST_F(EquipmentFormTest, RecentFilesSayThatAPathIsTooLongForThem) {
  frmEquipment& f = Open();
  const std::string path = t.directory.Write(std::string(120, 'd') + "/lab.eqp", "");
  SaveRecord(path, Record());
  f.LoadFile(QString::fromStdString(path));
  auto& recent = Find<QMenu>(f, "mnuFileRecent");
  emit recent.aboutToShow();
  EXPECT_EQ(recent.actions().last()->text(), "A path of more than 127 characters can't be kept here");
}

TEST_F(EquipmentFormTest, InvalidEntryIsNotSaved) {
  frmEquipment& f = Open();
  Type(f, "txtSigGenAddr", "99");
  t.dialogs.AnswerSave(t.directory.File("lab.eqp"));
  Choose(f, "mnuEquipFileSaveAs");
  EXPECT_FALSE(t.directory.Exists("lab.eqp"));
  EXPECT_EQ(f.windowTitle(), "Equipment File: *");
}

TEST_F(EquipmentFormTest, VanishedFileLeavesTheStationAsItWas) {
  frmEquipment& f = Open();
  t.dialogs.AnswerOpen(t.directory.File("gone.eqp"));
  Choose(f, "mnuEquipFileLoad");
  EXPECT_TRUE(t.dialogs.WasShownContaining("Error # 53"));
  EXPECT_EQ(f.windowTitle(), "Equipment File: ");
  EXPECT_EQ(TextOf(f, "txtSigGenAddr"), "19");
}

TEST_F(EquipmentFormTest, BrokenFileLeavesStationAndEntriesAsTheyWere) {
  const EquipRecord before = Record();
  frmEquipment& f = Open();
  Type(f, "txtSigGenAddr", "7");
  t.dialogs.AnswerOpen(t.directory.Write("half.eqp", "other.sg\r\n 3 \r\nother.mtr\r\n"));
  t.dialogs.Answer(MessageAnswer::No);
  Choose(f, "mnuEquipFileLoad");
  EXPECT_EQ(t.dialogs.messages.size(), 2u);
  EXPECT_EQ(Record().SigGenFile, before.SigGenFile);
  EXPECT_EQ(Record().MeterFile, before.MeterFile);
  EXPECT_EQ(TextOf(f, "txtSigGenAddr"), "7");
}

TEST_F(EquipmentFormTest, CableCalibrationNeedsGeneratorAndMeter) {
  frmEquipment& f = Open();
  EXPECT_FALSE(Find<QAction>(f, "mnuUtilInsertLoss").isEnabled());
  f.Offer(true, true, true);
  QSignalSpy requested(&f, &frmEquipment::InsertionLossRequested);
  Choose(f, "mnuUtilInsertLoss");
  EXPECT_EQ(t.dialogs.LastText(), "The signal generator and meter must both be selected first");
  Record().MeterFile = "/lab/m.mtr";
  Type(f, "txtMeterAddr", "20");
  Choose(f, "mnuUtilInsertLoss");
  EXPECT_EQ(requested.count(), 1);
}

TEST_F(EquipmentFormTest, MarksAndAsksForWhatIsNotSaved) {
  documents.equip.EquipFileName = t.directory.File("lab.eqp");
  const QString title = QString::fromStdString("Equipment File: " + documents.equip.EquipFileName);
  frmEquipment& f = Open();
  EXPECT_EQ(f.windowTitle(), title);
  const struct {
    const char* name;
    std::function<void()> change, back;
  } changes[] = {{"address", [&] { Type(f, "txtSigGenAddr", "7"); }, [&] { Type(f, "txtSigGenAddr", "19"); }},
                 {"choice", [&] { Press(f, "optDualSplit"); }, [&] { Press(f, "optSingle"); }},
                 {"band switch", [&] { f.ShowTab(2), Press(f, "optIFIAmp"), Type(f, "txtIfiBandSwitch", "215"); },
                  [&] { Type(f, "txtIfiBandSwitch", "220"), Press(f, "optGenericAmp"); }}};
  for (const auto& c : changes) {
    SCOPED_TRACE(c.name);
    c.change();
    EXPECT_EQ(f.windowTitle(), title + "*");
    c.back();
    EXPECT_EQ(f.windowTitle(), title);
  }
  Press(f, "cmdNoPwrMtr");
  EXPECT_EQ(f.windowTitle(), title + "*");
  t.dialogs.Answer(MessageAnswer::Cancel);
  EXPECT_FALSE(f.close());
  EXPECT_EQ(t.dialogs.LastText(), "The equipment has changes that are not saved.\r\nSave them?");
  EXPECT_TRUE(f.close()) << "Yes";
  EquipRecord saved;
  LoadRecord(t.directory.File("lab.eqp"), saved);
  EXPECT_EQ(saved.PwrMtrFile, "");
}

/// Every box and choice says what it is to those who can't see it, and fits a small screen.
TEST_F(EquipmentFormTest, EveryControlHasANameAndTheFormFitsASmallScreen) {
  frmEquipment& f = Open();
  for (const QLineEdit* box : f.findChildren<QLineEdit*>())
    EXPECT_FALSE(box->accessibleName().isEmpty()) << box->objectName().toStdString();
  for (const QPushButton* button : f.findChildren<QPushButton*>())
    EXPECT_FALSE(button->toolTip().isEmpty()) << button->objectName().toStdString();
  EXPECT_LE(f.minimumSizeHint().width(), 1024);
  EXPECT_LE(f.minimumSizeHint().height(), 720);
}

}  // namespace
}  // namespace hylden
