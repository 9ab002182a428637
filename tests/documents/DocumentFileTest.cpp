#include "documents/DocumentFile.h"

#include <gtest/gtest.h>

#include "documents/CalSetup.h"
#include "documents/Equip.h"
#include "documents/TestSetup.h"
#include "instruments/Instruments.h"
#include "support/FieldChanger.h"
#include "support/ReadLines.h"
#include "support/SameRecord.h"
#include "support/SampleDocuments.h"
#include "support/TestShell.h"
#include "support/Told.h"

namespace hylden {
namespace {

// What a document has in common with the others: its name in reports, a file, what the fields of its record are then, a
// line that has to be a number, and how the run log calls it.

struct EquipKind {
  using Record = EquipRecord;
  Equip Make() { return {t.shell, instruments}; }
  static EquipRecord& Of(Equip& equip) { return equip.Record; }
  static bool IsSample(const EquipRecord& r) {
    return r.SigGenFile == "C:\\lab, one\\gen.sg" && r.SigGenAddress == 18 && r.MeterFile == "/lab/meter.mtr" &&
           r.MeterAddress == 13 && r.PwrMtrFile == "/lab/power.pm" && r.PwrMtrAddress == 5 &&
           r.Is(AmpConfig::DualSplit) && r.PmBandSwitch == .5 && r.CableLossFile == "cable.los" &&
           r.FwdPortFile == "f.fac" && r.RevPortFile == "r.fac" && r.MaxPowerFile == "max.pwr" &&
           r.ProbeFile == "one.prb" && r.HasIfiAmplifier() && r.IfiPower && !r.IfiAtten && r.IfiBandSwitch == 215;
  }
  static constexpr const char *kName = "Equip", *kLog = "Equip file";
  static constexpr const char* kFile = kEquipFile;
  static constexpr std::size_t kLines = 17, kNumber = 3;

  TestShell t;
  Instruments instruments{t.shell};
};

struct CalSetupKind {
  using Record = CalSetupRecord;
  CalSetup Make() { return {}; }
  static CalSetupRecord& Of(CalSetup& setup) { return setup.Record; }
  static bool IsSample(const CalSetupRecord& r) {
    return r.StartFreq == .15 && r.StopFreq == 80 && r.Steps(StepType::Log) && r.LinearStep == .5 && r.LogStep == 1 &&
           r.ListFile == "/lists/x.lst" && r.HasFlatLevel() && r.CalLevel == 10 && r.LimitFile == "/levels/y.lev" &&
           r.MaxLevel == 7 && r.MaxStep == 3.25F && r.InitLevel == -30 && r.RecordFwdPwr == 1 && r.RecordRevPwr == 2 &&
           r.LimitFwdPwr == 0 && r.FwdPwrLimit == 25 && r.Reserved1 == 6 && r.Dwell == .3 &&
           r.DeviceDescription == "CDN M2, no. 4711" && r.AmpUsed == "25 W" && r.HasOwnFactor() &&
           r.SetupDescription == "10 V" && r.UserDefinedFactor == .1F;
  }
  static constexpr const char *kName = "CalSetup", *kLog = "";
  static constexpr const char* kFile = kCalSetupFile;
  static constexpr std::size_t kLines = 23, kNumber = 7;

  TestShell t;
};

struct TestSetupKind {
  using Record = TestDefinition;
  TestSetup Make() { return {t.shell, calInfo}; }
  static TestDefinition& Of(TestSetup& setup) { return setup.Definition; }
  static bool IsSample(const TestDefinition& r) {
    return r.CalInfoFile == "/cal/CDN, 10 V.hyinfo" && r.StartFreq == .15 && r.StopFreq == 80 && r.FreqSweep &&
           r.StepType == StepType::Log && r.LinearStep == .5 && r.LogStep == 1 && r.SweepDwell == 2 && !r.FreqList &&
           r.ListFile == "/lists/x.lst" && r.DiscreteDwell == 3 && r.Modulates(Modulation::Am) && r.AmDepth == 80 &&
           r.AmModFreq == 1 && r.FmDev == 10 && r.FmModFreq == .4F && r.PulseWidth == 1.5F && r.PulsePeriod == 4.6F &&
           !r.ConstPeak && r.LevelingMode == LevelingMode::ClosedLoop && r.InitLevOffset == -6 && r.LevelInc == 1.25F &&
           r.InterDwell == .2F && r.LevelsBy(LevelingMethod::NetPower) && !r.Extrapolate && r.ExtrapolateTo == -3 &&
           r.MonitorProbe && !r.LimitCurrent && r.LimitMargin == 2 && r.EUTCircuitImpedance == 150 &&
           r.ModOffBetweenFreqs && !r.UseAMdepth && r.Spare1 == "1" && r.Spare2 + r.Spare3 + r.Spare4 == "234" &&
           r.Spare5 == "5";
  }
  static constexpr const char *kName = "TestSetup", *kLog = "Test file";
  static constexpr const char* kFile = kTestFile;
  static constexpr std::size_t kLines = 30, kNumber = 2;

