// Every kind of file, saved over an older one while the system fails, or the program is killed, at each call in turn.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/FailingSystem.h"
#include "calibration/CableCalibration.h"
#include "calibration/InsertionLossText.h"
#include "documents/SaveCal.h"
#include "documents/clsCalFile.h"
#include "measure/InterpClass.h"
#include "measure/ListBuilder.h"
#include "platform/console/ConsolePrinter.h"
#include "shell/RecentFiles.h"
#include "support/TestStation.h"
#include "testrun/RunData.h"
#include "testrun/RunReport.h"

namespace hylden {
namespace {

using How = FailingSystem::How;
using Save = std::function<Done()>;

struct SavedKind {
  const char* name;
  std::vector<const char*> files;
  /// What saves the content of a number as the first file.
  std::function<Save(TestStation&, const std::string& path, int number)> saving;
};

RunData RunOf(int number) {
  RunData data;
  data.AddThreshold(number, -3);
  return data;
}

Save RunDataSaving(TestStation&, const std::string& path, int number) {
  return [=] { return FileRunData(RunOf(number), path, false); };
}

Save RecordSaving(TestStation&, const std::string& path, int number) {
  const CalRows rows = {{1, double(number), 130}, {2, double(number), 130}};
  CalInfoRec info;
  info.SetupDescription = std::to_string(number);
  return [=] { return SaveCal(path, rows, info); };
}

Save LossSaving(TestStation&, const std::string& path, int number) {
  return [=] { return FileInsertionLoss({{double(number), -20, 97, 96, 1}}, path); };
}

Save EquipmentSaving(TestStation& s, const std::string& path, int number) {
  s.equipment.SigGenAddress = static_cast<std::int16_t>(number);
  return [&s, path] { return s.documents.equip.SaveDef(path); };
}

Save SetupSaving(TestStation& s, const std::string& path, int number) {
  s.documents.calSetup.Record.StopFreq = number;
  return [&s, path] { return s.documents.calSetup.SaveDef(path); };
}

Save TestSaving(TestStation& s, const std::string& path, int number) {
  s.documents.testSetup.Definition.StopFreq = number;
  return [&s, path] { return s.documents.testSetup.SaveDef(path); };
}

template <class Driver>
Save DefinitionSaving(Driver& driver, const std::string& path, int number) {
  Redefine(driver, [number](auto& d) { d.Address = static_cast<std::int16_t>(number); });
  return [&driver, path] { return driver.SaveFile(path); };
}

Save FactorsSaving(TestStation& s, const std::string& path, int number) {
  InterpClass table(s.t.shell);
  const std::string source = s.t.directory.Write("source", "1 2\r\n3 " + std::to_string(number) + "\r\n");
  EXPECT_TRUE(table.InitInterp(source));
  return [=] { return table.SaveFile(path); };
}

Save ListSaving(TestStation&, const std::string& path, int number) {
  ListBuilder list;
  list.Open({double(number), 200}, "");
  return [=]() mutable { return list.Save(path); };
}

Save ReportSaving(TestStation& s, const std::string& path, int number) {
  return [&s, path, number] {
    ConsolePrinter printer(path);
    return PrintRunReport(printer, s.documents, RunOf(number), RunReportKind::Threshold);
  };
}

Save SettingSaving(TestStation&, const std::string& path, int number) {
  return [=] {
    Done kept;
    INISettings settings{Directories(std::filesystem::path(path).parent_path().string())};
    settings.onTrouble = [&](const std::string& text) { return !(kept = Because(text)); };
    settings.Save("Gpib", "Board", std::to_string(number));
    return kept;
  };
}

class SavesTest : public testing::TestWithParam<SavedKind> {
 protected:
  using Contents = std::map<std::string, std::string>;

