#include "platform/BusTrace.h"

#include <gmock/gmock.h>

#include "platform/GpibStatus.h"
#include "platform/TracedGpib.h"
#include "platform/VirtualTime.h"
#include "support/ScriptedBus.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

constexpr int kErr = gpib::kErr, kTimo = gpib::kTimo, kEnd = gpib::kEnd;

struct LineCase {
  BusEvent event;
  const char* line;
};

BusEvent Event(BusCall call, int address, const std::string& bytes, int argument = 0, GpibStatusCells status = {}) {
  return {call, address, 9 * 3600 + 0.1253, 2, bytes, {}, bytes.size(), argument, status};
}

TEST(Manual, ExplainsEveryFailureOfTheBus) {
  const std::string manual = ReadTextFile(HYLDEN_SOURCE_DIR "/help/hylden.md");
  for (int code = 0; code < 32; ++code) {
    const std::string name = GpibMnemonics({.status = kErr, .error = code});
    if (!name.starts_with("error ")) {
      EXPECT_THAT(manual, testing::HasSubstr(name));
    }
  }
}

BusEvent Cut(BusEvent event, std::size_t count) {
  event.Count = count;
  return event;
}

BusEvent Found(BusEvent event, const std::string& found) {
  event.Found = found;
  return event;
}

TEST(BusLine, IsExactAndHasOneReading) {
  const int none = BusEvent::kNoAddress;
  const LineCase cases[] = {
      {Event(BusCall::Send, 18, "FREQ 1\r\n", gpib::kDabEnd), R"(-> 18 "FREQ 1\r\n" 8 EOI, 2 ms)"},
      {Event(BusCall::Send, 7, "A", 0), R"(->  7 "A" 1, 2 ms)"},
      {Event(BusCall::Send, 18, "A", gpib::kDabEnd, {kErr, gpib::kEnol, 0, 0}), R"(-> 18 "A" 1 ENOL, 2 ms)"},
      {Event(BusCall::Send, 18, "A", gpib::kDabEnd, {kErr, 8, 0, 0}), R"(-> 18 "A" 1 error 8, 2 ms)"},
      {Event(BusCall::Receive, 13, "\\n\n\t\"\x01\xB5", gpib::kStopEnd, {kEnd, 0, 6, 6}),
       R"(<- 13 "\\n\n\t\"\x01\xB5" 7 EOI, 2 ms)"},
      {Event(BusCall::Receive, 13, "7\n", '\n', {kEnd, 0, 2, 2}), R"(<- 13 "7\n" 2 END, 2 ms)"},
      {Event(BusCall::Receive, 13, "", '\n', {kErr | kTimo, gpib::kEabo, 0, 0}), R"(<- 13 "" 0 EABO TIMO, 2 ms)"},
      {Cut(Event(BusCall::Receive, 13, "ab"), 5000), R"(<- 13 "ab"... 5000, 2 ms)"},
      {Event(BusCall::Clear, none, "", 0, {kErr, gpib::kEdvr, 0, 0}), "--    interface clear EDVR, 2 ms"},
      {Found(Event(BusCall::Find, none, "0..30"), "7 13"), "--    find 0..30: 7 13, 2 ms"},
      {Event(BusCall::Find, 18, "0 18"), "-- 18 find 0 18: none, 2 ms"},
      {Event(BusCall::Remote, 18, "18"), "-- 18 remote 18, 2 ms"},
      {Event(BusCall::Local, 18, "18"), "-- 18 local 18, 2 ms"},
      {Event(BusCall::TimeLimit, none, "", gpib::kT10s), "--    time limit 10 s, 2 ms"},
      {Event(BusCall::TimeLimit, none, "", 99), "--    time limit code 99, 2 ms"},
      {Event(BusCall::Register, none, "", 1), "--    register: 1, 2 ms"},
      {Event(BusCall::Note, none, "no library"), "--    note: no library"},
  };
  for (const LineCase& c : cases) EXPECT_EQ(LineOf(c.event), std::string("09:00:00.125 ") + c.line);
}

/// A bus on which every call takes a while, and whose library talks.
class SlowBus : public ScriptedBus {
 public:
  explicit SlowBus(VirtualClock& clock) : clock_(clock) {}
  std::string TakeChatter() override { return std::exchange(chatter, {}); }
  std::string Way(int address) const override { return "way " + std::to_string(address); }
  void ibtmo(int board, int code) override {
    clock_.Advance(7);
    ScriptedBus::ibtmo(board, code);
  }
  std::string chatter;