  TestShell t;
  CalInfo calInfo;
};

template <class Kind>
class DocumentFileTest : public testing::Test, protected Kind {
 protected:
  using Record = typename Kind::Record;
  std::string At(const std::string& name) const { return this->t.directory.File(name); }
  std::string Report(const char* what, const char* operation, const std::string& path) const {
    return std::string("Error # ") + what + "\r" + Kind::kName + operation + "\r" + path;
  }
};
using Kinds = testing::Types<EquipKind, CalSetupKind, TestSetupKind>;
TYPED_TEST_SUITE(DocumentFileTest, Kinds);

TYPED_TEST(DocumentFileTest, KeepsEveryFieldInItsPlaceInTheFile) {
  auto document = this->Make(), other = this->Make();
  ASSERT_TRUE(document.LoadDef(this->t.directory.Write("sample", TypeParam::kFile)));
  const auto sample = this->Of(document);
  EXPECT_TRUE(this->IsSample(sample));
  for (int field = -1; field < FieldCount(sample); ++field) {
    SCOPED_TRACE(field);
    const auto changed = WithChangedField(sample, field);
    this->Of(document) = changed;
    ASSERT_TRUE(document.SaveDef(this->At("first")));
    ASSERT_TRUE(other.LoadDef(this->At("first")));
    EXPECT_TRUE(SameRecord(this->Of(other), changed));
    EXPECT_EQ(SameRecord(changed, sample), field < 0);
    EXPECT_TRUE(SameRecord(document.Saved, changed) && SameRecord(other.Saved, changed));
    ASSERT_TRUE(other.SaveDef(this->At("second")));
    EXPECT_EQ(this->t.directory.Read("second"), this->t.directory.Read("first"));
    EXPECT_EQ(this->t.directory.Read("first") == TypeParam::kFile, field < 0);
  }
}

TYPED_TEST(DocumentFileTest, AFileThatFailsLeavesEverythingAsItWas) {
  std::vector<std::string> lines = ReadLines(this->t.directory.Write("whole", TypeParam::kFile));
  lines.resize(TypeParam::kLines);
  const std::string enough = this->t.directory.Write("enough", JoinLines(lines));
  const std::string cut = this->t.directory.Write("cut", JoinLines({lines.begin(), lines.end() - 1}));
  lines[TypeParam::kNumber] = "ten";
  const std::string bad = this->t.directory.Write("bad", JoinLines(lines));
  auto document = this->Make();
  EXPECT_TRUE(document.LoadDef(enough));
  const auto loaded = this->Of(document);
  const auto kept = this->Of(document) = WithChangedField(loaded, 0);
  const std::string place = ", behind line " + std::to_string(TypeParam::kLines - 1) + " of the ";
  EXPECT_TRUE(FailsWith(document.LoadDef(cut), "Error # 62\rInput past end of file" + place));
  EXPECT_TRUE(FailsWith(document.LoadDef(bad), "Error # 13\rType mismatch, line "));
  EXPECT_EQ(Told(document.LoadDef("")), std::vector{this->Report("75\rPath/File access error", ".LoadDef", "")});
  const std::string nowhere = this->At("nowhere/a");
  EXPECT_EQ(Told(document.SaveDef(nowhere)), std::vector{this->Report("76\rPath not found", ".SaveDef", nowhere)});
  EXPECT_TRUE(SameRecord(this->Of(document), kept));
  EXPECT_TRUE(SameRecord(document.Saved, loaded));
}

TYPED_TEST(DocumentFileTest, FilesBesideTheDocumentAreFoundFromAnywhere) {
  auto document = this->Make();
  auto& record = this->Of(document);
  const auto names = [&] {
    std::vector<std::string> paths;
    for (const std::string* field : FileFields(record)) paths.push_back(*field);
    return paths;
  };
  int number = 0;
  for (std::string* field : FileFields(record)) {
    *field = "file" + std::to_string(number++);
    this->t.directory.Write("lab/" + *field, "");
  }
  if (number == 0) return;  // it names none
  *FileFields(record).back() = "nowhere";
  std::vector<std::string> found = names();
  for (std::string& path : found)
    if (path != "nowhere") path = this->At("lab/" + path);
  ASSERT_TRUE(document.SaveDef(this->At("lab/a")));
  const std::string before = this->t.directory.Read("lab/a");
  // Loaded by a relative path and saved elsewhere, the names hold from anywhere.
  const std::pair<const char*, const char*> rows[] = {{"lab", "a"}, {"", "./lab/a"}, {"", "lab\\a"}};
  for (const auto& [folder, name] : rows) {
    SCOPED_TRACE(name);
    {
      const WorkingDirectory here(this->At(folder));
      ASSERT_TRUE(document.LoadDef(name));
      ASSERT_TRUE(document.SaveDef(this->At("b")));
      ASSERT_TRUE(document.SaveDef(this->At("lab/a")));
      EXPECT_EQ(this->t.directory.Read("lab/a"), before) << "the set can still be moved";
    }
    ASSERT_TRUE(document.LoadDef(this->At("b")));
    EXPECT_EQ(names(), found);
  }
  // Where the program was started a file of that name still comes first.
  const std::string first = "file0";
  this->t.directory.Write("here/" + first, "");
  const WorkingDirectory here(this->At("here"));
  ASSERT_TRUE(document.LoadDef(this->At("lab/a")));
  EXPECT_EQ(names().front(), first);
}

TYPED_TEST(DocumentFileTest, EveryLoadIsLogged) {
  const WorkingDirectory here(this->t.directory.Path());
  this->t.shell.settings.Store().SaveSettingInt("System", "LogToFile", 1);
  auto document = this->Make();
  ASSERT_TRUE(document.SaveDef("a"));
  ASSERT_TRUE(document.LoadDef("a"));
  EXPECT_FALSE(document.LoadDef("missing"));
  const std::string begin = "01/05/26 09:00:00 - ", log = TypeParam::kLog;
  EXPECT_EQ(this->t.directory.Exists("runlog.hyl"), !log.empty());
  if (log.empty()) return;
  EXPECT_EQ(this->t.directory.Read("runlog.hyl"), begin + log + " saved: a\r\n" + begin + log + ": a\r\n");
}

}  // namespace
}  // namespace hylden
