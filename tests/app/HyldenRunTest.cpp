#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "documents/CalSetupRecord.h"
#include "documents/TestDefinition.h"
#include "platform/console/ConsoleClock.h"
#include "platform/native/SingleInstance.h"
#include "support/ReadLines.h"
#include "support/TempDir.h"
#include "text/RecordFile.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

constexpr const char *kStation = HYLDEN_SOURCE_DIR "/examples/station", *kTest = "substitution-am.tst";
constexpr int kFinished = 0, kFailed = 1, kUsage = 2, kHalted = 3;

struct Outcome {
  int status = -1;
  std::string output;
};

/// The lock of this test's programs: others run beside it.
const std::string kOwnLock = "test-" + std::to_string(getpid());

/// The program directory of those that have no other.
const TempDir kOwnHome;

/// Becomes the program in the directory.
[[noreturn]] void Become(std::vector<std::string> arguments, const std::string& directory = kStation) {
  arguments.insert(arguments.begin(), HYLDEN_BINARY_DIR "/bin/hylden-run");
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  setenv("HYLDEN_LOCK", kOwnLock.c_str(), 1);
  setenv("HYLDEN_HOME", kOwnHome.Path().c_str(), 0);
  if (chdir(directory.c_str()) == 0) execv(argv[0], argv.data());
  _exit(127);
}

/// Reads what the program says, giving every piece to `heard`, and waits for its end.
Outcome Listen(pid_t child, int from, const std::function<void(const std::string& soFar)>& heard) {
  Outcome outcome;
  std::array<char, 4096> block{};
  for (ssize_t count = 0; (count = read(from, block.data(), block.size())) > 0;) {
    outcome.output.append(block.data(), static_cast<std::size_t>(count));
    heard(outcome.output);
  }
  close(from);
  int status = 0;
  waitpid(child, &status, 0);
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

/// Runs the program without a terminal, feeding every piece of its output to `watch`.
Outcome HyldenRun(const std::vector<std::string>& arguments,
                  const std::function<void(pid_t, const std::string& soFar)>& watch = {},
                  const std::string& directory = kStation) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) return {};
  // It waits for its reader, so that what the test does at a line comes soon behind it on any machine.
  constexpr int kFewLines = 4096;
  fcntl(ends[1], F_SETPIPE_SZ, kFewLines);
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
  return Listen(child, ends[0], [&](const std::string& soFar) {
    if (watch) watch(child, soFar);
  });
}

