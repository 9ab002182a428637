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

TEST_F(ProgramDirectoryTest, AProgramThatMayWriteBesideItselfKeepsEverythingThere) {
  const Directories directories = ProgramDirectories(home.Path());
  EXPECT_EQ(directories.Program, home.Path());
  EXPECT_EQ(directories.Data, "");
  EXPECT_EQ(directories.Common, "");
}

TEST_F(ProgramDirectoryTest, AnInstalledProgramKeepsSettingsWithTheUserAndFilesAmongTheDocuments) {
  home.Write("Documents/note", "");
  const Directories directories = ProgramDirectories(readOnly);
  EXPECT_EQ(directories.Program, home.File(".config/hylden"));
  EXPECT_EQ(directories.Data, home.File("Documents/Hylden"));
  EXPECT_EQ(directories.Common, readOnly);
  EXPECT_TRUE(home.Exists("Documents/Hylden"));
}

TEST_F(ProgramDirectoryTest, DocumentsHaveTheNameOfTheUsersLanguage) {
  home.Write("Dokumente/note", "");
  home.Write(".config/user-dirs.dirs", "# mine\nXDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n");
  EXPECT_EQ(ProgramDirectories(readOnly).Data, home.File("Dokumente/Hylden"));
}

TEST_F(ProgramDirectoryTest, WithoutDocumentsTheFilesAreInTheHomeDirectory) {
  EXPECT_EQ(ProgramDirectories(readOnly).Data, home.File("Hylden"));
}

TEST_F(ProgramDirectoryTest, AChosenDirectoryHoldsEverything) {
  const Variable chosen("HYLDEN_HOME", home.File("lab/"));
  const Directories directories = ProgramDirectories(readOnly);
  EXPECT_EQ(directories.Program, home.File("lab"));
  EXPECT_EQ(directories.Data, "");
  EXPECT_EQ(directories.Common, "");
}

}  // namespace
}  // namespace hylden
