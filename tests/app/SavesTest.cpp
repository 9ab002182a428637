// Every kind of file, saved over an older one while the system fails, or the program is killed, at each call in turn.

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
#include "documents/CalInfo.h"
#include "documents/EquipRecord.h"
#include "documents/SaveCal.h"
#include "shell/INISettings.h"
#include "support/TempDir.h"
#include "testrun/RunData.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

using How = FailingSystem::How;

struct SavedKind {
  const char* name;
  std::vector<std::string> files;
  /// Saves what belongs to a number, and returns whether it is told to be saved.
  std::function<bool(const std::string& folder, int number)> save;
};

bool SaveRun(const std::string& folder, int number) {
  RunData data;
  data.AddThreshold(number, -3);
  return FileRunData(data, folder + "/x.run", false).has_value();
}

bool SaveCalibration(const std::string& folder, int number) {
  const CalRows rows = {{1, double(number), 130}, {2, double(number), 130}};
  CalInfoRec info;
  info.SetupDescription = std::to_string(number);
  return SaveCal(folder + "/x.cal", rows, info).has_value();
}

bool SaveLoss(const std::string& folder, int number) {
  return FileInsertionLoss({{double(number), -20, 97, 96, 1}}, folder + "/x.los").has_value();
}

bool SaveEquipment(const std::string& folder, int number) {
  EquipRecord equipment;
  equipment.SigGenAddress = static_cast<std::int16_t>(number);
  return Trapped("Equip.SaveDef", {}, [&] { SaveRecord(folder + "/x.eqp", equipment); }).has_value();
}

bool SaveSetting(const std::string& folder, int number) {
  bool kept = true;
  INISettings settings{Directories(folder)};
  settings.onTrouble = [&](const std::string&) { return !(kept = false); };
  settings.Save("Gpib", "Board", std::to_string(number));
  return kept;
}

class SavesTest : public testing::TestWithParam<SavedKind> {
 protected:
  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(directory.Path())) {
      const std::string name = entry.path().filename().string();
      files[name] = directory.Read(name);
    }
    return files;
  }
  bool Save(int number) const { return GetParam().save(directory.Path(), number); }
  /// Saves in a process of its own, which is killed at a call. @return whether it came that far
  bool KilledAt(int call) const {
    const pid_t child = fork();
    if (child == 0) {
      FailingSystem::Arm(call, How::Kill);
      (void)Save(2);
      _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  }
  /// Every file is an old or a new one, whole.
  void ExpectWhole() const {
    const auto now = Files();
    for (const std::string& name : GetParam().files)
      EXPECT_TRUE(now.at(name) == old.at(name) || now.at(name) == fresh.at(name)) << name << ": " << now.at(name);
  }

  TempDir directory;
  std::map<std::string, std::string> old, fresh;

  void SetUp() override {
    ASSERT_TRUE(Save(2));
    fresh = Files();
    ASSERT_TRUE(Save(1));
    old = Files();
    ASSERT_EQ(old.size(), GetParam().files.size());
    ASSERT_NE(old, fresh);
  }
};

TEST_P(SavesTest, LeaveTheOldFileOrTheNewOneAtEveryFailureAndSayWhich) {
  constexpr int kFewest = 6;  // open, write, flush, sync, close, rename
  int call = 1;
  for (bool came = true; came; ++call) {
    SCOPED_TRACE(call);
    ASSERT_TRUE(Save(1));
    FailingSystem::Arm(call, How::Fail);
    const bool saved = Save(2);
    came = FailingSystem::Disarm();
    ExpectWhole();
    const auto now = Files();
    EXPECT_EQ(now.size(), old.size()) << "nothing is left beside them";
    EXPECT_TRUE(!saved || now == fresh);
    EXPECT_TRUE(saved || came);
  }
  EXPECT_GT(call, kFewest);
}

TEST_P(SavesTest, LeaveTheOldFileOrTheNewOneWhereverTheProgramIsKilled) {
  int call = 1;
  for (; KilledAt(call); ++call) {
    SCOPED_TRACE(call);
    ExpectWhole();
    ASSERT_TRUE(Save(1));
    EXPECT_EQ(Files(), old) << "what the killed one has left is removed";
  }
  EXPECT_GT(call, 6);
}

TEST_P(SavesTest, AreOnTheDiskBeforeTheyTakeAPlaceAndWithTheirNameBeforeTheyAreDone) {
  FailingSystem::Took();
  ASSERT_TRUE(Save(2));
  const bool two = GetParam().files.size() == 2;
  EXPECT_EQ(FailingSystem::Took(), two ? "sync sync rename sync rename sync " : "sync rename sync ");
}

INSTANTIATE_TEST_SUITE_P(Kinds, SavesTest,
                         testing::Values(SavedKind{"RunData", {"x.run"}, SaveRun},
                                         SavedKind{"Record", {"x.cal", "x.hyinfo"}, SaveCalibration},
                                         SavedKind{"InsertionLoss", {"x.los"}, SaveLoss},
                                         SavedKind{"Equipment", {"x.eqp"}, SaveEquipment},
                                         SavedKind{"Settings", {"Hylden.ini"}, SaveSetting}),
                         [](const auto& kind) { return std::string(kind.param.name); });

}  // namespace
}  // namespace hylden