 private:
  VirtualClock& clock_;
};

struct Traced : testing::Test {
  VirtualClock clock;
  SlowBus bus{clock};
  TracedGpib driver{bus, clock};
  GpibStatusCells cells;

  std::vector<std::string> Lines() {
    std::vector<std::string> lines;
    const BusTrace& trace = driver.Trace();
    for (auto number = trace.Begin(); number < trace.End(); ++number) lines.push_back(LineOf(trace[number]).substr(13));
    return lines;
  }
};

TEST_F(Traced, EveryCallReachesTheDriverAndIsKeptInItsOrder) {
  bus.Answer(13, "72.5\n");
  std::array<std::int16_t, 2> found{};
  std::array<char, 64> buffer{};
  const std::array<std::int16_t, 3> list = {0, 18, gpib::kNoAddr};
  EXPECT_EQ(driver.RegisterGpibGlobalsForThread(cells), 0);
  driver.SendIFC(0);
  driver.FindLstn(0, list, found);
  driver.SetRWLS(0, list);
  driver.Send(0, 18, "RF\n", gpib::kDabEnd);
  driver.ibtmo(0, gpib::kT10s);
  driver.Receive(0, 13, buffer, '\n');
  driver.EnableLocal(0, list);
  EXPECT_EQ(driver.UnregisterGpibGlobalsForThread(), 0);
  EXPECT_EQ(bus.Lines(), (std::vector<std::string>{"IFC", "FIND 18", "REMOTE 18", "> 18 RF\\n", "TMO 13",
                                                   "< 13 72.5\\n", "LOCAL 18"}));
  EXPECT_EQ(Lines(), (std::vector<std::string>{
                         "--    register: 0, 0 ms", "--    interface clear, 0 ms", "-- 18 find 0 18: 18, 0 ms",
                         "-- 18 remote 0 18, 0 ms", R"(-> 18 "RF\n" 3 EOI, 0 ms)", "--    time limit 10 s, 7 ms",
                         R"(<- 13 "72.5\n" 5 END, 0 ms)", "-- 18 local 0 18, 0 ms", "--    unregister: 0, 0 ms"}));
  EXPECT_EQ(driver.Way(7), "way 7");
}

TEST_F(Traced, WhatTheLibraryWroteAndAdvisesStandsBehindItsCall) {
  driver.RegisterGpibGlobalsForThread(cells);
  bus.advice = "There is no board.";
  bus.chatter = "libgpib: error\nin line 1\n";
  bus.FailCall(1, gpib::kEdvr);
  bus.FailCall(2, gpib::kEdvr);
  driver.SendIFC(0);
  driver.SendIFC(0);
  driver.SendIFC(0);
  EXPECT_EQ(Lines(), (std::vector<std::string>{"--    register: 0, 0 ms", "--    interface clear EDVR, 0 ms",
                                               "--    note: libgpib: error in line 1", "--    note: There is no board.",
                                               "--    interface clear EDVR, 0 ms", "--    interface clear, 0 ms"}))
      << "the same advice stands there once";
  EXPECT_EQ(driver.TakeChatter(), "libgpib: error\nin line 1\n") << "whoever tells the failure can still have it";
  EXPECT_EQ(driver.TakeChatter(), "");
}

TEST_F(Traced, ForgetsTheOldestAndCutsWhatIsLong) {
  driver.RegisterGpibGlobalsForThread(cells);
  const BusTrace& trace = driver.Trace();
  driver.Send(0, 18, std::string(5000, 'A'), gpib::kDabEnd);
  EXPECT_EQ(trace[1].Bytes.size(), BusTrace::kBytesKept);
  EXPECT_EQ(trace[1].Count, 5000U);
  for (std::size_t i = 0; i < BusTrace::kCapacity; ++i) driver.Send(0, 7, std::to_string(i), gpib::kDabEnd);
  EXPECT_EQ(trace.End() - trace.Begin(), BusTrace::kCapacity);
  EXPECT_EQ(trace[trace.Begin()].Bytes, "0");
  EXPECT_EQ(trace[trace.End() - 1].Bytes, std::to_string(BusTrace::kCapacity - 1));
  EXPECT_TRUE(trace.LastStatus(18)) << "of a device that has fallen silent, too";
  EXPECT_FALSE(trace.LastStatus(13));
}

}  // namespace
}  // namespace hylden
