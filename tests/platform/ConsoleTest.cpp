#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <sstream>

#include "platform/BellPacer.h"
#include "platform/VirtualTime.h"
#include "platform/console/ConsoleClock.h"
#include "platform/console/ConsoleDialogs.h"
#include "platform/console/ConsoleEventLoop.h"
#include "platform/console/ConsolePrinter.h"
#include "platform/console/ConsoleSpeaker.h"
#include "support/TempDir.h"
#include "text/RuntimeError.h"

namespace hylden {
namespace {

class ConsoleTest : public testing::Test {
 protected:
  ConsoleTest() { NewInput(); }
  ~ConsoleTest() override {
    EndInput();
    close(input_[0]);
  }

  void NewInput() {
    EndInput();
    if (input_[0] >= 0) close(input_[0]);
    EXPECT_EQ(pipe(input_), 0);
  }

  void Type(const std::string& text) {
    EXPECT_EQ(write(input_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  void EndInput() {
    if (input_[1] >= 0) close(input_[1]);
    input_[1] = -1;
  }
  ConsoleDialogs Make(ConsoleDialogsOptions options) { return {input_[0], out_, events_, std::move(options)}; }

  int input_[2] = {-1, -1};
  std::ostringstream out_;
  VirtualClock clock_;
  int stops_ = 0;
  ConsoleEventLoop events_{clock_, [this] { ++stops_; }};
};

using enum MessageButtons;

TEST_F(ConsoleTest, TakesTheButtonThatWasTyped) {
  const struct {
    const char* typed;
    MessageButtons buttons;
    MessageAnswer expected;
  } rows[] = {{"\n", OkCancel, MessageAnswer::Ok},
              {"\x1b\n", OkCancel, MessageAnswer::Cancel},
              {"Cancel\r\n", OkCancel, MessageAnswer::Cancel},
              {"\n\nY\n", YesNo, MessageAnswer::Yes},
              {"what\nn\n", YesNoCancel, MessageAnswer::No},
              {"\n", YesNo, MessageAnswer::No},
              {"\n", RetryCancel, MessageAnswer::Cancel},
              {"r\n", RetryCancel, MessageAnswer::Retry},
              {"", Ok, MessageAnswer::Ok},
              {"y", YesNo, MessageAnswer::No}};
  for (const auto& row : rows) {
    NewInput();
    Type(row.typed);
    EndInput();
    ConsoleDialogs dialogs = Make({.terminal = true});
    EXPECT_EQ(dialogs.Show({"Go on?", {}, MessageIcon::Question, row.buttons}), row.expected) << row.typed;
  }
}

TEST_F(ConsoleTest, ConfirmsOnlyWhatWasNamedWithoutATerminalAndPrintsTheAnswerThatNobodyTyped) {
  Type("y\ny\ny\n");
  ConsoleDialogs dialogs = Make({.confirmedTitles = {"Run Test"}});
  EXPECT_EQ(dialogs.Show({"RF on?", "Run Test", MessageIcon::None, YesNo}), MessageAnswer::Yes);
  EXPECT_EQ(dialogs.Show({"Other?", "Other", MessageIcon::None, OkCancel}), MessageAnswer::Cancel);
  EXPECT_EQ(dialogs.Show({"Again?", "", MessageIcon::None, RetryCancel}), MessageAnswer::Cancel);
  EXPECT_EQ(dialogs.Show({"Done", {}}), MessageAnswer::Ok);
  EXPECT_EQ(out_.str(),
            "Run Test:\nRF on?\n[Yes]\nOther:\nOther?\n[Cancel] Nobody is at a terminal to answer.\n"
            "Again?\n[Cancel] Nobody is at a terminal to answer.\nDone\n");
  EXPECT_EQ(dialogs.Show({"RF on?", "Start", MessageIcon::None, YesNo}), MessageAnswer::No);
  EXPECT_EQ(dialogs.InputBox("How much?", "Level", "10"), std::nullopt);
  EXPECT_EQ(dialogs.SaveFile({"Save run data", ""}), std::nullopt);
}

TEST_F(ConsoleTest, ARequestToStopDeclinesTheOpenQuestionAndAllThatFollow) {
  ConsoleDialogs dialogs = Make({.terminal = true});
  raise(SIGINT);
  EXPECT_EQ(dialogs.Show({"RF on?", "Start", MessageIcon::None, OkCancel}), MessageAnswer::Cancel);
  EXPECT_EQ(stops_, 1);
  Type("y\n");
  EXPECT_EQ(dialogs.Show({"Again?", "Start", MessageIcon::None, YesNo}), MessageAnswer::No) << "nobody may be there";
}

TEST_F(ConsoleTest, SavesToTheGivenPathOnce) {
  ConsoleDialogs dialogs = Make({.savePath = [] { return "/data/a.run"; }});
  EXPECT_EQ(dialogs.SaveFile({"Save", ""}), "/data/a.run");
  // A path that could not be written must not be offered for ever.
  EXPECT_EQ(dialogs.SaveFile({"Save", ""}), std::nullopt);
}

TEST_F(ConsoleTest, TextIsFreeOfTerminalControlsAndEndsAnOpenProgressLine) {
  ConsoleDialogs dialogs = Make({.beforeText = [this] { out_ << "|"; }});
  dialogs.Show({"Meter says \x1b[2J1.5\r\nibsta = &H8100\rend", "Error", MessageIcon::Critical});
  EXPECT_EQ(out_.str(), "|Error:\nMeter says [2J1.5\nibsta = &H8100\nend\n");
}

TEST_F(ConsoleTest, AnInputBoxKeepsItsTextOnEnter) {
  Type("\n12.5\n");
  EndInput();
  ConsoleDialogs dialogs = Make({.terminal = true});
  EXPECT_EQ(dialogs.InputBox("Address", "Meter", "18"), "18");
  EXPECT_EQ(dialogs.InputBox("Address", "Meter", "18"), "12.5");
  EXPECT_EQ(dialogs.InputBox("Address", "Meter", "18"), std::nullopt);
}

TEST_F(ConsoleTest, StopSignalRunsTheCallbackInTheProgramsOwnTurn) {
  int stops = 0;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPWR, SIGXCPU}) {
    raise(signal);
    EXPECT_EQ(stops_, stops) << signal;
    signal == SIGINT ? events_.Repaint() : events_.Yield();  // also during a bus call
    events_.Yield();
    EXPECT_EQ(stops_, ++stops) << signal;
    EXPECT_TRUE(events_.StopRequested());
  }
}

TEST_F(ConsoleTest, NoOtherSignalThanAFaultOfItsOwnEndsOrFreezesTheProgram) {
  for (int number = 1; number <= SIGRTMAX; ++number) {
    constexpr int kOwn[] = {SIGINT, SIGTERM, SIGHUP,  SIGQUIT, SIGPWR, SIGXCPU, SIGKILL, SIGSTOP,
                            SIGILL, SIGTRAP, SIGABRT, SIGBUS,  SIGFPE, SIGSEGV, SIGSYS};
    const bool ofTheLibrary = number > SIGSYS && number < SIGRTMIN;
    if (!ofTheLibrary && std::find(std::begin(kOwn), std::end(kOwn), number) == std::end(kOwn)) raise(number);
  }
  events_.Yield();
  EXPECT_FALSE(events_.StopRequested());
}

TEST_F(ConsoleTest, ASecondEventLoopCannotTakeTheSignalsAway) {
  EXPECT_THROW(ConsoleEventLoop(clock_, {}), RuntimeError);
  raise(SIGTERM);
  events_.Yield();
  EXPECT_EQ(stops_, 1);
}

TEST(ConsolePrinterFile, KeepsEveryJobOfTheRunAndReplacesAnOlderFile) {
  TempDir directory;
  directory.Write("out.txt", "old");
  ConsolePrinter printer(directory.File("out.txt"));
  printer.Print({.title = "one", .lines = {{"first"}, {"line"}}});
  printer.Print({.title = "two", .lines = {{"second"}}});
  EXPECT_EQ(directory.Read("out.txt"), "first\r\nline\r\n\fsecond\r\n");
  ConsolePrinter nowhere(directory.File("missing/out.txt"));
  EXPECT_THROW(nowhere.Print({.title = "lost", .lines = {{"x"}}}), RuntimeError);
}

TEST(ConsoleSpeakerPipe, StaysSilentWhereNoTerminalIs) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ConsoleSpeaker(ends[1]).Beep(800, 200);
  pollfd reader{ends[0], POLLIN, 0};
  EXPECT_EQ(poll(&reader, 1, 0), 0) << "a bell in a log file";
  close(ends[0]);
  close(ends[1]);
}

TEST(ConsoleSpeakerTerminal, RingsOnceForTheManyTonesOfAnAlarm) {
  const int master = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_GE(master, 0);
  ASSERT_EQ(grantpt(master) | unlockpt(master), 0);
  const int terminal = open(ptsname(master), O_RDWR | O_NOCTTY);
  ASSERT_GE(terminal, 0);
  ConsoleSpeaker speaker(terminal);
  for (int i = 0; i < 40; ++i) speaker.Beep(800 + i, 50);
  char bells[64] = {};
  EXPECT_EQ(read(master, bells, sizeof bells), 1);
  EXPECT_EQ(bells[0], '\a');
  close(terminal);
  close(master);
}

TEST(BellPacer, RingsAgainWhenTheTonesWouldHaveEnded) {
  BellPacer pacer;
  EXPECT_TRUE(pacer.Rings(10'000, 50));
  EXPECT_FALSE(pacer.Rings(10'000, 50));
  EXPECT_FALSE(pacer.Rings(10'099, 50));
  EXPECT_TRUE(pacer.Rings(10'150, 2000));
}

TEST(ConsoleClockLocal, TimeOfDayAndDateTellTheSameTime) {
  const ConsoleClock clock;
  for (int attempt = 0; attempt < 3; ++attempt) {  // the second may change in between
    const LocalTime now = clock.Now();
    const double seconds = clock.SecondsSinceMidnight();
    const int whole = now.hour * 3600 + now.minute * 60 + now.second;
    if (static_cast<int>(seconds) == whole) return;
  }
  FAIL() << "Now and SecondsSinceMidnight differ";
}

}  // namespace
}  // namespace hylden
