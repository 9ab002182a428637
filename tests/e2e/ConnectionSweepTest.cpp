// A whole run through a GPIB adapter, or over a socket for each instrument, whose connection breaks at any message.

#include "platform/AbsentGpib.h"
#include "platform/BusRouter.h"
#include "platform/native/GpibAdapter.h"
#include "platform/native/SocketInstrument.h"
#include "support/ServedStream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/ServedAdapter.h"
#include "bench/ServedInstrument.h"
#include "e2e/DemoRuns.h"

namespace hylden {
namespace {

using Kind = ConnectionBreak::Kind;

/// Passes every call on to a driver. Around the break, and behind it, time limits are short: only there does anything
/// take as long as its limit.
class HurriedNear : public GpibDriver {
 public:
  HurriedNear(GpibDriver& inner, const ServedBus& bus) : inner_(inner), bus_(bus) {}

  int nearMessage = 1'000'000'000;
  /// What the calls would have waited that took as long as their limit, s.
  double FrozenSeconds() const { return frozenSeconds_; }

  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override {
    return inner_.RegisterGpibGlobalsForThread(cells);
  }
  int UnregisterGpibGlobalsForThread() override { return inner_.UnregisterGpibGlobalsForThread(); }
  void SendIFC(int board) override {
    Timed([&] { inner_.SendIFC(board); });
  }
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override {
    Timed([&] { inner_.FindLstn(board, addresses, results); });
  }
  void SetRWLS(int board, std::span<const std::int16_t> addresses) override {
    Timed([&] { inner_.SetRWLS(board, addresses); });
  }
  void EnableLocal(int board, std::span<const std::int16_t> addresses) override {
    Timed([&] { inner_.EnableLocal(board, addresses); });
  }
  void Send(int board, int address, std::string_view bytes, int eotMode) override {
    Timed([&] { inner_.Send(board, address, bytes, eotMode); });
  }
  void Receive(int board, int address, std::span<char> buffer, int termination) override {
    Timed([&] { inner_.Receive(board, address, buffer, termination); });
  }
  void ibtmo(int board, int code) override {
    code_ = code;
    inner_.ibtmo(board, code);
  }
  std::string Advice() const override { return inner_.Advice(); }

 private:
  struct Limit {
    double Seconds;
    int ShortCode, ShortMs;
  };
  static constexpr int kNoTime = 1;  // the code of a limit that is over at once

  template <class Call>
  void Timed(Call call) {
    using namespace std::chrono;
    constexpr int kMostInOneCall = 20;
    static const std::map<int, Limit> kLimits = {{8, {0.03, 5, 1}}, {9, {0.1, 5, 1}}, {10, {0.3, 5, 1}},
                                                 {11, {1, 6, 3}},   {12, {3, 7, 10}}, {13, {10, 8, 30}}};
    const Limit& limit = kLimits.at(code_);
    const bool isNear = bus_.Messages() + kMostInOneCall >= nearMessage;
    if (isNear) inner_.ibtmo(0, limit.ShortCode);
    if (!isNear && code_ == gpib::kT30ms) inner_.ibtmo(0, kNoTime);  // reading away what is not there
    const auto start = steady_clock::now();
    call();
    if (isNear && steady_clock::now() - start >= milliseconds(limit.ShortMs)) frozenSeconds_ += limit.Seconds;
  }

  GpibDriver& inner_;
  const ServedBus& bus_;
  int code_ = gpib::kT10s;
  double frozenSeconds_ = 0;
};

enum class Way { Bus, Adapter, Sockets };

/// The demo station on a served bench, with a run of five steps: by net power, with the induced current limited, AM.
struct ServedRuns : DemoRuns {
  explicit ServedRuns(Way way) : hurried(way == Way::Adapter ? static_cast<GpibDriver&>(adapter) : sockets, bus) {
    if (way != Way::Bus) driver.PassTo(hurried);
    Load("net-power-fm.tst");
    TestDefinition& test = Test();
    test.StartFreq = 20, test.StopFreq = 24, test.StepType = StepType::Linear, test.LinearStep = 1;
    test.SweepDwell = 0.5;
    test.ModType = Modulation::Am, test.AmDepth = 80, test.AmModFreq = 1;
    test.ModOffBetweenFreqs = test.MonitorProbe = test.LimitCurrent = true;
    test.LimitMargin = 3, test.EUTCircuitImpedance = 150;
    test.InitLevOffset = -6, test.LevelInc = 10, test.InterDwell = 0.1F;
    bench.Connect(MeterAt::Probe);
  }

  void RunBreaking(const ConnectionBreak& at) {
    bus.Break(at);
    hurried.nearMessage = at.Message;
    Run();
  }
  std::vector<std::string> CompletedSteps() const {
    std::vector<std::string> steps;
    for (const RunEntry& entry : Rows())
      if (const RunRow row = CellsOf(entry); !row[1].empty()) steps.push_back(testing::PrintToString(row));
    return steps;
  }
  std::vector<std::string> Failures() const {
    std::vector<std::string> texts;
    for (const Message& message : dialogs.messages)
      if (!message.title.starts_with("Save ") && message.text != "No run data to save") texts.push_back(message.text);
    return texts;
  }

