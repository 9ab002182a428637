#include "documents/qt/frmEquipment.h"

#include "desktop/DemoWindows.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

class EquipmentForm : public DemoWindowsTest {
 protected:
  void SetUp() override { m.Start(); }
  frmEquipment& Open() { return *m.desktop->OpenEquipment(&m.desktop->Menu()); }
  EquipRecord& Record() { return m.documents.equip.Record; }
};

TEST_F(EquipmentForm, ShowsTheStationAndMarksWhatDoesNotLoad) {
  Record().SigGenAddress = 19;
  Record().MeterFile = m.directory.File("missing.mtr");
  Record().PwrMtrFile.clear();
  Record().CableLossFile = "/lab/cable.los";
  Record().AmpConfiguration = AmpConfig::DualSplit;
  Record().AmplifierType = AmpType::Ifi;
  Record().IfiPower = true;
  frmEquipment& f = Open();
  EXPECT_EQ(PathOf(f, "lblSigGen"), Record().SigGenFile);
  EXPECT_EQ(Find<PathLabel>(f, "lblSigGen").toolTip().toStdString(), m.instruments.sigGen.InstrumentName());
  EXPECT_EQ(TextOf(f, "txtSigGenAddr"), "19");
  EXPECT_EQ(m.instruments.sigGen.Address(), 19) << "the station's address rules";
  EXPECT_EQ(TextOf(f, "txtPwrMtrAddr"), "") << "no power meter, no address";
  EXPECT_EQ(PathOf(f, "lblCalCable"), "/lab/cable.los");
  EXPECT_TRUE(IsTicked(f, "optDualSplit") && IsTicked(f, "optIFIAmp") && IsTicked(f, "chkIfiPwr"));

  const PathLabel& meter = Find<PathLabel>(f, "lblMeter");
  EXPECT_TRUE(meter.font().strikeOut() && meter.toolTip().contains("could not be loaded"));
  EXPECT_EQ(meter.Path(), Record().MeterFile);
  EXPECT_FALSE(Find<PathLabel>(f, "lblSigGen").font().strikeOut());
  Press(f, "cmdNoMeter");
  EXPECT_FALSE(meter.font().strikeOut());
}

TEST_F(EquipmentForm, EveryBoxThatHoldsNoNumberIsPointedOutAndTheOldOneStays) {
  Record().AmplifierType = AmpType::Ifi;
  frmEquipment& f = Open();
  EXPECT_EQ(ExpectPointedOut(dialogs, f, Record(), "mnuUtilInsertLoss"), 4U);
  Type(f, "txtSigGenAddr", "31");
  EXPECT_FALSE(f.close());
  EXPECT_EQ(dialogs.LastText(),
            "Number outside valid range, re-enter\r\nSignal generator GPIB address: a whole number, 0 to 30");
  EXPECT_EQ(Record().SigGenAddress, 18);
}

TEST_F(EquipmentForm, ChoicesAreStoredAtOnceAndRuleTheirControls) {
  frmEquipment& f = Open();
  const auto enabled = [&](const char* name) { return IsEnabled(f, name); };
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

TEST_F(EquipmentForm, DefinitionIsTakenWithItsNameAndAddressWhenItLoads) {
  const std::string broken = m.directory.Write("broken.mtr", "Half a meter\r\n5\r\n"), before = Record().MeterFile;
  frmEquipment& f = Open();
  Type(f, "txtMeterAddr", "7");
  Press(f, "cmdMeter");  // cancelled
  dialogs.AnswerOpen(broken);
  EXPECT_EQ(Told(dialogs, f, "cmdMeter").size(), 1u);
  EXPECT_EQ(Record().MeterFile, before);
  EXPECT_EQ(TextOf(f, "txtMeterAddr"), "7");
  MeterDefinition meter;
  meter.InstrumentName = "Demo analyser";
  meter.Address = 20;
  SaveRecord(m.directory.File("good.mtr"), meter);
  dialogs.AnswerOpen(m.directory.File("good.mtr"));
  Choose(f, "mnuInstSelMeter");
  EXPECT_EQ(dialogs.openRequests.back().title, "Select meter definition file");
  EXPECT_EQ(Record().MeterFile, m.directory.File("good.mtr"));
  EXPECT_EQ(TextOf(f, "txtMeterAddr"), "20");
  EXPECT_EQ(Find<PathLabel>(f, "lblMeter").toolTip(), "Demo analyser");
}

TEST_F(EquipmentForm, EveryTableIsTakenWhenItLoadsAndCanBeGivenUp) {
  const std::tuple<std::string, const char*, std::string EquipRecord::*, const char*> tables[] = {
      {"CalCable", "lblCalCable", &EquipRecord::CableLossFile, "Cable Loss File (*.los)|*.los"},
      {"FwdPort", "lblFwdPort", &EquipRecord::FwdPortFile, "Factor File (*.fac)|*.fac"},
      {"RevPort", "lblRevPort", &EquipRecord::RevPortFile, "Factor File (*.fac)|*.fac"},
      {"MaxPower", "lblMaxPower", &EquipRecord::MaxPowerFile, "Amp Power File (*.pwr)|*.pwr"},
      {"Probe", "lblProbeFile", &EquipRecord::ProbeFile, "Probe File (*.prb)|*.prb"}};
  const std::string good = m.directory.Write("good", "0.15 0.1\r\n80 0.5\r\n"),
                    junk = m.directory.Write("junk", "no table\r\n");
  frmEquipment& f = Open();
  for (const auto& [name, label, file, filter] : tables) {
    SCOPED_TRACE(name);
    dialogs.AnswerOpen(good);
    EXPECT_THAT(Told(dialogs, f, ("cmd" + name).c_str()), testing::IsEmpty());
    EXPECT_EQ(dialogs.openRequests.back().filter, filter);
    dialogs.AnswerOpen(junk);
    EXPECT_EQ(Told(dialogs, f, ("mnuFactorsSelect" + name).c_str()).size(), 1u);
    EXPECT_EQ(Record().*file, good);
    EXPECT_EQ(PathOf(f, label), good);
    Press(f, ("cmdNo" + name).c_str());
    EXPECT_TRUE(f.ApplyEquipment());
    EXPECT_EQ(Record().*file, "");
  }
}

TEST_F(EquipmentForm, RecentFilesSayThatAPathIsTooLongForThem) {
  frmEquipment& f = Open();
  const std::string path = m.directory.Write(std::string(120, 'd') + "/lab.eqp", "");
  SaveRecord(path, Record());
  f.LoadFile(QString::fromStdString(path));
  auto& recent = Find<QMenu>(f, "mnuFileRecent");
  emit recent.aboutToShow();
  EXPECT_EQ(recent.actions().last()->text(), "A path of more than 127 characters can't be kept here");
}

TEST_F(EquipmentForm, CableCalibrationNeedsGeneratorAndMeter) {
  Record().MeterFile.clear();
  frmEquipment& f = Open();
  EXPECT_THAT(Told(dialogs, f, "mnuUtilInsertLoss"),
              testing::ElementsAre("The signal generator and meter must both be selected first"));
  QSignalSpy requested(&f, &frmEquipment::InsertionLossRequested);
  Record().MeterFile = "/lab/m.mtr";
  Type(f, "txtMeterAddr", "20");
  Choose(f, "mnuUtilInsertLoss");
  EXPECT_EQ(requested.count(), 1);
}

}  // namespace
}  // namespace hylden
