#include "support/ReadLines.h"
#include "text/DiskSync.h"
#include "text/Encoding.h"
#include "text/ExistingPath.h"
#include "text/TextFile.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "support/ErrorOf.h"
#include "support/TempDir.h"

namespace hylden {
namespace {

namespace fs = std::filesystem;

class TextFileTest : public testing::Test {
 protected:
  std::string At(const std::string& name) const { return folder_.File(name); }

  /// Names in the folder besides the given one: a leftover shows here.
  int OtherFiles(const std::string& name) const {
    int count = 0;
    for (const auto& entry : fs::directory_iterator(folder_.Path())) count += entry.path().filename() != name;
    return count;
  }

  TempDir folder_;
};

TEST_F(TextFileTest, EveryLineEndCountsTheLastMayBeMissingAndTheEndOfFileOfDosIsNoLine) {
  using Lines = std::vector<std::string>;
  const std::pair<const char*, Lines> cases[] = {{"", {}},
                                                 {"a\r\nb\r\n", {"a", "b"}},
                                                 {"a\nb", {"a", "b"}},
                                                 {"a\rb\r", {"a", "b"}},
                                                 {"a\r\n\r\nb", {"a", "", "b"}},
                                                 {"\n\r", {"", ""}},
                                                 {"\xEF\xBB\xBF"
                                                  "a\n",
                                                  {"a"}},
                                                 {"\xEF\xBB\xBF", {}},
                                                 {"a\r\n\032c\r\n\032\032", {"a", "\032c"}}};
  for (const auto& [bytes, lines] : cases) EXPECT_EQ(ReadLines(folder_.Write("lines.txt", bytes)), lines) << bytes;
}

TEST_F(TextFileTest, AFileThatCannotBeReadTellsWhy) {
  fs::resize_file(folder_.Write("huge.txt", ""), (256ULL << 20) + 1);
  ASSERT_EQ(mkfifo(At("pipe.tst").c_str(), 0600), 0);
  const std::pair<std::string, int> rows[] = {
      {At("none.txt"), 53},
      {At("nowhere/none.txt"), 76},
      {folder_.Path(), 75},
      {"", 75},
      {std::string("a\0b", 3), 52},
      {At(std::string(300, 'x')), 52},
      {At("huge.txt"), 75},
      {At("pipe.tst"), 75},   // it would be waited for
      {"/dev/null", 75},      // and so would a terminal
      {"/proc/self/mem", 57}  // opens, and can't be read
  };
  for (const auto& [path, error] : rows) EXPECT_EQ(ErrorOf([&, p = path] { ReadTextFile(p); }), error) << path;
}

TEST(DecodeText, BytesThatAreNoUtf8AreReadAsWindows1252) {
  EXPECT_EQ(DecodeText("\xC2\xB5V \xE2\x82\xAC \xF0\x9F\x93\xA1"), "\xC2\xB5V \xE2\x82\xAC \xF0\x9F\x93\xA1");
  EXPECT_EQ(DecodeText("\xB5V \x80 \x81"), "\xC2\xB5V \xE2\x82\xAC \xC2\x81");
  EXPECT_EQ(DecodeText("\xC0\xAF"), "\xC3\x80\xC2\xAF");                  // too long a form of a slash
  EXPECT_EQ(DecodeText("\xED\xA0\x80"), "\xC3\xAD\xC2\xA0\xE2\x82\xAC");  // half a surrogate pair
  EXPECT_EQ(DecodeText("\xE2\x82"), "\xC3\xA2\xE2\x80\x9A");              // cut off
}

TEST(DecodeText, ABadByteIsFoundWhereverItStands) {
  for (std::size_t at = 0; at < 20; ++at) {
    std::string bytes(20, 'a'), expected = bytes;
    bytes[at] = '\xB5';
    expected.replace(at, 1, "\xC2\xB5");
    EXPECT_EQ(DecodeText(bytes), expected) << at;
    EXPECT_EQ(DecodeText(expected), expected) << at;
  }
}

TEST(DecodeText, EveryByteFindsItsWayBack) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  EXPECT_EQ(EncodeWindows1252(DecodeText(bytes)), bytes);
  EXPECT_EQ(EncodeWindows1252("\xCE\xA9 5"), "? 5");
}

TEST_F(TextFileTest, AReplacedFileKeepsItsPermissionsAndLeavesNothingBeside) {
  folder_.Write("a.tst", "old");
  fs::permissions(At("a.tst"), fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
  ReplaceFile(At("a.tst"), "new\r\n");
  EXPECT_EQ(folder_.Read("a.tst"), "new\r\n");
  EXPECT_EQ(fs::status(At("a.tst")).permissions(),
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
  EXPECT_EQ(OtherFiles("a.tst"), 0);
}

TEST_F(TextFileTest, WhatAKilledSaveHasLeftGoesWithTheNextOne) {
  const pid_t killed = fork();
  if (killed == 0) {
    FileReplacement unfinished(At("a.tst"), "half a fi");
    raise(SIGKILL);
  }
  waitpid(killed, nullptr, 0);
  ASSERT_EQ(OtherFiles("a.tst"), 1);
  folder_.Write(".hylden-0.tmp", "of nobody known");
  FileReplacement atWork(At("b.tst"), "of a living process");
  ReplaceFile(At("a.tst"), "new");
  EXPECT_EQ(OtherFiles("a.tst"), 2);
  EXPECT_EQ(folder_.Read(".hylden-0.tmp"), "of nobody known");
  atWork.Place();
  EXPECT_EQ(folder_.Read("b.tst"), "of a living process");
}

/// No file may grow beyond this while it lives: stands for a disk that is nearly full.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  void (*handler_)(int);
};

TEST_F(TextFileTest, WhatWouldKeepAFileFromBeingSavedIsToldBeforehand) {
  folder_.Write("old.run", "old");
  folder_.Write("folder/inside", "");
  mkfifo(At("pipe").c_str(), 0600);
  const FileSizeLimit limit(5000);
  const std::tuple<std::string, std::size_t, std::optional<std::string>> rows[] = {
      {"new.run", 4000, std::nullopt},
      {"old.run", 4000, std::nullopt},
      {"new.run", 6000, "Disk full"},
      {"folder", 1, "It is no ordinary file"},
      {"pipe", 1, "It is no ordinary file"},
      {"no/new.run", 1, "Path not found"},
      {std::string(300, 'x'), 1, "Bad file name or number"},
  };
  for (const auto& [name, size, expected] : rows) EXPECT_EQ(SaveObstacle(At(name), size), expected) << name;
  EXPECT_EQ(folder_.Read("old.run"), "old");
  EXPECT_EQ(OtherFiles("old.run"), 2);
}

TEST_F(TextFileTest, AFileThatCannotBeReplacedTellsWhyAndStaysWhole) {
  folder_.Write("taken/inside.txt", "old");
  folder_.Write("taken/locked.txt", "old");
  fs::permissions(At("taken/locked.txt"), fs::perms::owner_read);
  fs::create_symlink("round.tst", At("taken/round.tst"));
  ASSERT_EQ(mkfifo(At("taken/pipe.tst").c_str(), 0600), 0);
  const std::pair<std::string, int> rows[] = {
      {At("taken"), 75},
      {At("nowhere/a.tst"), 76},
      {At("taken/inside.txt/a.tst"), 76},
      {"", 75},
      {At(std::string(300, 'x')), 52},
      {At("taken/locked.txt"), 70},
      {At("taken/pipe.tst"), 75},
      {At("taken/round.tst"), 75},
      {"/dev/full", 61},
  };
  for (const auto& [path, error] : rows) EXPECT_EQ(ErrorOf([&, p = path] { ReplaceFile(p, "new"); }), error) << path;
  EXPECT_EQ(folder_.Read("taken/inside.txt") + folder_.Read("taken/locked.txt"), "oldold");
  EXPECT_EQ(OtherFiles("taken"), 0);
  EXPECT_EQ(std::distance(fs::directory_iterator(At("taken")), fs::directory_iterator()), 4)
      << "nothing is left beside";
}

TEST(Disk, AFullDiskALostShareAndAWriteProtectedOneAreToldAsSuch) {
  const std::pair<int, int> rows[] = {{ENOSPC, 61}, {EDQUOT, 61}, {EIO, 57}, {ESTALE, 57}, {EROFS, 70}, {EACCES, 75}};
  for (const auto& [code, error] : rows) EXPECT_EQ(ErrorOf([c = code] { FailWith(c); }), error) << code;
}

TEST(Disk, AFolderThatItsFileSystemCannotSyncIsNoFailure) {
  EXPECT_EQ(SyncFolder("/proc"), 0);
  EXPECT_EQ(SyncFolder("/nowhere"), ENOENT);
}

TEST_F(TextFileTest, AnUnwritableFolderIsRefusedAndTheFileStaysWhole) {
  folder_.Write("a.tst", "old");
  fs::permissions(folder_.Path(), fs::perms::owner_read | fs::perms::owner_exec);
  if (std::ofstream(At("probe"))) {
    fs::permissions(folder_.Path(), fs::perms::owner_all);
    GTEST_SKIP() << "this user may write everywhere";
  }
  EXPECT_EQ(ErrorOf([&] { ReplaceFile(At("a.tst"), "new"); }), 75);
  EXPECT_EQ(folder_.Read("a.tst"), "old");
  EXPECT_EQ(OtherFiles("a.tst"), 0);
}

TEST_F(TextFileTest, ASymbolicLinkStaysALinkToTheReplacedFile) {
  folder_.Write("real/a.tst", "old");
  fs::create_symlink("real/a.tst", At("link.tst"));
  fs::create_symlink("link.tst", At("chain.tst"));
  ReplaceFile(At("chain.tst"), "new");
  EXPECT_TRUE(fs::is_symlink(At("link.tst")));
  EXPECT_TRUE(fs::is_symlink(At("chain.tst")));
  EXPECT_EQ(folder_.Read("real/a.tst"), "new");
  fs::create_symlink("later.tst", At("early.tst"));
  ReplaceFile(At("early.tst"), "new");
  EXPECT_TRUE(fs::is_symlink(At("early.tst")));
  EXPECT_EQ(folder_.Read("later.tst"), "new");
}

TEST_F(TextFileTest, FilesAreFoundWithoutRegardToCaseAndWithEitherSeparator) {
  folder_.Write("Cal/Sub/Ten V.CAL", "x");
  folder_.Write("cal/other.txt", "y");
  folder_.Write("M\xC3\x84RZ.txt", "z");
  folder_.Write("A.txt", "upper");
  folder_.Write("a.txt", "lower");
  EXPECT_EQ(ReadTextFile(At("a.txt")), "lower");
  EXPECT_EQ(ReadTextFile(At("A.TXT")), "upper");
  EXPECT_EQ(ReadTextFile(At("cal/sub/ten v.cal")), "x");  // not in the folder of that very name
  EXPECT_EQ(ReadTextFile(At("CAL\\SUB\\TEN V.cal")), "x");
  EXPECT_EQ(ReadTextFile(At("m\xC3\xA4rz.TXT")), "z");
  EXPECT_EQ(ExistingPath(At("cal/other.txt")), At("cal/other.txt"));
  EXPECT_EQ(ExistingPath(At("cal\\none.txt")), At("cal\\none.txt"));
}

TEST_F(TextFileTest, SavingKeepsTheNameAsGivenButFindsTheFolder) {
  folder_.Write("Tests/a.tst", "other");
  ReplaceFile(At("tests\\A.tst"), "new");
  EXPECT_EQ(folder_.Read("Tests/A.tst"), "new");
  EXPECT_EQ(folder_.Read("Tests/a.tst"), "other");
}

}  // namespace
}  // namespace hylden
