#include <gtest/gtest.h>

#include <cstdlib>

#include "shell/INISettings.h"
#include "shell/Profile.h"
#include "support/TempDir.h"

namespace hylden {
namespace {

TEST(Profile, AKeyIsReadAsWritten) {
  const std::pair<const char*, std::optional<std::string>> rows[] = {
      {"[Equip]\r\nDir=C:\\lab\r\n", "C:\\lab"},
      {"[EQUIP]\ndIR=/lab\n", "/lab"},
      {" [ Equip ] \n\t Dir \t=  /my lab \t\n", "/my lab"},
      {"[Equip]\nDir=\"/my lab\"\n", "/my lab"},
      {"[Equip]\nDir=''/lab''\n", "'/lab'"},
      {"[Equip]\nDir=\"/lab'\n", "\"/lab'"},
      {"[Equip]\n;Dir=/old\n", std::nullopt},
      {"[Cables]\nDir=/cables\n[Equipment]\nDir=/x\n", std::nullopt},
      {"[Equip]\nDir=\nFile=x\n", ""},
      {"[Equip]\nDir=/a=b;c\n", "/a=b;c"},
      {"[Equip]\rDir=/lab", "/lab"},
      {"\xEF\xBB\xBF[Equip]\nDir=/lab\n", "/lab"},
      {"[Equip]\nDir=C:\\Pr\xFC"
       "fung\n",
       "C:\\Prüfung"},
  };
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(profile::Value(text, "Equip", "Dir"), expected) << text;
    EXPECT_EQ(profile::Value(text, " Equip\t", " Dir "), expected) << text;
  }
  EXPECT_EQ(profile::Keys("[Equip]\nDir=x\n", " Equip "), std::vector<std::string>{"Dir"});
  EXPECT_EQ(profile::WithValue("[Equip]\nDir=x\n", " Equip ", " Dir ", "y"), "[Equip]\nDir=y\n");
}

TEST(Profile, AWriteChangesItsOwnLineOnly) {
  const std::pair<const char*, const char*> rows[] = {
      {"", "[Equip]\r\nDir=/ü\r\n"},
      {"; mine\n\n[equip]\ndir = \"x\" \nOdd line\n[B]\nk=v", "; mine\n\n[equip]\ndir = /ü\nOdd line\n[B]\nk=v"},
      {"[Equip]\r\nFile=a\r\n\r\n; B\r\n[B]\r\nDir=b\r\n",
       "[Equip]\r\nFile=a\r\nDir=/ü\r\n\r\n; B\r\n[B]\r\nDir=b\r\n"},
      {"[B]\nk=v", "[B]\nk=v\n[Equip]\nDir=/ü\n"},
      {"[Equip]\nFile=\xE4\nDir=x\n", "[Equip]\nFile=\xE4\nDir=/\xFC\n"},
      {"\xEF\xBB\xBF", "\xEF\xBB\xBF[Equip]\r\nDir=/ü\r\n"},
  };
  for (const auto& [before, after] : rows) EXPECT_EQ(profile::WithValue(before, "Equip", "Dir", "/ü"), after) << before;
}

TEST(Profile, AValueCannotSmuggleInALine) {
  const std::string text = profile::WithValue("", "Equip", "Dir", "a\r\n[System]\r\nLogToFile=1");
  EXPECT_EQ(profile::Value(text, "System", "LogToFile"), std::nullopt);
}

TEST(Profile, AValueThatTheOldCodePageLacksIsNotLost) {
  const std::string text = profile::WithValue("[Equip]\nFile=\xE4\n", "Equip", "Dir", "/Ωμ");
  EXPECT_EQ(profile::Value(text, "Equip", "Dir"), "/Ωμ");
  EXPECT_EQ(profile::Value(text, "Equip", "File"), "ä");
}

class SettingsTest : public testing::Test {
 protected:
  INISettings Settings() { return INISettings(directory_.Path()); }
  void Listen(INISettings& settings) {
    settings.onTrouble = [this](const std::string& text) {
      if (mayTell_) told_.push_back(text);
      return mayTell_;
    };
  }
  /// A user's, with the administrator's in this directory.
  Directories User(const std::string& common) const {
    Directories directories(directory_.File("user"));
    directories.Common = common;
    return directories;
  }
  TempDir directory_;
  bool mayTell_ = true;
  std::vector<std::string> told_;
};

/// Source and description of the SettingError with this number that the operation throws.
template <class Operation>
std::string SettingErrorOf(unsigned number, Operation operation) {
  try {
    operation();
  } catch (const SettingError& error) {
    EXPECT_EQ(error.Number(), static_cast<int>(number));
    return error.Source() + ": " + error.Description();
  }
  return "no error";
}

TEST_F(SettingsTest, AStationWithoutASettingsFileRunsOnItsDefaults) {
  INISettings settings(directory_.Path() + "/");
  EXPECT_EQ(settings.GetDataDir(datakind::kFactors), directory_.Path());
  EXPECT_EQ(settings.GetDefaultEquipFile(), "");
  EXPECT_EQ(settings.GetLogToFile(), 0);
  EXPECT_EQ(settings.GetFormPosition(windowkey::kManualForm), "");
  EXPECT_FALSE(directory_.Exists("Hylden.ini")) << "a getter writes nothing";
}

TEST_F(SettingsTest, EachSettingHasAPlaceOfItsOwn) {
  INISettings settings = Settings();
  settings.SaveDataDir(datakind::kInsertionLoss, "/loss");
  settings.SaveDataDir(datakind::kEquip, "/equip");
  settings.SaveDefaultEquipFile("/equip/a.eqp");
  settings.SaveFormPosition(windowkey::kRunButtons, "1200,900");
  settings.Store().SaveSettingInt("System", "LogToFile", -3);
  INISettings later = Settings();
  EXPECT_EQ(later.GetDataDir(datakind::kInsertionLoss), "/loss");
  EXPECT_EQ(later.GetDataDir(datakind::kEquip), "/equip");
  EXPECT_EQ(later.GetDefaultEquipFile(), "/equip/a.eqp");
  EXPECT_EQ(later.GetFormPosition(windowkey::kRunButtons), "1200,900");
  EXPECT_EQ(later.GetFormPosition(windowkey::kRunTestForm), "");
  EXPECT_EQ(later.GetLogToFile(), -3);
  EXPECT_EQ(later.Store().GetSectionNames(),
            (std::vector<std::string>{"Insertion_Loss", "Equip", "RunButtons", "System"}));
}

TEST_F(SettingsTest, LogSwitchIsTheLeadingWholeNumber) {
  const std::pair<const char*, std::int16_t> cases[] = {
      {"1", 1},   {"0", 0}, {"-1", -1},        {"2 on", 2}, {"on", 0},
      {"'1'", 1}, {"", 0},  {"100000", 32767}, {"1.9", 1},  {"9999999999999999999999", 32767}};
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(text);
    directory_.Write("Hylden.ini", std::string("[System]\r\nLogToFile=") + text + "\r\n");
    EXPECT_EQ(Settings().GetLogToFile(), expected);
  }
}

