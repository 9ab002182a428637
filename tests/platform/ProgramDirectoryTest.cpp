#include "platform/native/ProgramDirectory.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <optional>

#include "support/TempDir.h"

namespace hylden {
namespace {

/// An environment variable, until the end of a test.
class Variable {
 public:
  Variable(const char* name, const std::string& value) : name_(name) {
    if (const char* before = getenv(name)) before_ = before;
    value.empty() ? unsetenv(name) : setenv(name, value.c_str(), 1);
  }
  ~Variable() { before_ ? setenv(name_, before_->c_str(), 1) : unsetenv(name_); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  const char* name_;
  std::optional<std::string> before_;
};

class ProgramDirectoryTest : public testing::Test {
 protected:
  TempDir home;
  Variable noHyldenHome{"HYLDEN_HOME", ""}, homeVariable{"HOME", home.Path()}, noConfig{"XDG_CONFIG_HOME", ""};
  const std::string readOnly = "/proc/self";  // no user can write there
};

TEST_F(ProgramDirectoryTest, AProgramThatMayWriteThereOrAChosenDirectoryHoldsEverything) {
  const auto expect = [](const Directories& directories, const std::string& path) {
    EXPECT_EQ(directories.Program, path);
    EXPECT_EQ(directories.Data + directories.Common, "");
  };
  expect(ProgramDirectories(home.Path()), home.Path());
  const Variable chosen("HYLDEN_HOME", home.File("lab/"));
  expect(ProgramDirectories(readOnly), home.File("lab"));
}

TEST_F(ProgramDirectoryTest, AnInstalledProgramKeepsSettingsWithTheUserAndFilesAmongTheDocuments) {
  EXPECT_EQ(ProgramDirectories(readOnly).Data, home.File("Hylden")) << "without documents";
  home.Write("Documents/note", "");
  const Directories directories = ProgramDirectories(readOnly);
  EXPECT_EQ(directories.Program, home.File(".config/hylden"));
  EXPECT_EQ(directories.Data, home.File("Documents/Hylden"));
  EXPECT_EQ(directories.Common, readOnly);
  EXPECT_TRUE(home.Exists("Documents/Hylden"));
  home.Write("Dokumente/note", "");
  home.Write(".config/user-dirs.dirs", "# mine\nXDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n");
  EXPECT_EQ(ProgramDirectories(readOnly).Data, home.File("Dokumente/Hylden")) << "in the user's language";
}

TEST_F(ProgramDirectoryTest, AnInstalledProgramNeverWritesBesideItselfAndFindsWhatCameWithIt) {
  home.Write("usr/bin/hylden", "");
  EXPECT_EQ(ProgramDirectories(home.File("usr/bin")).Shared, home.File("usr/bin")) << "not installed";
  home.Write("usr/share/hylden/hylden.hlp", "");
  const Directories directories = ProgramDirectories(home.File("usr/bin"));
  EXPECT_EQ(directories.Program, home.File(".config/hylden"));
  EXPECT_EQ(directories.Shared, home.File("usr/share/hylden"));
  EXPECT_EQ(directories.Common, "/etc/hylden");
  home.Write("usr/bin/Hylden.ini", "");
  EXPECT_EQ(ProgramDirectories(home.File("usr/bin")).Common, home.File("usr/bin"));
}

}  // namespace
}  // namespace hylden
