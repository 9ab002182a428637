#include <gtest/gtest.h>
#include <pty.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "documents/CalSetupRecord.h"
#include "documents/TestDefinition.h"
#include "platform/console/ConsoleClock.h"
#include "platform/native/SingleInstance.h"
#include "support/ReadLines.h"
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

/// The lock of this test's programs: others run beside it.
const std::string kOwnLock = "test-" + std::to_string(getpid());

/// Becomes the program in the directory.
[[noreturn]] void Become(std::vector<std::string> arguments, const std::string& directory = kStation) {
  arguments.insert(arguments.begin(), HYLDEN_BINARY_DIR "/bin/hylden-run");
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  setenv("HYLDEN_LOCK", kOwnLock.c_str(), 1);
  if (chdir(directory.c_str()) == 0) execv(argv[0], argv.data());
  _exit(127);
}

/// Runs the program without a terminal, feeding every piece of its output to `watch`.
Outcome HyldenRun(const std::vector<std::string>& arguments,
                  const std::function<void(pid_t, const std::string& soFar)>& watch = {},
                  const std::string& directory = kStation) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) return {};
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    dup2(ends[1], STDERR_FILENO);
    close(STDIN_FILENO);
    close(ends[0]);
    close(ends[1]);
    Become(arguments, directory);
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

/// Runs the program at a terminal; `type` gets what it has said since it last typed something.
Outcome AtTerminal(const std::vector<std::string>& arguments,
                   const std::function<std::string(const std::string& said)>& type) {
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) Become(arguments);
  Outcome outcome;
  std::array<char, 4096> block{};
  std::size_t answered = 0;
  for (ssize_t count = 0; (count = read(terminal, block.data(), block.size())) > 0;) {
    outcome.output.append(block.data(), static_cast<std::size_t>(count));
    const std::string typed = type(outcome.output.substr(answered));
    if (typed.empty()) continue;
    answered = outcome.output.size();
    if (write(terminal, typed.data(), typed.size()) < 0) break;
  }
  close(terminal);
  int status = 0;
  waitpid(child, &status, 0);
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

/// The time as the run log has it.
std::string LogTime() {
  const LocalTime now = ConsoleClock().Now();
  std::array<char, 80> text{};
  std::snprintf(text.data(), text.size(), "%02d/%02d/%02d %02d:%02d:%02d", now.month, now.day, now.year % 100, now.hour,
                now.minute, now.second);
  return text.data();
}

/// How often the text holds the part.
std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) ++count;
  return count;
}

/// Arguments that the program does not run with, its status and a part of what it says.
struct Refusal {
  const char* name;
  std::vector<std::string> arguments;
  int status;
  const char* text;

  void Expect() const {
    SCOPED_TRACE(name);
    const Outcome outcome = HyldenRun(arguments);
    EXPECT_EQ(outcome.status, status) << outcome.output;
    EXPECT_NE(outcome.output.find(text), std::string::npos) << outcome.output;
  }
};