TEST_F(SettingsTest, AFileIsReadAgainOnlyWhenItHasChanged) {
  const auto anHourAgo = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
  INISettings settings = Settings();
  const auto read = [&](const char* value, std::chrono::seconds later) {
    const std::string path = directory_.Write("Hylden.ini", std::string("[System]\nLogToFile=") + value + "\n");
    std::filesystem::last_write_time(path, anHourAgo + later);
    return settings.GetLogToFile();
  };
  using std::chrono::seconds;
  EXPECT_EQ(read("1", seconds(0)), 1);
  EXPECT_EQ(read("2", seconds(0)), 1) << "to all appearance it is the same file";
  EXPECT_EQ(read("3", seconds(1)), 3);
  EXPECT_EQ(read("44", seconds(1)), 44);
  // What was written just now may be written once more within the same tick of its time.
  EXPECT_EQ(read("5", seconds(3600)), 5);
  EXPECT_EQ(read("6", seconds(3600)), 6);
  settings.SaveFormPosition(windowkey::kManualForm, "1,2");
  EXPECT_EQ(settings.GetFormPosition(windowkey::kManualForm), "1,2");
  std::filesystem::remove(directory_.File("Hylden.ini"));
  EXPECT_EQ(settings.GetLogToFile(), 0);
}

TEST_F(SettingsTest, AValueIsCutTo127CharactersWithoutSplittingOne) {
  std::string path = "/";
  for (int i = 0; i < 129; ++i) path += "ü";
  INISettings settings = Settings();
  settings.SaveDataDir(datakind::kEquip, path);
  EXPECT_EQ(settings.GetDataDir(datakind::kEquip), path.substr(0, 1 + 126 * 2));
  EXPECT_NE(directory_.Read("Hylden.ini").find(path), std::string::npos) << "the file keeps all of it";
}

