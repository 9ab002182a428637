#include "shell/RecentFiles.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "shell/INISettings.h"
#include "support/TempDir.h"

namespace hylden {
namespace {

class RecentFilesTest : public testing::Test {
 protected:
  TempDir directory;
  INISettings settings{directory.Path()};
  RecentFiles recent{settings, "Equip"};
  std::string Make(int number) { return directory.Write("s" + std::to_string(number) + ".eqp", "x"); }
  using Files = std::vector<std::string>;
};

TEST_F(RecentFilesTest, LastUsedStandsFirstOnce) {
  const std::string a = Make(1), b = Make(2);
  recent.Add(a);
  recent.Add(b);
  recent.Add(a);
  EXPECT_EQ(recent.List(), (Files{a, b}));
  EXPECT_EQ(RecentFiles(settings, "Test").List(), Files{});
}

TEST_F(RecentFilesTest, ListIsBoundedAndForgetsVanishedFiles) {
  for (int i = 0; i < 10; ++i) recent.Add(Make(i));
  ASSERT_EQ(recent.List().size(), 8u);
  std::filesystem::remove(directory.File("s9.eqp"));
  EXPECT_EQ(recent.List().front(), directory.File("s8.eqp"));
  recent.Add(Make(11));
  EXPECT_EQ(recent.List().size(), 8u);
}

TEST_F(RecentFilesTest, PathTooLongForTheSettingsIsNotKept) {
  EXPECT_FALSE(recent.Add(directory.Write(std::string(120, 'd').append("/long.eqp"), "x")));
  EXPECT_EQ(recent.List(), Files{});
}

TEST_F(RecentFilesTest, ALongNameOfAccentedLettersIsKept) {
  std::string name;
  for (std::size_t i = directory.Path().size(); i < 100; ++i) name += "\xC3\xBC";
  const std::string path = directory.Write(name + ".eqp", "x");
  ASSERT_GT(path.size(), 127U);
  EXPECT_TRUE(recent.Add(path));
  EXPECT_EQ(recent.List(), Files{path});
}

}  // namespace
}  // namespace hylden