/// Runs the program at a terminal; `type` gets what it has said since it last typed something.
Outcome AtTerminal(const std::vector<std::string>& arguments,
                   const std::function<std::string(const std::string& said)>& type) {
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) Become(arguments);
  std::size_t answered = 0;
  return Listen(child, terminal, [&](const std::string& soFar) {
    const std::string typed = type(soFar.substr(answered));
    if (typed.empty()) return;
    answered = soFar.size();
    EXPECT_EQ(write(terminal, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
  });
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

class HyldenRunProgram : public testing::Test {
 protected:
  using Arguments = std::vector<std::string>;

  static Arguments OnTheBench(Arguments job, const Arguments& more) {
    job.insert(job.end(), {"--equipment", "station.eqp", "--bench", "bench.txt", "--virtual-time"});
    job.insert(job.end(), more.begin(), more.end());
    return job;
  }
  Arguments Test(const std::string& test, const Arguments& more) const {
    return OnTheBench({"--test", test, "--output", Output()}, more);
  }
  Arguments Level(const std::string& setup, const Arguments& more) const {
    return OnTheBench({"--calibrate", setup, "--output", directory_.File("out.cal")}, more);
  }
  Arguments Cable(const Arguments& more) const {
    return OnTheBench(
        {"--cable-loss", "--start", "0.15", "--stop", "80", "--level", "-10", "--output", directory_.File("out.los")},
        more);
  }
  std::string Output() const { return directory_.File("out.run"); }
  std::size_t LinesOf(const std::string& name) const { return ReadLines(directory_.File(name)).size(); }
  std::string CopiedStation() const {
    std::filesystem::copy(kStation, directory_.File("station"));
    return directory_.File("station");
  }
  /// The demo station's test in so many steps that it does not end while its output is looked at.
  std::string LongTest(double logStep) const {
    TestDefinition test;
    LoadRecord(std::string(kStation) + "/substitution-am.tst", test);
    test.LogStep = logStep;
    SaveRecord(directory_.File("long.tst"), test);
    return directory_.File("long.tst");
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
  /// Runs, and does something and sends a signal when the text has been printed.
  static Outcome Interrupted(const Arguments& arguments, const std::string& at,
                             const std::function<void()>& before = {}, int signal = SIGINT) {
    bool sent = false;
    return HyldenRun(arguments, [&](pid_t child, const std::string& soFar) {
      if (sent || soFar.find(at) == std::string::npos) return;
      if (before) before();
      sent = kill(child, signal) == 0;
    });
  }

  static constexpr int kNone = 0;  ///< no signal at all
  TempDir directory_;
  int setups_ = 0;
};

void ExpectSaid(const Outcome& outcome, int status, const std::string& text) {
  const std::string& said = outcome.output;
  EXPECT_EQ(outcome.status, status) << said.substr(said.size() - std::min<std::size_t>(said.size(), 500));
  EXPECT_NE(said.find(text), std::string::npos) << text << " is not in " << said.substr(0, 2000);
}

TEST_F(HyldenRunProgram, FinishesWithARowForEveryStep) {
  const Outcome outcome = HyldenRun(Test(kTest, {"--yes", "--seed", "7"}));
  ExpectSaid(outcome, kFinished, "SIMULATED BENCH");
  ExpectSaid(outcome, kFinished, "Finished: 67 of 67 steps");
  EXPECT_EQ(LinesOf("out.run"), 67U + 3U);
  EXPECT_EQ(directory_.Read("out.run").find("BENCH"), std::string::npos);
}

TEST_F(HyldenRunProgram, TracesTheBusOfTheWholeRun) {
  const std::string trace = directory_.File("trace.txt");
  EXPECT_EQ(HyldenRun(Test(kTest, {"--yes", "--trace", trace})).status, kFinished);
  const std::string text = directory_.Read("trace.txt");
  EXPECT_NE(text.find(" -- 18 find 0 18: 18, "), std::string::npos) << text.substr(0, 500);
  EXPECT_EQ(Count(text, "-> 18 \"FREQ "), 68U) << "67 steps and the end";
  EXPECT_NE(text.find("\"OUTP OFF\\r\\n\" 10 EOI"), std::string::npos);
  EXPECT_EQ(text.back(), '\n');
}

TEST_F(HyldenRunProgram, ATraceThatCanNotBeWrittenOrWouldReplaceAFileOfTheRunIsRefusedBeforeRfIsOn) {
  const std::string station = CopiedStation();
  const std::string before = directory_.Read("station/bench.txt");
  const std::pair<std::string, const char*> cases[] = {
      {directory_.File("none/trace.txt"), "Nothing can be written to"},
      {"/dev/null", "Nothing can be written to"},
      {"bench.txt", "--trace would replace a file that this run uses: bench.txt"},
      {Output(), "--trace would replace a file that this run uses: "}};
  for (const auto& [trace, said] : cases) {
    const Outcome outcome = HyldenRun(Test(kTest, {"--yes", "--trace", trace}), {}, station);
    ExpectSaid(outcome, kFailed, said);
    EXPECT_FALSE(std::filesystem::exists(Output()));
  }
  EXPECT_EQ(directory_.Read("station/bench.txt"), before);
  directory_.Write("trace.txt", "yesterday");
  EXPECT_EQ(HyldenRun(Test(kTest, {"--trace", directory_.File("trace.txt")})).status, kFailed);
  EXPECT_EQ(directory_.Read("trace.txt"), "yesterday");
}

TEST_F(HyldenRunProgram, TellsHowTheBusIsReached) {
  const Outcome station =
      HyldenRun({"--bus-info", "--equipment", "station.eqp", "--bench", "bench.txt", "--virtual-time"});
  ExpectSaid(station, kFinished,
             "Address 18  Signal generator: SCPI signal generator, 0.1 to 1000 MHz: simulated bench");
  ExpectSaid(station, kFinished, "The interface is cleared\nListeners at ");
  ExpectSaid(HyldenRun({"--bus-info", "--bench"}), kFinished, "Address 0 to 30: simulated bench\n");
}

TEST_F(HyldenRunProgram, TellsInOneLineWhatIsMissingOnTheWayToTheBus) {
  setenv("HYLDEN_HOME", directory_.File("").c_str(), 1);
  directory_.Write("Hylden.ini", "[Gpib]\nLibrary=/no/such/library.so\n");
  const Outcome outcome = HyldenRun({"--bus-info"});
  unsetenv("HYLDEN_HOME");
  ExpectSaid(outcome, kFailed, "The GPIB library /no/such/library.so can't be loaded: ");
  EXPECT_EQ(Count(outcome.output, "\n"), 1U) << outcome.output;
}

TEST_F(HyldenRunProgram, KeepsAnExistingOutputFileUnlessToldOtherwise) {
  directory_.Write("out.run", "yesterday");
  EXPECT_EQ(HyldenRun(Test(kTest, {})).status, kFailed);
  EXPECT_EQ(directory_.Read("out.run"), "yesterday");
  EXPECT_EQ(HyldenRun(Test(kTest, {"--yes"})).status, kFinished);
  EXPECT_NE(directory_.Read("out.run"), "yesterday");
}

TEST_F(HyldenRunProgram, SaysWhatIsWrongWithItsExitStatusAndSwitchesNothingOn) {
  const std::string readOnly = directory_.Write("kept.cal", "yesterday");
  std::filesystem::permissions(readOnly, std::filesystem::perms::owner_read);
  directory_.Write("old.hyinfo", "yesterday");
  const std::string userDefined = Setup([](CalSetupRecord& s) { s.CouplingMethod = CouplingMethod::UserDefined; });
  const auto testTo = [](const std::string& output) {
    return OnTheBench({"--test", kTest, "--output", output}, {"--yes"});
  };
  const auto calibrateTo = [this](const std::string& output, const Arguments& more) {
    return OnTheBench({"--calibrate", "cdn-10v.csu", "--output", directory_.File(output)}, more);
  };
  const auto equipped = [](const char* equipment, Arguments job, const std::string& output) {
    job.insert(job.end(), {"--output", output, "--equipment", equipment, "--yes"});
    return job;
  };
  constexpr const char* kNowhere = "Nothing can be written to";
  const struct {
    Arguments arguments;
    int status;
    const char* text;
  } rows[] = {
      {{}, kUsage, "--equipment is required"},
      {{"--equipmnt", "station.eqp"}, kUsage, "not expected: --equipmnt station.eqp"},
      {equipped("station.eqp", {"--test", kTest, "--virtual-time"}, Output()), kUsage, "--bench"},
      {testTo(""), kUsage, "An argument is empty."},
      {Test(kTest, {"--seed", "x"}), kUsage, "--seed"},
      {Test(kTest, {"--seed=-1"}), kUsage, "--seed"},
      {{"--export", "a.run", "--csv", "a.csv", "--output", "b"}, kUsage, "excludes --"},
      {Cable({"--test", kTest}), kUsage, "Exactly 1"},
      {calibrateTo("out.txt", {"--yes"}), kUsage, ".cal"},
      {Level("cdn-10v.csu", {"--stop", "10"}), kUsage, "--cable-loss"},
      {Cable({"--log-step", "1", "--linear-step", "1"}), kUsage, "excludes --l"},
      {Cable({"--dwell=-1"}), kUsage, "--dwell: the value is outside its range (allowed: at least 0 s)"},
      {Cable({"--log-step", "x"}), kUsage, "--log-step: the value is not a number"},
      {Test(kTest, {}), kFailed, "Nothing was switched on."},
      {Level("cdn-10v.csu", {}), kFailed, "Nothing was switched on."},
      {Cable({}), kFailed, "Nothing was switched on."},
      {Test("none.tst", {"--yes"}), kFailed, "Error loading test setup file: none.tst"},
      {equipped("scpi.sg", {"--test", kTest, "--bench"}, Output()), kFailed, "Error loading equipment file scpi.sg"},
      {equipped("station.eqp", {"--test", kTest, "--bench", "none.txt"}, Output()), kFailed, "none.txt"},
      {testTo(directory_.File("no/out.run")), kFailed, kNowhere},
      {testTo(directory_.File(std::string(300, 'x'))), kFailed, kNowhere},
      {testTo("/dev/null"), kFailed, kNowhere},
      {calibrateTo("kept.cal", {"--yes"}), kFailed, kNowhere},
      {calibrateTo("old.cal", {}), kFailed, "old.hyinfo exists"},
      // on a real bus
      {equipped("station.eqp", {"--cable-loss", "--start", "1", "--stop", "2"}, directory_.File("out.los")), kFailed,
       "somebody at a terminal"},
      {Level(userDefined, {"--yes", "--coupling-factor", "nan"}), kFailed,
       "--coupling-factor: the value is not a number"},
      {Level(userDefined, {"--yes"}), kFailed, "give it with --coupling-factor"},
      {Level("cdn-10v.csu", {"--yes", "--coupling-factor", "3"}), kFailed, "its own factor"},
      {Level("bench.txt", {"--yes"}), kFailed, "Error loading calibration setup file"},
      {Level(Setup([](CalSetupRecord& s) { s.StopFreq = 0.1; }), {"--yes"}), kFailed,
       "used: StopFreq (allowed: above 0.15 MHz)"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.arguments));
    ExpectSaid(HyldenRun(row.arguments), row.status, row.text);
    for (const char* name : {"out.run", "out.cal", "out.los", "out.txt", "old.cal"})
      EXPECT_FALSE(directory_.Exists(name)) << name;
    EXPECT_EQ(directory_.Read("old.hyinfo"), "yesterday");
  }
}

TEST_F(HyldenRunProgram, RunsUnattendedOnARealStationWhereNobodyHasToMoveASensor) {
  directory_.Write("home/Hylden.ini", "[Gpib]\r\nLibrary=none.so\r\n");
  setenv("HYLDEN_HOME", directory_.File("home").c_str(), 1);
  TestDefinition byPower;
  LoadRecord(std::string(kStation) + "/ifi-band-change.tst", byPower);
  byPower.LevelingMethod = LevelingMethod::ForwardPower;
  SaveRecord(directory_.File("power.tst"), byPower);
  constexpr const char* kOnTheBus = "The GPIB library none.so can't be loaded";
  const std::tuple<Arguments, const char*> cases[] = {
      {{"--calibrate", Setup([](CalSetupRecord& s) { s.StopFreq = 80; })}, kOnTheBus},
      {{"--calibrate", Setup([](CalSetupRecord& s) { s.RecordFwdPwr = s.RecordRevPwr = s.LimitFwdPwr = 0; })},
       kOnTheBus},
      {{"--calibrate", "cdn-10v.csu"}, "has to move the power sensor"},
      {{"--test", "ifi-band-change.tst"}, kOnTheBus},
      {{"--test", directory_.File("power.tst")}, "has to move the power sensor"}};
  for (auto [job, text] : cases) {
    job.insert(job.end(), {"--equipment", "ifi-station.eqp", "--output", directory_.File("out.cal"), "--yes"});
    SCOPED_TRACE(testing::PrintToString(job));
    ExpectSaid(HyldenRun(job), kFailed, text);
  }
  unsetenv("HYLDEN_HOME");
}

TEST_F(HyldenRunProgram, NeverReplacesAFileThatTheRunUses) {
  const std::string station = CopiedStation();
  const auto in = [&](const std::string& name) { return station + "/" + name; };
  std::filesystem::create_symlink("substitution-am.tst", in("symbolic.run"));
  std::filesystem::create_hard_link(in("scpi.sg"), in("hard.run"));
  std::filesystem::create_hard_link(in("cdn-10v.csu"), in("record.hyinfo"));
  const std::vector<std::string> test = {"--test", kTest}, calibration = {"--calibrate", "cdn-10v.csu"},
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
    ExpectSaid(HyldenRun(arguments, {}, station), kFailed, "would replace a file that this run uses: " + row.used);
    EXPECT_EQ(directory_.Read("station/" + row.used), before);
  }
}

TEST_F(HyldenRunProgram, LogsARunOnTheBenchAsSimulatedAndWithTheRealTime) {
  const std::string station = CopiedStation();
  directory_.Write("home/Hylden.ini", "[System]\r\nLogToFile=1\r\n");
  setenv("HYLDEN_HOME", directory_.File("home").c_str(), 1);
  const std::string begin = LogTime();
  const Arguments job = OnTheBench({"--test", kTest, "--output", "o.run"}, {"--yes"});
  EXPECT_EQ(HyldenRun(job, {}, station).status, kFinished);
  const std::string end = LogTime();
  unsetenv("HYLDEN_HOME");
  std::size_t told = 0;
  const char* const story[] = {"SIMULATED BENCH", "Test run started", "Frequency sweep finished",
                               "Instruments taken offline"};
  for (const std::string& line : ReadLines(station + "/runlog.hyl")) {
    if (line.find(" - ") != begin.size()) continue;
    EXPECT_GE(line, begin);
    EXPECT_LE(line.substr(0, end.size()), end);
    if (told < std::size(story) && line.find(story[told]) != std::string::npos) ++told;
  }
  EXPECT_EQ(told, std::size(story)) << "in this order";
}

TEST_F(HyldenRunProgram, KeepsAFileThatHasComeMeanwhileAndSavesBesideIt) {
  // The program can't be further ahead than its output fits into the pipe.
  const std::string longTest = LongTest(0.1);
  directory_.Write("out-2.run", "of yesterday");
  const Outcome outcome = Interrupted(
      Test(longTest, {"--yes"}), "step 3 of", [this] { directory_.Write("out.run", "of somebody else"); }, kNone);
  ExpectSaid(outcome, kFailed, "What was recorded goes to " + directory_.File("out-3.run"));
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
    const Outcome outcome = AtTerminal(Test(kTest, {}), [&](const std::string& said) {
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
    ExpectSaid(Interrupted(Test(longTest, {"--yes"}), "step 3 of", {}, signal), kHalted, "Ended early: ");
    EXPECT_GE(LinesOf("out.run"), 3U + 3U);
  }
}

TEST_F(HyldenRunProgram, IsRefusedOnABusThatAnotherProgramHasAndRunsOnTheBenchBesideIt) {
  SingleInstance other("hylden-" + kOwnLock);
  ASSERT_TRUE(other.Claim());
  const Outcome onTheBus = HyldenRun({"--equipment", "station.eqp", "--test", kTest, "--output", Output(), "--yes"});
  EXPECT_EQ(onTheBus.status, kFailed);
  EXPECT_EQ(onTheBus.output, "This application is already running on this computer\n");
  EXPECT_EQ(HyldenRun(Test(kTest, {"--yes"})).status, kFinished);
}

TEST_F(HyldenRunProgram, RunsWithItsStandardStreamsClosed) {
  const pid_t child = fork();
  if (child == 0) {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) close(stream);
    Become(Test(kTest, {"--yes"}));
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, kFinished);
  EXPECT_EQ(LinesOf("out.run"), 67U + 3U);
}

/// The everyday sweep, 0.15 to 230 MHz by 1 MHz: the number of its steps is rounded up to 231, the last is at 230.15
/// MHz.
TEST_F(HyldenRunProgram, CalibratesAndTestsTheEverydaySweepToItsEnd) {
  const std::string station = CopiedStation();
  CalSetupRecord setup;
  LoadRecord(station + "/cdn-10v.csu", setup);
  setup.StepType = StepType::Linear, setup.LinearStep = 1;
  SaveRecord(station + "/everyday.csu", setup, true);
  TestDefinition test;
  LoadRecord(station + "/substitution-am.tst", test);
  test.CalInfoFile = "everyday.hyinfo";
  test.StopFreq = 230, test.StepType = StepType::Linear, test.LinearStep = 1, test.MonitorProbe = true;
  SaveRecord(station + "/everyday.tst", test);

  const auto run = [&](const Arguments& job) { return HyldenRun(OnTheBench(job, {"--yes"}), {}, station); };
  const struct {
    int cableLossEndsAt;  ///< MHz
    const char* steps;
    std::size_t leftOut;  ///< how often the last step is told to be left out
  } rows[] = {{1000, "231 of 231", 0}, {230, "230 of 230", 1}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.steps);
    directory_.Write("station/meter-cable.los", "0.15, 0.05\r\n" + std::to_string(row.cableLossEndsAt) + ", 1.4\r\n");
    const Outcome calibration = run({"--calibrate", "everyday.csu", "--output", "everyday.cal"});
    ExpectSaid(calibration, kFinished, row.steps);
    const Outcome tested = run({"--test", "everyday.tst", "--output", "everyday.run"});
    ExpectSaid(tested, kFinished, row.steps);
    EXPECT_EQ(Count(calibration.output + tested.output, "The last step, 230.15 MHz"), row.leftOut);
    const std::string kept = directory_.Read("station/everyday.cal") + directory_.Read("station/everyday.run");
    EXPECT_EQ((calibration.output + tested.output + kept).find("-999"), std::string::npos);
  }
}