TEST_F(SettingsTest, AListIsCutAt2047Characters) {
  std::string text = "[Big]\n";
  for (int i = 0; i < 30; ++i)
    text += std::string(99, static_cast<char>('a' + i % 26)) + std::to_string(i % 10) + "=v\n";
  directory_.Write("Hylden.ini", text);
  INISettings settings = Settings();
  const auto rows = settings.Store().GetSettingAll("big");
  // 20 names of 100 characters and their terminators take 2020, which leaves 27 for the next.
  ASSERT_EQ(rows.size(), 21u);
  EXPECT_EQ(rows[19].second, "v");
  EXPECT_EQ(rows[20].first, std::string(27, 'u'));
  EXPECT_EQ(rows[20].second, "") << "a cut name is no key";
  EXPECT_TRUE(settings.Store().GetSettingAll("none").empty());
}

TEST_F(SettingsTest, DeletingAKeyLeavesItsNeighbours) {
  directory_.Write("Hylden.ini", "[A]\nx=1\ny=2\n; note\n[B]\ny=3\n");
  INISettings settings = Settings();
  settings.Store().DeleteKey("a", "Y");
  settings.Store().DeleteKey("A", "z");
  EXPECT_EQ(directory_.Read("Hylden.ini"), "[A]\nx=1\n; note\n[B]\ny=3\n");
}

TEST_F(SettingsTest, AFileThatCannotBeReadIsReportedAndLeftAlone) {
  directory_.Write("Hylden.ini/inside", "x");  // a directory of that name
  INISettings settings = Settings();
  clsSetting& store = settings.Store();
  const std::string why = " (75, Path/File access error)";
  EXPECT_EQ(SettingErrorOf(0x80040203u, [&] { store.GetSettingStr("Equip", "File", ""); }),
            "CSetting.GetSettingStr: Error reading Setting" + why);
  EXPECT_EQ(SettingErrorOf(0x80040204u, [&] { store.GetSettingAll("Equip"); }),
            "CSetting.GetSettingAll: Error reading Section" + why);
  EXPECT_EQ(SettingErrorOf(0x80040202u, [&] { store.SaveSettingInt("A", "k", 1); }), "no error");
  EXPECT_EQ(SettingErrorOf(0x80040205u, [&] { store.DeleteKey("Equip", "File"); }),
            "CSetting.DeleteKey: Error Deleting Key" + why);
  EXPECT_NO_THROW(settings.SaveDefaultEquipFile("/a.eqp"));
  EXPECT_TRUE(directory_.Exists("Hylden.ini/inside"));
}

TEST_F(SettingsTest, TheProgramGoesOnWithoutItsSettingsAndTellsOnce) {
  for (const bool failingDisk : {false, true}) {
    SCOPED_TRACE(failingDisk);
    std::filesystem::remove_all(directory_.File("Hylden.ini"));
    if (failingDisk)
      std::filesystem::create_symlink("/proc/self/mem", directory_.File("Hylden.ini"));  // opens, and can't be read
    else
      directory_.Write("Hylden.ini/inside", "x");
    INISettings settings = Settings();
    Listen(settings);
    told_.clear();
    mayTell_ = false;
    EXPECT_EQ(settings.GetDefaultEquipFile(), "");
    EXPECT_EQ(settings.GetLogToFile(), 0);
    EXPECT_TRUE(told_.empty()) << "not the moment for it";
    mayTell_ = true;
    EXPECT_EQ(settings.GetDataDir(datakind::kEquip), directory_.Path());
    EXPECT_EQ(settings.GetFormPosition(windowkey::kManualForm), "");
    ASSERT_EQ(told_.size(), 1U);
    EXPECT_TRUE(told_[0].starts_with("The settings can't be read; the program goes on with its defaults.\r\n" +
                                     directory_.File("Hylden.ini")));
    settings.SaveFormPosition(windowkey::kManualForm, "1,2");
    settings.SaveDefaultEquipFile("/a.eqp");
    ASSERT_EQ(told_.size(), 2U);
    EXPECT_EQ(told_[1], "A setting could not be kept: this file can't be written.\r\n" + directory_.File("Hylden.ini"));
  }
}

TEST_F(SettingsTest, UntilTheyAreSetDataDirectoriesAreWhereTheUserFindsThem) {
  Directories directories(directory_.File("hidden"));
  directories.Data = directory_.File("Documents/Hylden/");
  INISettings settings(directories);
  EXPECT_EQ(settings.GetDataDir(datakind::kCables), directory_.File("Documents/Hylden"));
  std::filesystem::create_directories(directories.Program);
  settings.SaveDataDir(datakind::kCables, "/cables");
  EXPECT_EQ(settings.GetDataDir(datakind::kCables), "/cables");
  EXPECT_TRUE(directory_.Exists("hidden/Hylden.ini"));

  const std::string deep = "/" + std::string(200, 'd');
  EXPECT_EQ(INISettings(deep).GetDataDir(datakind::kCables), deep) << "only what is read from a file is cut";
}