  ServedBus bus{bench.Bus(), clock};
  GpibAdapter adapter{std::make_unique<ServedStream>([this] { return std::make_unique<ServedAdapter>(bus); }, clock)};
  std::vector<int> written;  ///< to which instrument each message went over a socket
  SocketInstrument generator{StreamTo(18)}, meter{StreamTo(13)}, powerMeter{StreamTo(14)};
  AbsentGpib nobody{"There is no other."};
  BusRouter sockets{nobody, {{18, &generator}, {13, &meter}, {14, &powerMeter}}};
  HurriedNear hurried;

 private:
  std::unique_ptr<ServedStream> StreamTo(int address) {
    auto stream = std::make_unique<ServedStream>(
        [this, address] { return std::make_unique<ServedInstrument>(bus, address); }, clock);
    stream->onWrite = [this, address] { written.push_back(address); };
    return stream;
  }
};

struct Broken {
  const char* name;
  Way way;
  Kind kind;
};

void PrintTo(const Broken& broken, std::ostream* out) {
  *out << broken.name;
}

TEST(ServedBench, GivesTheSameRowsOverEveryWay) {
  const auto steps = [](Way way) {
    ServedRuns station(way);
    station.Run();
    station.ExpectAtRest();
    return station.CompletedSteps();
  };
  const std::vector<std::string> expected = steps(Way::Bus);
  EXPECT_EQ(expected.size(), 5U);
  for (const Way way : {Way::Adapter, Way::Sockets}) EXPECT_EQ(steps(way), expected);
}

class ConnectionSweep : public testing::TestWithParam<Broken> {};

TEST_P(ConnectionSweep, EndsTheRunSoonWithOneMessageRfOffAndItsRows) {
  constexpr double kTwoTimeLimits = 20;
  const auto [name, way, kind] = GetParam();
  // A call has other numbers of messages, so every call comes in turn; HYLDEN_SWEEP=every leaves none out.
  const char* const sweep = std::getenv("HYLDEN_SWEEP");
  const bool everyMessage = sweep && std::string_view(sweep) == "every";
  const int stride = everyMessage ? 1 : way == Way::Adapter ? 11 : 3;
  ServedRuns undisturbed(way);
  undisturbed.Run();
  ASSERT_EQ(undisturbed.Failures(), std::vector<std::string>());
  const std::vector<std::string> steps = undisturbed.CompletedSteps();
  ASSERT_EQ(steps.size(), 5U);
  // A socket is told nothing of what becomes of a message: the last step may lack what got lost, and a generator that
  // takes everything and does nothing looks like one that works.
  const std::size_t doubtful = way == Way::Sockets ? 1 : 0;
  const auto looksWell = [&](int message) {
    return way == Way::Sockets && kind == Kind::Hang &&
           undisturbed.written.at(static_cast<std::size_t>(message - 1)) == 18;
  };
  int ended = 0;
  for (int message = 1; message <= undisturbed.bus.Messages(); message += stride) {
    if (looksWell(message)) continue;
    SCOPED_TRACE("message " + std::to_string(message) + " of " + std::to_string(undisturbed.bus.Messages()));
    ServedRuns station(way);
    station.RunBreaking({kind, message});
    EXPECT_FALSE(station.RfIsOn());
    EXPECT_FALSE(station.instruments.sigGen.RfIsOn());
    EXPECT_LE(station.hurried.FrozenSeconds(), kTwoTimeLimits);
    const std::vector<std::string> rows = station.CompletedSteps(), failures = station.Failures();
    const bool finished = station.engine.Outcome() == RunOutcome::Finished;
    EXPECT_TRUE(failures.size() == 1 || (finished && failures.empty())) << testing::PrintToString(failures);
    ASSERT_LE(rows.size(), steps.size());
    const std::size_t sure = rows.size() - std::min(doubtful, rows.size());
    EXPECT_TRUE(std::equal(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(sure), steps.begin()));
    if (!finished) ++ended;
  }
  EXPECT_GT(ended, 10);
}

INSTANTIATE_TEST_SUITE_P(Served, ConnectionSweep,
                         testing::Values(Broken{"adapter_closes", Way::Adapter, Kind::Close},
                                         Broken{"adapter_hangs", Way::Adapter, Kind::Hang},
                                         Broken{"adapter_garbles", Way::Adapter, Kind::Garble},
                                         Broken{"socket_closes", Way::Sockets, Kind::Close},
                                         Broken{"socket_hangs", Way::Sockets, Kind::Hang},
                                         Broken{"socket_garbles", Way::Sockets, Kind::Garble}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace hylden