TEST_F(HyldenRunProgram, TakesTheCouplingFactorOfTheSetupUnlessItIsGivenOne) {
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

TEST_F(HyldenRunProgram, KeepsThePointsOfARunThatEndsEarly) {
  const std::string tooLow = Setup([](CalSetupRecord& s) { s.LogStep = 20, s.MaxLevel = -9.5F; });
  ExpectSaid(HyldenRun(Level(tooLow, {"--yes"})), kFailed, "Level requested is higher");
  EXPECT_GE(LinesOf("out.cal"), 3U);
}

TEST_F(HyldenRunProgram, KeepsAnInfoFileThatHasComeMeanwhileAndSavesBothFilesBesideIt) {
  const std::string fine = Setup([](CalSetupRecord& s) { s.LogStep = 0.01; });
  const auto come = [this] { directory_.Write("out.hyinfo", "of somebody else"); };
  ExpectSaid(Interrupted(Level(fine, {"--yes"}), "step 3 of", come), kHalted, "");
  EXPECT_EQ(directory_.Read("out.hyinfo"), "of somebody else");
  EXPECT_FALSE(directory_.Exists("out.cal"));
  EXPECT_GE(LinesOf("out-2.cal"), 3U);
  EXPECT_EQ(LinesOf("out-2.hyinfo"), 6U);
}

TEST_F(HyldenRunProgram, PrintsThePointThatIsTooFewForARecord) {
  const std::string narrow =
      Setup([](CalSetupRecord& s) { s.StepType = StepType::Linear, s.LinearStep = 1, s.StopFreq = 0.2; });
  const Outcome outcome = HyldenRun(Level(narrow, {"--yes"}));
  for (const char* text : {"No data to save", "\n0.15,"}) ExpectSaid(outcome, kFailed, text);
}

TEST_F(HyldenRunProgram, MeasuresACableInTwoPasses) {
  const Outcome outcome = HyldenRun(Cable({"--log-step", "50", "--yes"}));
  ExpectSaid(outcome, kFinished, "Finished: 17 of 17 steps");
  EXPECT_LT(outcome.output.find("Direct pass"), outcome.output.find("Insert pass"));
  EXPECT_EQ(LinesOf("out.los"), 12U + 17U);
}

TEST_F(HyldenRunProgram, PrintsTheReadingsOfAHaltedDirectPass) {
  const Outcome outcome = Interrupted(Cable({"--log-step", "0.01", "--yes"}), "step 3 of");
  ExpectSaid(outcome, kHalted, "0.150 MHz  direct 9");
  EXPECT_EQ(outcome.output.find("Insert pass"), std::string::npos);
  EXPECT_FALSE(directory_.Exists("out.los"));
}

TEST_F(HyldenRunProgram, KeepsEveryReadingOfAHaltedInsertPass) {
  const Outcome outcome = Interrupted(Cable({"--log-step", "0.05", "--yes"}), "Insert pass");
  EXPECT_EQ(outcome.status, kHalted);
  const std::size_t inFile = directory_.Exists("out.los") ? LinesOf("out.los") - 12 : 0;
  const std::size_t printed = Count(outcome.output, "MHz  direct");
  EXPECT_GT(printed, 1000U);
  EXPECT_EQ(inFile + printed, 12'563U);
}

/// A program directory of its own, where the journals are.
class KilledHyldenRun : public HyldenRunProgram {
 protected:
  KilledHyldenRun() { setenv("HYLDEN_HOME", directory_.File("home").c_str(), 1); }
  void TearDown() override { unsetenv("HYLDEN_HOME"); }

  /// The name of the one journal, out of the list.
  static std::string Journal() {
    const Outcome list = HyldenRun({"--recover"});
    EXPECT_EQ(list.status, kFinished);
    EXPECT_EQ(Count(list.output, "\n"), 1U) << list.output;
    return list.output.substr(0, list.output.find(' '));
  }
  Outcome Recover(const std::string& journal, const std::string& output, const Arguments& more = {}) const {
    Arguments arguments = {"--recover", journal, "--output", directory_.File(output)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return HyldenRun(arguments);
  }
  static Arguments To(const std::string& output, Arguments arguments) {
    *(std::find(arguments.begin(), arguments.end(), "--output") + 1) = output;
    return arguments;
  }
};

TEST_F(KilledHyldenRun, LosesNoRowThatWasDone) {
  // More steps than the program can be ahead of what it says: that has to fit into the pipe.
  const Arguments same = {"--yes", "--seed", "7"};
  const struct {
    Arguments job;
    const char* file;
    std::size_t before;    ///< the lines before the rows of a file
    const char* complete;  ///< what it says before the steps that complete a row each
  } rows[] = {{Test(LongTest(0.3), same), "run", 3, "steps, est"},
              {Level(Setup([](CalSetupRecord& s) { s.LogStep = 0.3; }), same), "cal", 0, "steps"},
              {Cable({"--log-step", "0.4", "--yes", "--seed", "7"}), "los", 12, "Insert pass"}};
  for (const auto& row : rows) {
    const std::string whole = std::string("whole.") + row.file, back = std::string("back.") + row.file;
    ASSERT_EQ(HyldenRun(To(directory_.File(whole), row.job)).status, kFinished);
    const auto told = [&](const std::string& said) {
      const std::size_t from = said.find(row.complete);
      return from == std::string::npos ? 0 : Count(said.substr(from), "\nstep ");
    };
    for (const std::size_t step : {2U, 3U, 40U, 120U}) {
      SCOPED_TRACE(std::string(row.file) + " " + std::to_string(step));
      const Outcome killed = HyldenRun(row.job, [&](pid_t child, const std::string& soFar) {
        if (told(soFar) >= step) kill(child, SIGKILL);
      });
      ASSERT_EQ(killed.status, -1) << "it was killed";
      const Outcome recovered = Recover(Journal(), back, {"--yes"});
      EXPECT_EQ(recovered.status, kFinished) << recovered.output;
      auto expected = ReadLines(directory_.File(whole)), got = ReadLines(directory_.File(back));
      EXPECT_GE(got.size(), row.before + told(killed.output));
      ASSERT_LT(got.size(), expected.size());
      expected.resize(got.size());
      if (row.before == 12) expected.front() = got.front();  // the file's own name
      EXPECT_EQ(got, expected);
    }
  }
  EXPECT_EQ(ReadLines(directory_.File("back.hyinfo")).size(), ReadLines(directory_.File("whole.hyinfo")).size());
  EXPECT_NE(HyldenRun({"--recover"}).output.find("No journal waits"), std::string::npos);
}

TEST_F(KilledHyldenRun, LeavesAJournalThatIsNotInUseAndReplacesNoFileUnasked) {
  std::string list, inUse;
  const Outcome killed = HyldenRun(Test(LongTest(0.3), {"--yes"}), [&](pid_t child, const std::string& soFar) {
    if (soFar.find("step 9 of") == std::string::npos) return;
    if (list.empty()) {
      list = HyldenRun({"--recover"}).output;
      inUse = std::filesystem::directory_iterator(directory_.File("home/journals"))->path().stem().string();
      ExpectSaid(HyldenRun({"--discard", inUse}), kFailed, "The journal is in use");
    }
    kill(child, SIGKILL);
  });
  EXPECT_NE(list.find("No journal waits"), std::string::npos) << "while the run is on: " << list;
  const std::string journal = Journal();
  EXPECT_EQ(journal.substr(0, 5), "long_");
  directory_.Write("back.run", "of somebody else");
  ExpectSaid(Recover(journal, "back.run"), kFailed, "back.run exists");
  EXPECT_EQ(directory_.Read("back.run"), "of somebody else");
  ExpectSaid(Recover("none", "x.run"), kFailed, "No such journal");
  ExpectSaid(HyldenRun({"--recover", journal}), kUsage, "--output");
  ExpectSaid(HyldenRun({"--recover", "--output", directory_.File("back.run")}), kUsage, "the name of the journal");
  ExpectSaid(HyldenRun({"--recover", "", "--output", directory_.File("back.run")}), kUsage, "An argument is empty");
  const std::string itself = directory_.File("home/journals/" + journal + ".journal");
  ExpectSaid(HyldenRun({"--recover", journal, "--output", itself, "--yes"}), kFailed, "replace the journal itself");
  ExpectSaid(Recover(journal, "no/back.run"), kFailed, "no/back.run: Path not found");
  ExpectSaid(Recover(journal, "x.run"), kFinished, "saved in");
}

TEST_F(KilledHyldenRun, IsContinuedUntilItsFileIsThatOfAnUndisturbedRun) {
  std::string bench = ReadTextFile(std::string(kStation) + "/bench.txt");
  bench.replace(bench.find("noise_db = 0.05"), 15, "noise_db = 0");
  const auto quiet = [&, file = directory_.Write("quiet.txt", bench)](Arguments arguments, const Arguments& more) {
    *std::find(arguments.begin(), arguments.end(), "bench.txt") = file;
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  };
  const Arguments jobs[] = {Test(LongTest(0.3), {"--yes"}),
                            Level(Setup([](CalSetupRecord& s) { s.LogStep = 0.3; }), {"--yes"})};
  for (const Arguments& job : jobs) {
    SCOPED_TRACE(job.front());
    const std::string file = std::find(job.begin(), job.end(), "--output")[1];
    ASSERT_EQ(HyldenRun(quiet(job, {})).status, kFinished);
    const auto whole = ReadLines(file);
    const auto at = [](const char* step, int signal) {
      // Once: a second one may come when the program has already let go of its signals.
      return [step, signal, sent = false](pid_t child, const std::string& soFar) mutable {
        if (!std::exchange(sent, sent || soFar.find(step) != std::string::npos) && sent) kill(child, signal);
      };
    };
    EXPECT_EQ(HyldenRun(quiet(job, {}), at("step 9 of", SIGKILL)).status, -1);
    const std::string journal = Journal();
    ExpectSaid(HyldenRun(quiet(job, {"--resume", "none"})), kFailed, "No such journal");
    ExpectSaid(HyldenRun(quiet(job, {"--resume", journal, "--cable-loss"})), kUsage, "");
    const Outcome halted = HyldenRun(quiet(job, {"--resume", journal}), at("step 400 of", SIGINT));
    ExpectSaid(halted, kHalted, "The run can be continued: --resume " + journal);
    EXPECT_EQ(halted.output.find("step 7 of"), std::string::npos) << "its row is there";
    EXPECT_LT(ReadLines(file).size(), whole.size());
    EXPECT_EQ(HyldenRun(quiet(job, {"--resume", journal}), at("step 800 of", SIGKILL)).status, -1);
    ExpectSaid(HyldenRun(quiet(job, {"--resume", journal})), kFinished, "Finished: ");
    auto continued = ReadLines(file), expected = whole;
    // A calibration comes from another level at its seams, and ends anywhere within the tolerance.
    const auto frequency = [](std::string& line) { line.resize(line.find(',')); };
    if (job.front() == "--calibrate")
      std::ranges::for_each(continued, frequency), std::ranges::for_each(expected, frequency);
    EXPECT_EQ(continued, expected);
    EXPECT_NE(HyldenRun({"--recover"}).output.find("No journal waits"), std::string::npos);
  }
}

TEST_F(KilledHyldenRun, KeepsTheJournalOfAHaltedRunWhereItIsToBeContinued) {
  for (const bool keeps : {false, true}) {
    Arguments job = Test(LongTest(0.3), {"--yes"});
    if (keeps) job.emplace_back("--keep-journal");
    ExpectSaid(Interrupted(job, "step 9 of"), kHalted, keeps ? "--resume long_" : "Ended early");
    EXPECT_EQ(HyldenRun({"--recover"}).output.find("No journal waits") == std::string::npos, keeps);
  }
  ExpectSaid(HyldenRun(Level("cdn-10v.csu", {"--yes", "--resume", Journal()})), kFailed, "another kind of run");
  ExpectSaid(HyldenRun({"--discard", "none"}), kFailed, "No such journal");
  ExpectSaid(HyldenRun(Test(kTest, {"--yes", "--resume", Journal()})), kFailed,
             "The test definition substitution-am.tst is not the one of then: test definition long.tst.");
  EXPECT_EQ(Journal().substr(0, 5), "long_") << "it waits as before";
  ExpectSaid(HyldenRun({"--discard", Journal()}), kFinished, "Test long.tst, begun ");
  EXPECT_NE(HyldenRun({"--recover"}).output.find("No journal waits"), std::string::npos);
}

TEST_F(KilledHyldenRun, NamesTheJournalOfARunThatCouldNotSaveAndOfOneThatCouldNotBeWritten) {
  std::filesystem::create_directory(directory_.File("to"));
  const Arguments job = To(directory_.File("to/out.run"), Test(LongTest(0.3), {"--yes"}));
  const Outcome unsaved = Interrupted(
      job, "step 3 of", [this] { std::filesystem::remove(directory_.File("to")); }, kNone);
  ExpectSaid(unsaved, kFailed, "hylden-run --recover " + Journal() + " --output FILE");
  std::filesystem::remove_all(directory_.File("home"));
  directory_.Write("home", "a file in the folder's place");
  ExpectSaid(HyldenRun(Test(kTest, {"--yes"})), kFinished, "The journal could not be written: ");
}

}  // namespace
}  // namespace hylden
