#include "platform/native/JournalFolder.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "support/TempDir.h"

namespace hylden {
namespace {

class JournalFolderTest : public testing::Test {
 protected:
  /// The names of what can be taken now.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const AbandonedJournal& journal : JournalFolder(folder).Abandoned()) names.push_back(journal.Name);
    return names;
  }

  TempDir directory;
  const std::string folder = directory.File("home/journals");
  std::filesystem::path home = std::filesystem::path(directory.Write("home/x", "")).parent_path();
};

TEST_F(JournalFolderTest, LeavesBehindWhatWasAppendedAndNotRemoved) {
  std::string kept;
  {
    JournalFolder journals(folder);
    const auto first = journals.Begin("radio"), second = journals.Begin("radio"), gone = journals.Begin("gone");
    for (const char* row : {"1\r\n", "2\r\n"}) first->Append(row);
    second->Append("of the second\r\n");
    gone->Append("x\r\n");
    gone->Remove();
    ASSERT_EQ(journals.Kept().size(), 2U);
    kept = journals.Kept().front();
    EXPECT_EQ(Names(), std::vector<std::string>()) << "one in use is nobody else's";
    EXPECT_EQ(journals.Trouble(), std::nullopt);
  }
  const auto taken = JournalFolder(folder).Abandoned();
  ASSERT_EQ(taken.size(), 2U);
  EXPECT_EQ(taken.front().Name, kept);
  EXPECT_EQ(taken.front().Bytes, "1\r\n2\r\n");
  EXPECT_EQ(Names(), std::vector<std::string>()) << "of two that look for it one gets it";
}

TEST_F(JournalFolderTest, PassesOverWhatIsNoJournalOfThisUser) {
  const auto in = [&](const char* name) { return directory.File(std::string("home/journals/") + name); };
  directory.Write("home/journals/good.journal", "x");
  directory.Write("home/journals/other.txt", "x");
  std::filesystem::create_directory(in("folder.journal"));
  std::filesystem::create_symlink(in("other.txt"), in("link.journal"));
  ASSERT_EQ(mkfifo(in("pipe.journal").c_str(), S_IRUSR | S_IWUSR), 0);
  std::filesystem::permissions(directory.Write("home/journals/foreign.journal", "x"), std::filesystem::perms::none);
  std::vector<std::string> expected = {"good"};
  if (geteuid() == 0) expected = {"foreign", "good"};  // to whom nothing is foreign
  EXPECT_EQ(Names(), expected);
}

TEST_F(JournalFolderTest, SaysWhyItCanNotBeWrittenAndHoldsNobodyUp) {
  directory.Write("home/journals", "a file in the folder's place");
  // Not that nothing is behind it, which is what a file in it would fail with.
  std::filesystem::create_symlink("nowhere", home / "link");
  for (const std::string& place : {folder, (home / "link").string()}) {
    JournalFolder journals(place);
    const auto journal = journals.Begin("radio");
    journal->Append("1\r\n");
    EXPECT_EQ(journals.Kept(), std::vector<std::string>());
    EXPECT_TRUE(journals.Trouble());
    EXPECT_NE(journals.Trouble(), std::make_error_code(std::errc::no_such_file_or_directory).message());
    journal->Remove();
  }
}

TEST_F(JournalFolderTest, HasAllRowsAgainWhenADiskThatWasFullHasRoom) {
  struct rlimit before {};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto handler = signal(SIGXFSZ, SIG_IGN);
  JournalFolder journals(folder);
  const auto journal = journals.Begin("radio");
  const auto append = [&](const char* row, rlim_t room) {
    const struct rlimit limit { room, before.rlim_max };
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    journal->Append(row);
    journals.Settle();
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
  };
  append("first\r\n", 100);
  append("second\r\n", 10);
  EXPECT_TRUE(journals.Trouble());
  const std::string file = folder + "/" + journals.Kept().at(0) + ".journal";
  EXPECT_EQ(std::filesystem::file_size(file), 7U) << "no half line";
  append("third\r\n", 100);
  EXPECT_EQ(directory.Read("home/journals/" + journals.Kept().at(0) + ".journal"), "first\r\nsecond\r\nthird\r\n");
  (void)signal(SIGXFSZ, handler);
}

}  // namespace
}  // namespace hylden