class HyldenRunProgram : public testing::Test {
 protected:
  std::vector<std::string> OnTheBench(const std::string& test, const std::vector<std::string>& more) const {
    std::vector<std::string> arguments = {"--equipment", "station.eqp", "--test",        test, "--output", Output(),
                                          "--bench",     "bench.txt",   "--virtual-time"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  std::string Output() const { return directory_.File("out.run"); }
  /// The demo station's test in so many steps that it does not end while its output is looked at.
  std::string LongTest(double logStep) const {
    TestDefinition test;
    LoadRecord(std::string(kStation) + "/substitution-am.tst", test);
    test.LogStep = logStep;
    SaveRecord(directory_.File("long.tst"), test);
    return directory_.File("long.tst");
  }

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

TEST_F(HyldenRunProgram, FindsTheFilesOfAStationBesideItFromAnywhere) {
  const std::string station = std::string(kStation) + "/";
  const Outcome outcome = HyldenRun({"--equipment", station + "station.eqp", "--test", station + "substitution-am.tst",
                                     "--output", Output(), "--bench", station + "bench.txt", "--virtual-time", "--yes"},
                                    {}, "/");
  EXPECT_EQ(outcome.status, kFinished) << outcome.output;
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
  const std::vector<Refusal> refusals = {
      {"no arguments", {}, kUsage, "--equipment is required"},
      {"misspelt option", {"--equipmnt", "station.eqp"}, kUsage, "not expected: --equipmnt station.eqp"},
      {"virtual time on a real bus",
       {"--equipment", "station.eqp", "--test", "x.tst", "--output", Output(), "--virtual-time"},
       kUsage,
       "--bench"},
      {"output without a name",
       {"--equipment", "station.eqp", "--test", "substitution-am.tst", "--output", ""},
       kUsage,
       "--output: the file has no name"},
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
       "Nothing can be written to"},
      {"output with a name that no folder takes",
       {"--equipment", "station.eqp", "--test", "substitution-am.tst", "--output",
        directory_.File(std::string(300, 'x')), "--bench", "bench.txt", "--virtual-time", "--yes"},
       kFailed,
       "Nothing can be written to"},
      {"output that keeps nothing",
       {"--equipment", "station.eqp", "--test", "substitution-am.tst", "--output", "/dev/null", "--bench", "bench.txt",
        "--virtual-time", "--yes"},
       kFailed,
       "Nothing can be written to"},
  };
  for (const Refusal& refusal : refusals) {
    refusal.Expect();
    EXPECT_FALSE(directory_.Exists("out.run"));
  }
}

TEST_F(HyldenRunProgram, NeverReplacesAFileThatTheRunUses) {
  const std::string station = directory_.File("station");
  std::filesystem::copy(kStation, station);
  const auto in = [&](const std::string& name) { return station + "/" + name; };
  std::filesystem::create_symlink("substitution-am.tst", in("symbolic.run"));
  std::filesystem::create_hard_link(in("scpi.sg"), in("hard.run"));
  std::filesystem::create_hard_link(in("cdn-10v.csu"), in("record.hyinfo"));
  const std::vector<std::string> test = {"--test", "substitution-am.tst"}, calibration = {"--calibrate", "cdn-10v.csu"},
                                 cable = {"--cable-loss", "--start", "1", "--stop", "2", "--level", "-10"};
  const struct {
    std::vector<std::string> job;
    std::string output, used;
  } rows[] = {{test, "station.eqp", "station.eqp"},
              {test, in("station.eqp"), "station.eqp"},
              {test, "..\\station\\station.eqp", "station.eqp"},
              {test, "symbolic.run", "substitution-am.tst"},
              {test, "hard.run", "scpi.sg"},
              {test, "analyser.mtr", "analyser.mtr"},
              {test, "meter-cable.los", "meter-cable.los"},
              {test, "cdn-10v.hyinfo", "cdn-10v.hyinfo"},
              {test, "cdn-10v.cal", "cdn-10v.cal"},
              {test, "bench.txt", "bench.txt"},
              {calibration, "record.cal", "cdn-10v.csu"},
              {cable, "two-channel.pm", "two-channel.pm"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.output);
    std::vector<std::string> arguments = row.job;
    arguments.insert(arguments.end(), {"--output", row.output, "--equipment", "station.eqp", "--bench", "bench.txt",
                                       "--virtual-time", "--yes"});
    const std::string before = directory_.Read("station/" + row.used);
    const Outcome outcome = HyldenRun(arguments, {}, station);
    EXPECT_EQ(outcome.status, kFailed);
    EXPECT_NE(outcome.output.find("would replace a file that this run uses: " + row.used), std::string::npos)
        << outcome.output;
    EXPECT_EQ(directory_.Read("station/" + row.used), before);
  }
}

TEST_F(HyldenRunProgram, RunsAndSavesWithoutSettingsThatCanNotBeReadAndNamesThem) {
  directory_.Write("home/Hylden.ini/inside", "");
  setenv("HYLDEN_HOME", directory_.File("home").c_str(), 1);
  const Outcome outcome = HyldenRun(OnTheBench("substitution-am.tst", {"--yes"}));
  unsetenv("HYLDEN_HOME");
  EXPECT_EQ(outcome.status, kFinished);
  EXPECT_EQ(Count(outcome.output, "Hylden.ini"), 1U) << outcome.output;
  EXPECT_TRUE(std::filesystem::exists(Output()));
}

TEST_F(HyldenRunProgram, LogsEveryRunOnTheBenchAsSimulatedAndWithTheRealTime) {
  const std::string station = directory_.File("station");
  std::filesystem::copy(kStation, station);
  directory_.Write("home/Hylden.ini", "[System]\r\nLogToFile=1\r\n");
  setenv("HYLDEN_HOME", directory_.File("home").c_str(), 1);
  const struct {
    std::vector<std::string> job;
    std::vector<std::string> entries;  ///< from the run's begin on
  } rows[] = {
      {{"--test", "substitution-am.tst", "--output", "o.run"},
       {"SIMULATED BENCH", "Test run started", "Frequency sweep finished", "Instruments taken offline"}},
      {{"--calibrate", "cdn-10v.csu", "--output", "o.cal"}, {"SIMULATED BENCH"}},
      {{"--cable-loss", "--start", "1", "--stop", "9", "--level", "-9", "--log-step", "20", "--output", "o.los"},
       {"SIMULATED BENCH", "SIMULATED BENCH"}},  // a pass each
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.job.front());
    std::filesystem::remove(station + "/runlog.hyl");
    std::vector<std::string> arguments = row.job;
    arguments.insert(arguments.end(),
                     {"--equipment", "station.eqp", "--bench", "bench.txt", "--virtual-time", "--yes"});
    const std::string begin = LogTime();
    EXPECT_EQ(HyldenRun(arguments, {}, station).status, kFinished);
    const std::string end = LogTime();
    std::vector<std::string> entries;
    for (const std::string& line : ReadLines(station + "/runlog.hyl")) {
      if (line.find(" - ") != begin.size() || line.find(" file: ") != std::string::npos) continue;
      EXPECT_GE(line, begin);
      EXPECT_LE(line.substr(0, end.size()), end);
      entries.push_back(line.substr(begin.size() + 3));
    }
    ASSERT_EQ(entries.size(), row.entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) EXPECT_TRUE(entries[i].starts_with(row.entries[i])) << entries[i];
  }
  unsetenv("HYLDEN_HOME");
}

TEST_F(HyldenRunProgram, KeepsAFileThatHasComeMeanwhileAndSavesBesideIt) {
  // The program can't be further ahead than its output fits into the pipe.
  const std::string longTest = LongTest(0.1);
  directory_.Write("out-2.run", "of yesterday");
  bool written = false;
  const Outcome outcome = HyldenRun(OnTheBench(longTest, {"--yes"}), [&](pid_t, const std::string& soFar) {
    if (written || soFar.find("step 3 of") == std::string::npos) return;
    directory_.Write("out.run", "of somebody else");
    written = true;
  });
  EXPECT_EQ(outcome.status, kFailed);
  EXPECT_NE(outcome.output.find("What was recorded goes to " + directory_.File("out-3.run")), std::string::npos)
      << outcome.output.substr(outcome.output.size() - 500);
  EXPECT_EQ(directory_.Read("out.run"), "of somebody else");
  EXPECT_EQ(directory_.Read("out-2.run"), "of yesterday");
  EXPECT_GT(ReadLines(directory_.File("out-3.run")).size(), 6000U);
  EXPECT_EQ(outcome.output.find("This is not in"), std::string::npos);
}

TEST_F(HyldenRunProgram, AsksAgainAboutAFileThatHasComeMeanwhile) {
  const struct {
    const char* answer;
    int status;
    std::size_t lines, linesBeside;
  } rows[] = {{"n\n", kFailed, 1, 67 + 3}, {"y\n", kFinished, 67 + 3, 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.answer);
    for (const char* name : {"out.run", "out-2.run"}) std::filesystem::remove(directory_.File(name));
    const Outcome outcome = AtTerminal(OnTheBench("substitution-am.tst", {}), [&](const std::string& said) {
      if (said.find("meanwhile. Replace it?") != std::string::npos && said.ends_with("[Yes/No] "))
        return std::string(row.answer);
      if (!said.ends_with("[OK/Cancel] ")) return std::string();
      directory_.Write("out.run", "of somebody else");
      return std::string("\n");
    });
    EXPECT_EQ(outcome.status, row.status) << outcome.output;
    EXPECT_EQ(ReadLines(Output()).size(), row.lines);
    EXPECT_EQ(directory_.Exists("out-2.run") ? ReadLines(directory_.File("out-2.run")).size() : 0, row.linesBeside);
  }
}

TEST_F(HyldenRunProgram, HaltsOnSignalsWithTheRowsSaved) {
  const std::string longTest = LongTest(0.005);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    SCOPED_TRACE(signal);
    bool sent = false;
    const Outcome outcome = HyldenRun(OnTheBench(longTest, {"--yes"}), [&](pid_t child, const std::string& soFar) {
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

TEST_F(HyldenRunProgram, IsRefusedOnABusThatAnotherProgramHasAndRunsOnTheBenchBesideIt) {
  SingleInstance other("hylden-" + kOwnLock);
  ASSERT_TRUE(other.Claim());
  const Outcome onTheBus =
      HyldenRun({"--equipment", "station.eqp", "--test", "substitution-am.tst", "--output", Output(), "--yes"});
  EXPECT_EQ(onTheBus.status, kFailed);
  EXPECT_EQ(onTheBus.output, "This application is already running on this computer\n");
  EXPECT_EQ(HyldenRun(OnTheBench("substitution-am.tst", {"--yes"})).status, kFinished);
}

TEST_F(HyldenRunProgram, RunsWithItsStandardStreamsClosed) {
  const pid_t child = fork();
  if (child == 0) {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) close(stream);
    Become(OnTheBench("substitution-am.tst", {"--yes"}));
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, kFinished);
  EXPECT_EQ(ReadLines(Output()).size(), 67U + 3U);
}

class HyldenRunCalibration : public testing::Test {
 protected:
  static std::vector<std::string> OnTheBench(std::vector<std::string> job, const std::vector<std::string>& more) {
    job.insert(job.end(), {"--equipment", "station.eqp", "--bench", "bench.txt", "--virtual-time"});
    job.insert(job.end(), more.begin(), more.end());
    return job;
  }
  std::vector<std::string> Level(const std::string& setup, const std::vector<std::string>& more) const {
    return OnTheBench({"--calibrate", setup, "--output", directory_.File("out.cal")}, more);
  }
  std::vector<std::string> Cable(const std::vector<std::string>& more) const {
    return OnTheBench(
        {"--cable-loss", "--start", "0.15", "--stop", "80", "--level", "-10", "--output", directory_.File("out.los")},
        more);
  }
  /// The demo station's setup, changed.
  std::string Setup(const std::function<void(CalSetupRecord&)>& change) {
    CalSetupRecord setup;
    LoadRecord(std::string(kStation) + "/cdn-10v.csu", setup);
    change(setup);
    const std::string file = directory_.File("setup" + std::to_string(++setups_) + ".csu");
    SaveRecord(file, setup, true);
    return file;
  }
  /// Runs and sends a signal when the text has been printed.
  static Outcome Interrupted(const std::vector<std::string>& arguments, const std::string& at,
                             const std::function<void()>& before = {}) {
    bool sent = false;
    return HyldenRun(arguments, [&](pid_t child, const std::string& soFar) {
      if (sent || soFar.find(at) == std::string::npos) return;
      if (before) before();
      sent = kill(child, SIGINT) == 0;
    });
  }

  TempDir directory_;
  int setups_ = 0;
};

TEST_F(HyldenRunCalibration, CalibratesALevelIntoARecordOfBothFiles) {
  const std::string setup = Setup([](CalSetupRecord& s) { s.LogStep = 20; });
  const Outcome outcome = HyldenRun(Level(setup, {"--yes"}));
  EXPECT_EQ(outcome.status, kFinished) << outcome.output;
  EXPECT_NE(outcome.output.find("Finished: 42 of 42 steps"), std::string::npos) << outcome.output;
  EXPECT_EQ(ReadLines(directory_.File("out.cal")).size(), 42U);
  EXPECT_EQ(ReadLines(directory_.File("out.hyinfo")).size(), 6U);
}

/// The everyday sweep, 0.15 to 230 MHz by 1 MHz: the number of its steps is rounded up to 231, the last is at 230.15
/// MHz.
/// @param cableLossEndsAt  where the cable loss table ends, MHz
struct EverydayCase {
  const char* name;
  int cableLossEndsAt;
  const char* calibrated;
  const char* tested;
  std::size_t leftOut;  ///< how often that step is told to be left out
};
class HyldenRunEveryday : public HyldenRunCalibration, public testing::WithParamInterface<EverydayCase> {};

TEST_P(HyldenRunEveryday, CalibratesAndTestsToItsEnd) {
  const std::string station = directory_.File("station");
  std::filesystem::copy(kStation, station);
  directory_.Write("station/meter-cable.los",
                   "0.15, 0.05\r\n" + std::to_string(GetParam().cableLossEndsAt) + ", 1.4\r\n");
  CalSetupRecord setup;
  LoadRecord(station + "/cdn-10v.csu", setup);
  setup.StepType = StepType::Linear, setup.LinearStep = 1;
  SaveRecord(station + "/everyday.csu", setup, true);
  TestDefinition test;
  LoadRecord(station + "/substitution-am.tst", test);
  test.CalInfoFile = "everyday.hyinfo";
  test.StopFreq = 230, test.StepType = StepType::Linear, test.LinearStep = 1, test.MonitorProbe = true;
  SaveRecord(station + "/everyday.tst", test);

  const std::vector<std::string> bench = {"--equipment", "station.eqp",    "--bench",
                                          "bench.txt",   "--virtual-time", "--yes"};
  const auto run = [&](std::vector<std::string> job) {
    job.insert(job.end(), bench.begin(), bench.end());
    return HyldenRun(job, {}, station);
  };
  const Outcome calibration = run({"--calibrate", "everyday.csu", "--output", "everyday.cal"});
  EXPECT_EQ(calibration.status, kFinished) << calibration.output;
  EXPECT_NE(calibration.output.find(GetParam().calibrated), std::string::npos) << calibration.output;
  const Outcome tested = run({"--test", "everyday.tst", "--output", "everyday.run"});
  EXPECT_EQ(tested.status, kFinished) << tested.output;
  EXPECT_NE(tested.output.find(GetParam().tested), std::string::npos) << tested.output;
  EXPECT_EQ(Count(calibration.output + tested.output, "The last step, 230.15 MHz"), GetParam().leftOut);
  const std::string kept = directory_.Read("station/everyday.cal") + directory_.Read("station/everyday.run");
  EXPECT_EQ((calibration.output + tested.output + kept).find("-999"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(, HyldenRunEveryday,
                         testing::Values(EverydayCase{"where_everything_covers_it", 1000, "231 of 231", "231 of 231",
                                                      0},
                                         EverydayCase{"where_a_table_ends_at_230", 230, "230 of 230", "230 of 230", 1}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(HyldenRunCalibration, TestsByItsRecordLeavingOutTheStepBeyondIt) {
  TestDefinition test;
  LoadRecord(std::string(kStation) + "/substitution-am.tst", test);
  test.StopFreq = 230, test.StepType = StepType::Linear, test.LinearStep = 1;
  SaveRecord(directory_.File("everyday.tst"), test);
  const Outcome outcome = HyldenRun(
      OnTheBench({"--test", directory_.File("everyday.tst"), "--output", directory_.File("everyday.run")}, {"--yes"}));
  EXPECT_EQ(outcome.status, kFinished) << outcome.output;
  EXPECT_EQ(Count(outcome.output, "The last step, 230.15 MHz"), 1U);
  EXPECT_NE(outcome.output.find("Finished: 230 of 230"), std::string::npos) << outcome.output;
}

TEST_F(HyldenRunCalibration, TakesTheCouplingFactorOfTheSetupUnlessItIsGivenOne) {
  const std::string setup = Setup([](CalSetupRecord& s) {
    s.LogStep = 200, s.CalLevel = 1, s.CouplingMethod = CouplingMethod::UserDefined, s.UserDefinedFactor = 9.5F;
  });
  const auto description = [&](const std::vector<std::string>& more) {
    const Outcome outcome = HyldenRun(Level(setup, more));
    EXPECT_EQ(outcome.status, kFinished) << outcome.output;
    return ReadLines(directory_.File("out.hyinfo")).front();
  };
  EXPECT_EQ(description({"--yes"}), "10 V, 0.15 to 230 MHz, coupling factor 9.5 dB");
  EXPECT_EQ(description({"--yes", "--coupling-factor", "0"}), "10 V, 0.15 to 230 MHz, coupling factor 0 dB");
}

TEST_F(HyldenRunCalibration, KeepsThePointsOfARunThatEndsEarly) {
  const std::string tooLow = Setup([](CalSetupRecord& s) { s.LogStep = 20, s.MaxLevel = -9.5F; });
  const Outcome failed = HyldenRun(Level(tooLow, {"--yes"}));
  EXPECT_EQ(failed.status, kFailed) << failed.output;
  EXPECT_NE(failed.output.find("Level requested is higher"), std::string::npos) << failed.output;
  EXPECT_GE(ReadLines(directory_.File("out.cal")).size(), 3U);

  const std::string fine = Setup([](CalSetupRecord& s) { s.LogStep = 0.01; });
  const Outcome halted = Interrupted(Level(fine, {"--yes"}), "step 3 of");
  EXPECT_EQ(halted.status, kHalted) << halted.output.substr(halted.output.size() - 500);
  EXPECT_GE(ReadLines(directory_.File("out.cal")).size(), 3U);
}

TEST_F(HyldenRunCalibration, KeepsAnInfoFileThatHasComeMeanwhileAndSavesBothFilesBesideIt) {
  const std::string fine = Setup([](CalSetupRecord& s) { s.LogStep = 0.01; });
  const Outcome halted =
      Interrupted(Level(fine, {"--yes"}), "step 3 of", [&] { directory_.Write("out.hyinfo", "of somebody else"); });
  EXPECT_EQ(halted.status, kHalted) << halted.output.substr(halted.output.size() - 500);
  EXPECT_EQ(directory_.Read("out.hyinfo"), "of somebody else");
  EXPECT_FALSE(directory_.Exists("out.cal"));
  EXPECT_GE(ReadLines(directory_.File("out-2.cal")).size(), 3U);
  EXPECT_EQ(ReadLines(directory_.File("out-2.hyinfo")).size(), 6U);
}

TEST_F(HyldenRunCalibration, PrintsThePointThatIsTooFewForARecord) {
  const std::string narrow =
      Setup([](CalSetupRecord& s) { s.StepType = StepType::Linear, s.LinearStep = 1, s.StopFreq = 0.2; });
  const Outcome outcome = HyldenRun(Level(narrow, {"--yes"}));
  EXPECT_EQ(outcome.status, kFailed);
  EXPECT_NE(outcome.output.find("No data to save"), std::string::npos);
  EXPECT_NE(outcome.output.find("\n0.15,"), std::string::npos) << outcome.output;
}

TEST_F(HyldenRunCalibration, MeasuresACableInTwoPasses) {
  const Outcome outcome = HyldenRun(Cable({"--log-step", "50", "--yes"}));
  EXPECT_EQ(outcome.status, kFinished) << outcome.output;
  const std::size_t direct = outcome.output.find("Direct pass"), insert = outcome.output.find("Insert pass");
  EXPECT_LT(direct, insert);
  EXPECT_NE(insert, std::string::npos);
  EXPECT_NE(outcome.output.find("Finished: 17 of 17 steps"), std::string::npos) << outcome.output;
  EXPECT_EQ(ReadLines(directory_.File("out.los")).size(), 12U + 17U);
}

TEST_F(HyldenRunCalibration, PrintsTheReadingsOfAHaltedDirectPass) {
  const Outcome outcome = Interrupted(Cable({"--log-step", "0.01", "--yes"}), "step 3 of");
  EXPECT_EQ(outcome.status, kHalted);
  EXPECT_NE(outcome.output.find("0.150 MHz  direct 9"), std::string::npos)
      << outcome.output.substr(outcome.output.size() - 500);
  EXPECT_EQ(outcome.output.find("Insert pass"), std::string::npos);
  EXPECT_FALSE(directory_.Exists("out.los"));
}

TEST_F(HyldenRunCalibration, KeepsEveryReadingOfAHaltedInsertPass) {
  const Outcome outcome = Interrupted(Cable({"--log-step", "0.05", "--yes"}), "Insert pass");
  EXPECT_EQ(outcome.status, kHalted);
  const std::size_t inFile = directory_.Exists("out.los") ? ReadLines(directory_.File("out.los")).size() - 12 : 0;
  const std::size_t printed = Count(outcome.output, "MHz  direct");
  EXPECT_GT(printed, 1000U);
  EXPECT_EQ(inFile + printed, 12'563U);
}

TEST_F(HyldenRunCalibration, SwitchesNothingOnUnasked) {
  const std::string readOnly = directory_.Write("kept.cal", "yesterday");
  std::filesystem::permissions(readOnly, std::filesystem::perms::owner_read);
  directory_.Write("old.hyinfo", "yesterday");
  const std::vector<Refusal> refusals = {
      {"level without --yes", Level("cdn-10v.csu", {}), kFailed, "Nothing was switched on."},
      {"cable without --yes", Cable({}), kFailed, "Nothing was switched on."},
      {"cable on a real bus without anybody there",
       {"--cable-loss", "--start", "1", "--stop", "2", "--equipment", "station.eqp", "--output",
        directory_.File("out.los"), "--yes"},
       kFailed,
       "somebody at a terminal"},
      {"an info file that is there",
       OnTheBench({"--calibrate", "cdn-10v.csu", "--output", directory_.File("old.cal")}, {}), kFailed,
       "old.hyinfo exists"},
      {"a record that can't be replaced", OnTheBench({"--calibrate", "cdn-10v.csu", "--output", readOnly}, {"--yes"}),
       kFailed, "Nothing can be written to"},
      {"a sensor that nobody moves",
       {"--calibrate", "cdn-10v.csu", "--equipment", "ifi-station.eqp", "--output", directory_.File("out.cal"),
        "--yes"},
       kFailed,
       "has to move the power sensor"},
      {"a factor that is none",
       Level(Setup([](CalSetupRecord& s) { s.CouplingMethod = CouplingMethod::UserDefined; }),
             {"--yes", "--coupling-factor", "nan"}),
       kFailed, "--coupling-factor: the value is not a number"},
      {"a method without its factor",
       Level(Setup([](CalSetupRecord& s) { s.CouplingMethod = CouplingMethod::UserDefined; }), {"--yes"}), kFailed,
       "give it with --coupling-factor"},
      {"no calibration setup", Level("bench.txt", {"--yes"}), kFailed, "Error loading calibration setup file"},
      {"a setup that can't be run", Level(Setup([](CalSetupRecord& s) { s.StopFreq = 0.1; }), {"--yes"}), kFailed,
       "used: StopFreq"},
      {"a factor of its own", Level("cdn-10v.csu", {"--yes", "--coupling-factor", "3"}), kFailed, "its own factor"},
      {"a record of another name",
       OnTheBench({"--calibrate", "cdn-10v.csu", "--output", directory_.File("out.txt")}, {"--yes"}), kUsage, ".cal"},
      {"two jobs", Cable({"--test", "substitution-am.tst"}), kUsage, "Exactly 1"},
      {"a cable's option without a cable", Level("cdn-10v.csu", {"--stop", "10"}), kUsage, "--cable-loss"},
      {"two kinds of step", Cable({"--log-step", "1", "--linear-step", "1"}), kUsage, "excludes --l"},
      {"a dwell below 0", Cable({"--dwell=-1"}), kUsage, "--dwell: the value is outside its range"},
      {"a step that is no number", Cable({"--log-step", "x"}), kUsage, "--log-step: the value is not a number"},
  };
  for (const Refusal& refusal : refusals) {
    refusal.Expect();
    for (const char* name : {"out.cal", "out.los", "out.txt", "old.cal"}) EXPECT_FALSE(directory_.Exists(name));
    EXPECT_EQ(directory_.Read("old.hyinfo"), "yesterday");
  }
}

}  // namespace
}  // namespace hylden