  Contents Files() const {
    Contents files;
    for (const auto& entry : std::filesystem::directory_iterator(directory.Path())) {
      const std::string name = entry.path().filename().string();
      files[name] = directory.Read(name);
    }
    return files;
  }
  /// Of the files alone, as whoever opens them next has them.
  Contents Opened() const {
    if (IsPair()) SettleRecord(directory.File(GetParam().files.back()));
    Contents files;
    for (const char* const name : GetParam().files) files[name] = directory.Read(name);
    return files;
  }
  bool IsPair() const { return GetParam().files.size() == 2; }
  Save Saving(int number) { return GetParam().saving(station, directory.File(GetParam().files.front()), number); }
  /// Saves in a process of its own, which is killed at a call. @return whether it came that far
  bool KilledAt(int call) {
    const Save save = Saving(2);
    const pid_t child = fork();
    if (child == 0) {
      FailingSystem::Arm(call, How::Kill);
      (void)save().has_value();
      _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  }
  /// Lets a save fail at each call in turn.
  void FailEverywhere(How how);

  TempDir directory;
  TestStation station;
  Contents old, fresh;

  void SetUp() override {
    ASSERT_TRUE(Saving(2)());
    fresh = Files();
    ASSERT_TRUE(Saving(1)());
    old = Files();
    ASSERT_EQ(old.size(), GetParam().files.size());
    ASSERT_NE(old, fresh);
  }
};

constexpr int kFewestCalls = 6;  // open, write, flush, sync, close, rename

/// The new files count from the rename on that puts the first one in place; of a pair two come before.
bool IsPlaced(const std::string& took, bool isPair) {
  std::size_t renames = 0;
  for (std::size_t at = 0; (at = took.find("rename", at)) != std::string::npos; ++at) ++renames;
  return renames >= (isPair ? 3U : 1U);
}

void SavesTest::FailEverywhere(How how) {
  int call = 1;
  for (bool came = true; came; ++call) {
    SCOPED_TRACE(call);
    ASSERT_TRUE(Saving(1)());
    const Save save = Saving(2);
    FailingSystem::Arm(call, how);
    const Done saved = save();
    came = FailingSystem::Disarm();
    const std::string took = FailingSystem::Took();
    // Closing the file that was only tried for permission may fail, for all a save cares.
    EXPECT_TRUE(saved ? IsPlaced(took, IsPair()) : came);
    EXPECT_EQ(Opened(), IsPlaced(took, IsPair()) ? fresh : old) << took;
    EXPECT_EQ(Files().size(), old.size()) << "nothing is left beside them";
    const auto whichFile = testing::ElementsAre(testing::HasSubstr(directory.Path()));
    EXPECT_TRUE(saved || testing::Value(Told(saved), whichFile)) << testing::PrintToString(Told(saved));
  }
  EXPECT_GT(call, kFewestCalls);
}

TEST_P(SavesTest, TellEveryFailureAndLeaveTheOldFilesOrTheNewOnes) {
  FailEverywhere(How::Fail);
}

TEST_P(SavesTest, LeaveTheOldFilesOrTheNewOnesWhenTheShareIsGone) {
  FailEverywhere(How::Vanish);
}

TEST_P(SavesTest, LeaveTheOldFilesOrTheNewOnesWhereverTheProgramIsKilled) {
  int call = 1;
  for (; KilledAt(call); ++call) {
    SCOPED_TRACE(call);
    const Contents opened = Opened();
    EXPECT_TRUE(opened == old || opened == fresh) << testing::PrintToString(opened);
    for (const int number : {2, 1}) ASSERT_TRUE(Saving(number)());  // settings that are there already are not written
    EXPECT_EQ(Files(), old) << "what the killed one has left is removed";
  }
  EXPECT_GT(call, kFewestCalls);
}

TEST_P(SavesTest, AreOnTheDiskBeforeTheyTakeAPlaceAndWithTheirNameBeforeTheyAreDone) {
  const Save save = Saving(2);
  FailingSystem::Took();
  ASSERT_TRUE(save());
  EXPECT_EQ(FailingSystem::Took(),
            IsPair() ? "sync sync rename rename folder rename rename folder " : "sync rename folder ");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, SavesTest,
    testing::Values(
        SavedKind{"RunData", {"x.run"}, RunDataSaving}, SavedKind{"Record", {"x.cal", "x.hyinfo"}, RecordSaving},
        SavedKind{"InsertionLoss", {"x.los"}, LossSaving}, SavedKind{"Equipment", {"x.eqp"}, EquipmentSaving},
        SavedKind{"CalibrationSetup", {"x.csu"}, SetupSaving}, SavedKind{"TestDefinition", {"x.tst"}, TestSaving},
        SavedKind{"SignalGenerator",
                  {"x.sg"},
                  [](auto& s, const auto& path, int n) { return DefinitionSaving(s.sigGen, path, n); }},
        SavedKind{
            "Meter", {"x.mtr"}, [](auto& s, const auto& path, int n) { return DefinitionSaving(s.meter, path, n); }},
        SavedKind{
            "PowerMeter", {"x.pm"}, [](auto& s, const auto& path, int n) { return DefinitionSaving(s.pm, path, n); }},
        SavedKind{"FactorTable", {"x.fac"}, FactorsSaving}, SavedKind{"FrequencyList", {"x.lst"}, ListSaving},
        SavedKind{"Report", {"x.txt"}, ReportSaving}, SavedKind{"Settings", {"Hylden.ini"}, SettingSaving}),
    [](const auto& kind) { return std::string(kind.param.name); });

TEST(Settings, WaitForTheDiskOnceForAListAndNeverForWhatTheyHold) {
  const TempDir directory;
  INISettings settings{directory.Path()};
  RecentFiles recent(settings, "Equip");
  for (const char* const name : {"a", "b", "c"}) recent.Add(directory.Write(name, "x"));
  FailingSystem::Took();
  recent.Add(directory.File("a"));
  EXPECT_EQ(FailingSystem::Took(), "sync rename folder ");
  recent.Add(directory.File("a"));
  settings.Save("RecentFiles", "Equip1", directory.File("a"));
  EXPECT_EQ(FailingSystem::Took(), "");
}

}  // namespace
}  // namespace hylden
