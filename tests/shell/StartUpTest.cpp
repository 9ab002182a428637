#include "shell/StartUp.h"

#include <gtest/gtest.h>

#include "support/TestShell.h"

namespace hylden {
namespace {

const std::string kEquipLog = "equip file loaded from command line", kTestLog = "test file loaded from command line";

struct LineCase {
  const char* text;
  const char* equipFile;
  const char* testFile;
  std::vector<std::string> log;
  bool ok = true;
};

TEST(CommandLine, PiecesMeanWhatTheOperatorTyped) {
  const LineCase cases[] = {
      {"", "", "", {}},
      {R"("/e:My station.eqp" "/t:x.tst")", "My station.eqp", "x.tst", {kEquipLog, kTestLog}},
      {R"("/t: x.tst ")", "", " x.tst ", {kTestLog}},
      {"/e:a.eqp", "a.eqp", "", {kEquipLog}},
      {"/e:", "", "", {kEquipLog}},
      {"/e:a.eqp /t:x.tst", "a.eqp /t:x.tst", "", {kEquipLog}},
      {R"("/e:a" "/e:b")", "b", "", {kEquipLog, kEquipLog}},
      {R"("-x" "abc")", "", "", {}},
      {R"("/E:a.eqp")", "", "", {}, false},
      {R"("/e:a" "/x:abc" "/t:b")", "a", "", {kEquipLog}, false},
  };
  for (const LineCase& c : cases) {
    SCOPED_TRACE(c.text);
    const CommandLine line = ParseCommandLine(c.text);
    EXPECT_EQ(line.EquipFile, c.equipFile);
    EXPECT_EQ(line.TestFile, c.testFile);
    EXPECT_EQ(line.LogLines, c.log);
    EXPECT_EQ(line.Ok, c.ok);
  }
}

TEST(JoinArguments, GivesBackTheQuotesThatTheShellRemoved) {
  const std::string quoted = R"("/e:My station.eqp" "/t:x.tst")";
  EXPECT_EQ(JoinArguments({"/e:My station.eqp", "/t:x.tst"}), quoted);
  EXPECT_EQ(JoinArguments({quoted}), quoted);
  EXPECT_EQ(JoinArguments({}), "");
}

/// Remembers the order of start-up's steps; what is listed in `failing` does not load.
class Steps : public StartUpSteps {
 public:
  std::vector<std::string> done;
  bool running = false;
  std::string failing;

  bool AnotherInstanceRuns() override { return running; }
  void SetTitle(const std::string& title) override { done.push_back(title); }
  void SetHelpFile(const std::string& path) override { helpFile = path; }
  bool LoadEquipment(const std::string& path) override { return Load("equipment", path); }
  void ApplyEquipment() override { done.push_back("apply"); }
  bool LoadTest(const std::string& path) override { return Load("test", path); }
  std::string CalInfoFile() override { return "ring.hyinfo"; }
  bool LoadCalInfo(const std::string& path) override { return Load("calinfo", path); }
  void OpenTestDefinition() override { done.push_back("open"); }

  std::string helpFile;

 private:
  bool Load(const std::string& what, const std::string& path) {
    done.push_back(what + " " + path);
    return failing != what;
  }
};

class StartUpTest : public testing::Test {
 protected:
  TestShell t;
  WorkingDirectory here{t.directory.Path()};
  Steps steps;
  using Done = std::vector<std::string>;
};

TEST_F(StartUpTest, GoesFromStationToTest) {
  EXPECT_TRUE(StartUp(t.shell, steps, R"("/e:a.eqp" "/t:x.tst")"));
  EXPECT_EQ(steps.done, (Done{"Hylden 1.1", "equipment a.eqp", "apply", "test x.tst", "calinfo ring.hyinfo", "open"}));
  EXPECT_EQ(steps.helpFile, t.directory.File("hylden.hlp"));
  EXPECT_TRUE(t.dialogs.messages.empty());
}

TEST_F(StartUpTest, SecondInstanceOnlyTells) {
  steps.running = true;
  EXPECT_FALSE(StartUp(t.shell, steps, R"("/e:a.eqp")"));
  EXPECT_EQ(steps.done, Done{"Hylden 1.1"});
  EXPECT_EQ(t.dialogs.Texts(), Done{"This application is already running on this computer"});
}

TEST_F(StartUpTest, DefaultStationIsLoadedAndLogged) {
  t.shell.settings.Store().SaveSettingInt("System", "LogToFile", 1);
  t.shell.settings.SaveDefaultEquipFile("lab.eqp");
  EXPECT_TRUE(StartUp(t.shell, steps, "/e:"));
  EXPECT_EQ(steps.done, (Done{"Hylden 1.1", "equipment lab.eqp", "apply"}));
  const std::string log = t.directory.Read("runlog.hyl");
  EXPECT_NE(log.find("equip file loaded from command line"), std::string::npos);
  EXPECT_NE(log.find("default equipment file loaded"), std::string::npos);
}

TEST_F(StartUpTest, NoStationAtAllIsNoError) {
  EXPECT_TRUE(StartUp(t.shell, steps, ""));
  EXPECT_EQ(steps.done, Done{"Hylden 1.1"});
  EXPECT_TRUE(t.dialogs.messages.empty());
}

TEST_F(StartUpTest, WrongPieceLoadsNothingNotEvenTheDefault) {
  t.shell.settings.SaveDefaultEquipFile("lab.eqp");
  EXPECT_TRUE(StartUp(t.shell, steps, R"("/e:a.eqp" "/x:abc")"));
  EXPECT_EQ(steps.done, Done{"Hylden 1.1"});
  EXPECT_EQ(t.dialogs.Texts(), Done{R"(Command line error, ("/e:a.eqp" "/x:abc"))"});
}

struct FailureCase {
  const char* failing;
  const char* message;
  std::vector<std::string> done;
};

TEST_F(StartUpTest, FailureIsToldAndStartUpGoesOnAsFarAsItCan) {
  const FailureCase rows[] = {
      {"equipment",
       "Error loading equipment file a.eqp",
       {"equipment a.eqp", "test x.tst", "calinfo ring.hyinfo", "open"}},
      {"test", "Error loading test setup file: x.tst", {"equipment a.eqp", "apply", "test x.tst"}},
      {"calinfo",
       "Error loading calinfo file: ring.hyinfo",
       {"equipment a.eqp", "apply", "test x.tst", "calinfo ring.hyinfo"}},
  };
  for (const FailureCase& row : rows) {
    SCOPED_TRACE(row.failing);
    steps = Steps();
    steps.failing = row.failing;
    t.dialogs.Clear();
    EXPECT_TRUE(StartUp(t.shell, steps, R"("/e:a.eqp" "/t:x.tst")"));
    EXPECT_EQ(t.dialogs.Texts(), Done{row.message});
    Done expected = row.done;
    expected.insert(expected.begin(), "Hylden 1.1");
    EXPECT_EQ(steps.done, expected);
  }
}

}  // namespace
}  // namespace hylden