TEST_F(SettingsTest, TheAdministratorsSettingsServeAUserUntilTheFirstWrite) {
  const std::string common = "[Equip]\r\nFile=/lab/a.eqp\r\n[System]\r\nLogToFile=1\r\n";
  directory_.Write("bin/hylden.ini", common);
  const Directories directories = User(directory_.File("bin"));
  INISettings settings(directories);
  EXPECT_EQ(settings.GetDefaultEquipFile(), "/lab/a.eqp");
  std::filesystem::create_directories(directories.Program);
  settings.SaveDefaultEquipFile("/lab/b.eqp");
  EXPECT_EQ(settings.GetDefaultEquipFile(), "/lab/b.eqp");
  EXPECT_EQ(settings.GetLogToFile(), 1) << "the first write takes all of them over";
  EXPECT_EQ(directory_.Read("bin/hylden.ini"), common);
}

TEST_F(SettingsTest, TheAdministratorsSettingsThatCannotBeReadAreNamedAndBlockNoWrite) {
  directory_.Write("bin/Hylden.ini/inside", "x");  // a directory of that name
  const Directories directories = User(directory_.File("bin"));
  std::filesystem::create_directories(directories.Program);
  INISettings settings(directories);
  Listen(settings);
  EXPECT_EQ(settings.GetDefaultEquipFile(), "");
  ASSERT_EQ(told_.size(), 1U);
  EXPECT_TRUE(told_[0].starts_with("The settings can't be read; the program goes on with its defaults.\r\n" +
                                   directory_.File("bin/Hylden.ini") + "\r\n"))
      << told_[0];
  settings.SaveDefaultEquipFile("/lab/b.eqp");
  EXPECT_EQ(settings.GetDefaultEquipFile(), "/lab/b.eqp");
  EXPECT_EQ(told_.size(), 1U);
}

TEST_F(SettingsTest, AnEquipmentFileBesideTheSettingsIsFound) {
  const std::string file = directory_.Write("lab.eqp", "");
  directory_.Write("Hylden.ini", "[Equip]\nFile=lab.eqp\n");
  EXPECT_EQ(Settings().GetDefaultEquipFile(), file);
  EXPECT_EQ(INISettings(User(directory_.Path())).GetDefaultEquipFile(), file);
}

TEST_F(SettingsTest, AProtectedFileIsKeptAndOnlyDeletingComplains) {
  const std::string path = directory_.Write("Hylden.ini", "[Equip]\nFile=a\n");
  std::filesystem::permissions(path, std::filesystem::perms::owner_read);
  INISettings settings = Settings();
  EXPECT_NO_THROW(settings.SaveDefaultEquipFile("b"));
  EXPECT_EQ(settings.GetDefaultEquipFile(), "a");
  EXPECT_EQ(SettingErrorOf(0x80040205u, [&] { settings.Store().DeleteKey("Equip", "File"); }),
            "CSetting.DeleteKey: Error Deleting Key (check if file is protected)");
}

TEST_F(SettingsTest, TheDemosDialogsOpenInItsStation) {
  const std::string station = HYLDEN_SOURCE_DIR "/examples/station";
  const std::string command = "bash '" HYLDEN_SOURCE_DIR "/scripts/demo-settings.sh' '" + station + "' > '" +
                              directory_.File("Hylden.ini") + "'";
  ASSERT_EQ(std::system(command.c_str()), 0);
  INISettings settings = Settings();
  for (const std::string_view kind :
       {datakind::kEquip, datakind::kCalibrations, datakind::kTestSetups, datakind::kTestResults, datakind::kCables,
        datakind::kFactors, datakind::kProbes, datakind::kFreqList, datakind::kInsertionLoss})
    EXPECT_EQ(settings.GetDataDir(kind), station) << kind;
  EXPECT_EQ(settings.Store().GetSettingStr("Gpib", "Driver", ""), "bench");
}

TEST(clsSettingNames, TheProgramsOwnNameServesUntilInitNamesAnother) {
  TempDir directory;
  clsSetting store(directory.Path(), "hylden.exe");
  store.SaveSettingStr("A", "k", "v");
  EXPECT_TRUE(directory.Exists("hylden.ini"));
  EXPECT_EQ(store.SaveMode, 0);
  store.Init("  Other ", 1);
  store.SaveSettingStr("A", "k", "v");
  EXPECT_TRUE(directory.Exists("Other.ini"));
  store.Init();
  EXPECT_EQ(store.SaveMode, 1) << "999 keeps the mode";
}

}  // namespace
}  // namespace hylden
