#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "documents/TestDefinition.h"
#include "support/TempDir.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

constexpr const char* kStation = HYLDEN_SOURCE_DIR "/examples/station";
constexpr int kFinished = 0, kFailed = 1, kUsage = 2, kHalted = 3;

struct Outcome {
  int status = -1;
  std::string output;
};

/// Runs the program without a terminal in the demo station's directory, feeding every piece of its output to `watch`.
Outcome HyldenRun(std::vector<std::string> arguments,
                  const std::function<void(pid_t, const std::string& soFar)>& watch = {}) {
  arguments.insert(arguments.begin(), HYLDEN_BINARY_DIR "/bin/hylden-run");
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) return {};
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    dup2(ends[1], STDERR_FILENO);
    close(STDIN_FILENO);
    close(ends[0]);
    close(ends[1]);
    if (chdir(kStation) == 0) execv(argv[0], argv.data());
    _exit(127);
  }
  close(ends[1]);
  Outcome outcome;
  std::array<char, 4096> block{};
  for (ssize_t count = 0; (count = read(ends[0], block.data(), block.size())) > 0;) {
    outcome.output.append(block.data(), static_cast<std::size_t>(count));
    if (watch) watch(child, outcome.output);
  }
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

class HyldenRunProgram : public testing::Test {
 protected:
  std::vector<std::string> OnTheBench(const std::string& test, const std::vector<std::string>& more) const {
    std::vector<std::string> arguments = {"--equipment", "station.eqp", "--test",        test, "--output", Output(),
                                          "--bench",     "bench.txt",   "--virtual-time"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  std::string Output() const { return directory_.File("out.run"); }

  TempDir directory_;
};

TEST_F(HyldenRunProgram, FinishesWithARowForEveryStep) {
  const Outcome outcome = HyldenRun(OnTheBench("substitution-am.tst", {"--yes", "--seed", "7"}));
  EXPECT_EQ(outcome.status, kFinished) << outcome.output;
  EXPECT_NE(outcome.output.find("SIMULATED BENCH"), std::string::npos);
  EXPECT_NE(outcome.output.find("Finished: 67 of 67 steps"), std::string::npos) << outcome.output;
  const std::vector<std::string> lines = ReadLines(Output());
  EXPECT_EQ(lines.size(), 67U + 3U);
  EXPECT_EQ(JoinLines(lines).find("BENCH"), std::string::npos);
}

TEST_F(HyldenRunProgram, SwitchesNothingOnWithoutATerminalAndWithoutYes) {
  const Outcome outcome = HyldenRun(OnTheBench("substitution-am.tst", {}));
  EXPECT_EQ(outcome.status, kFailed);
  EXPECT_NE(outcome.output.find("Nothing was switched on."), std::string::npos) << outcome.output;
  EXPECT_FALSE(directory_.Exists("out.run"));
}

TEST_F(HyldenRunProgram, KeepsAnExistingOutputFileUnlessToldOtherwise) {
  directory_.Write("out.run", "yesterday");
  EXPECT_EQ(HyldenRun(OnTheBench("substitution-am.tst", {})).status, kFailed);
  EXPECT_EQ(directory_.Read("out.run"), "yesterday");
  EXPECT_EQ(HyldenRun(OnTheBench("substitution-am.tst", {"--yes"})).status, kFinished);
  EXPECT_NE(directory_.Read("out.run"), "yesterday");
}

TEST_F(HyldenRunProgram, TellsWhatIsWrongByItsExitStatus) {
  struct Case {
    const char* name;
    std::vector<std::string> arguments;
    int status;
    const char* text;
  };
  const std::vector<Case> cases = {
      {"no arguments", {}, kUsage, "--equipment"},
      {"virtual time on a real bus",
       {"--equipment", "station.eqp", "--test", "x.tst", "--output", Output(), "--virtual-time"},
       kUsage,
       "--bench"},
      {"seed that is no number", OnTheBench("substitution-am.tst", {"--seed", "x"}), kUsage, "--seed"},
      {"missing test", OnTheBench("none.tst", {"--yes"}), kFailed, "Error loading test setup file: none.tst"},
      {"equipment that is none",
       {"--equipment", "scpi.sg", "--test", "substitution-am.tst", "--output", Output(), "--bench", "--yes"},
       kFailed,
       "Error loading equipment file scpi.sg"},
      {"bench file that is none",
       {"--equipment", "station.eqp", "--test", "substitution-am.tst", "--output", Output(), "--bench", "none.txt"},
       kFailed,
       "none.txt"},
      {"output in a folder that is not there",
       {"--equipment", "station.eqp", "--test", "substitution-am.tst", "--output", directory_.File("no/out.run"),
        "--bench", "bench.txt", "--virtual-time", "--yes"},
       kFailed,
       "The run data can't be written"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Outcome outcome = HyldenRun(c.arguments);
    EXPECT_EQ(outcome.status, c.status) << outcome.output;
    EXPECT_NE(outcome.output.find(c.text), std::string::npos) << outcome.output;
    EXPECT_FALSE(directory_.Exists("out.run"));
  }
}

TEST_F(HyldenRunProgram, HaltsOnSignalsWithTheRowsSaved) {
  // Long enough that the signal always comes in the middle.
  TestDefinition test;
  LoadRecord(std::string(kStation) + "/substitution-am.tst", test);
  test.LogStep = 0.005;
  SaveRecord(directory_.File("long.tst"), test);
  for (const int signal : {SIGINT, SIGTERM}) {
    SCOPED_TRACE(signal);
    bool sent = false;
    const Outcome outcome =
        HyldenRun(OnTheBench(directory_.File("long.tst"), {"--yes"}), [&](pid_t child, const std::string& soFar) {
          if (sent || soFar.find("step 3 of") == std::string::npos) return;
          sent = true;
          kill(child, signal);
        });
    EXPECT_TRUE(sent);
    EXPECT_EQ(outcome.status, kHalted) << outcome.output.substr(outcome.output.size() - 500);
    EXPECT_NE(outcome.output.find("Ended early: "), std::string::npos);
    EXPECT_GE(ReadLines(Output()).size(), 3U + 3U);
  }
}

}  // namespace
}  // namespace hylden
