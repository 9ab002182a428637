#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMenu>
#include <QTabWidget>

#include "desktop/FormDriver.h"
#include "documents/Documents.h"
#include "documents/qt/frmTestDef.h"
#include "instruments/Instruments.h"
#include "platform/qt/QtText.h"
#include "support/ScriptedBus.h"
#include "support/TestShell.h"
#include "text/RecordFile.h"
#include "widgets/PathLabel.h"

namespace hylden {

/// A definition that passes every check, with a different value in every field.
inline TestDefinition GoodDefinition(const TempDir& directory) {
  TestDefinition d;
  d.CalInfoFile = directory.File("cal.hyinfo");
  d.StartFreq = 0.2, d.StopFreq = 80;
  d.FreqSweep = true;
  d.StepType = StepType::Log;
  d.LinearStep = 0.5, d.LogStep = 1.25, d.SweepDwell = 2;
  d.FreqList = true;
  d.ListFile = directory.File("list.lst");
  d.DiscreteDwell = 3;
  d.ModType = Modulation::Am;
  d.AmDepth = 60, d.AmModFreq = 1, d.FmDev = 4, d.FmModFreq = 5, d.PulseWidth = 6, d.PulsePeriod = 7;
  d.ConstPeak = d.ModOffBetweenFreqs = d.UseAMdepth = true;
  d.LevelingMode = LevelingMode::ClosedLoop;
  d.InitLevOffset = -8, d.LevelInc = 9, d.InterDwell = 0.25F;
  d.LevelingMethod = LevelingMethod::NetPower;
  d.Extrapolate = true;
  d.ExtrapolateTo = -1.5;
  d.MonitorProbe = d.LimitCurrent = true;
  d.LimitMargin = 11, d.EUTCircuitImpedance = 50;
  return d;
}

/// What the form asks of the program around it.
struct Requests {
  explicit Requests(const frmTestDef& form) {
    QObject::connect(&form, &frmTestDef::StartRequested, [this] { ++starts; });
    QObject::connect(&form, &frmTestDef::EditEquipmentRequested, [this](int tab) { equipmentTabs.push_back(tab); });
    QObject::connect(&form, &frmTestDef::HelpRequested, [this](const QString& topic) { help << topic; });
    QObject::connect(&form, &frmTestDef::CreateListRequested, [this](const QString& file) { lists << file; });
    QObject::connect(&form, &frmTestDef::PrintPreviewRequested, [this] { ++previews; });
  }
  int starts = 0, previews = 0;
  std::vector<int> equipmentTabs;
  QStringList help, lists;
};

class TestDefForm : public testing::Test {
 protected:
  TestDefForm() {
    t.directory.Write("cal.hyinfo", "Setup <b>1</b>\r\nAmp\r\nCDN\r\n10v\r\n0.15 - 230\r\n 1 \r\n");
    t.directory.Write("list.lst", "1.0\r\n2.0\r\n");
    test() = GoodDefinition(t.directory);
    documents.testSetup.Saved = test();
    EXPECT_TRUE(documents.calInfo.LoadDef(test().CalInfoFile));
    EquipRecord& equip = documents.equip.Record;
    equip.SigGenFile = equip.MeterFile = equip.PwrMtrFile = "x";
    equip.CableLossFile = equip.FwdPortFile = equip.RevPortFile = "x";
    equip.AmpConfiguration = AmpConfig::DualFwdRev;
  }

  TestDefinition& test() { return documents.testSetup.Definition; }

  frmTestDef& Open() {
    requests_.reset();
    form_ = std::make_unique<frmTestDef>(t.shell, documents);
    requests_ = std::make_unique<Requests>(*form_);
    form_->show();
    QApplication::setActiveWindow(form_.get());
    return *form_;
  }
  frmTestDef& form() { return form_ ? *form_ : Open(); }
  Requests& requests() { return form(), *requests_; }

  template <class Control>
  Control& Find(const char* name) {
    return hylden::Find<Control>(form(), name);
  }
  QLineEdit& Box(const char* name) { return Find<QLineEdit>(name); }
  void Type(const char* name, const std::string& text) { Box(name).setText(ToQt(text)); }
  void Press(const char* name) { Find<QAbstractButton>(name).click(); }
  void Choose(const char* name) { Find<QAction>(name).trigger(); }
  bool Ticked(const char* name) { return Find<QAbstractButton>(name).isChecked(); }
  bool Enabled(const char* name) { return Find<QWidget>(name).isEnabled(); }
  std::string Text(const char* label) { return FromQt(Find<QLabel>(label).text()); }
  std::string Path(const char* label) { return Find<PathLabel>(label).Path(); }
  int Tab() { return Find<QTabWidget>("tabSetup").currentIndex(); }

  /// Presses the button, or a menu entry, and returns what was told meanwhile.
  std::vector<std::string> Told(const char* name) {
    t.dialogs.Clear();
    if (std::string_view(name).starts_with("mnu"))
      Choose(name);
    else
      Press(name);
    return t.dialogs.Texts();
  }

  /// A test file that holds the record.
  std::string WriteTest(const std::string& name, const TestDefinition& definition) {
    const std::string path = t.directory.File(name);
    SaveRecord(path, definition);
    return path;
  }

  ScriptedBus bus;
  TestShell t{bus};
  Instruments instruments{t.shell};
  Documents documents{t.shell, instruments};

 private:
  std::unique_ptr<frmTestDef> form_;
  std::unique_ptr<Requests> requests_;
};

}  // namespace hylden
