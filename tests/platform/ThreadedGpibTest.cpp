#include "platform/native/ThreadedGpib.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <future>
#include <utility>

#include "platform/EventLoop.h"
#include "platform/native/ErrorCapture.h"
#include "support/ScriptedBus.h"

namespace hylden {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kShortest = 1;  // 10 us

/// What the bus and its owner have in common, whoever of them goes first.
struct Held {
  std::promise<void> Release;
  std::shared_future<void> Released = Release.get_future().share();
  std::promise<void> Gone;  ///< the bus was destroyed
  std::vector<std::thread::id> Threads;
};

/// A scripted bus whose reads of address 7 return when they are released.
class HeldBus : public ScriptedBus {
 public:
  explicit HeldBus(std::shared_ptr<Held> held) : held_(std::move(held)) {}
  ~HeldBus() override { held_->Gone.set_value(); }
  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override {
    held_->Threads.push_back(std::this_thread::get_id());
    return ScriptedBus::RegisterGpibGlobalsForThread(cells);
  }
  void Send(int board, int address, std::string_view bytes, int eotMode) override {
    held_->Threads.push_back(std::this_thread::get_id());
    ScriptedBus::Send(board, address, bytes, eotMode);
  }
  void Receive(int board, int address, std::span<char> buffer, int termination) override {
    const ErrorCapture::Scope capturing(capture_);
    if (address == 7) held_->Released.wait();
    ScriptedBus::Receive(board, address, buffer, termination);
  }

 private:
  std::shared_ptr<Held> held_;
  ErrorCapture capture_;
};

struct Turns : EventLoop {
  void Yield(std::int64_t) override {}
  void Repaint() override {
    ++count;
    if (onTurn) std::exchange(onTurn, nullptr)();
  }
  int count = 0;
  std::function<void()> onTurn;  ///< with the next turn
};

class ThreadedGpibTest : public testing::Test {
 protected:
  static constexpr BusPatience kQuick{.Plain = BusPatience::Time(0),
                                      .Turn = BusPatience::Time(100),
                                      .Grace = std::chrono::milliseconds(2),
                                      .Late = BusPatience::Time(0)};

  explicit ThreadedGpibTest(const BusPatience& patience = kQuick)
      : bus_(std::make_unique<ThreadedGpib>(std::move(owned_), events_, patience)) {
    bus_->RegisterGpibGlobalsForThread(cells_);
  }
  ~ThreadedGpibTest() override {
    if (!released_) Release();
  }

  void Release() {
    held_->Release.set_value();
    released_ = true;
  }
  std::string Read(int address) {
    std::string buffer(8, '.');
    bus_->Receive(0, address, buffer, gpib::kStopEnd);
    return buffer;
  }
  void ExpectStatus(int status, int error) {
    EXPECT_EQ(cells_.status, status);
    EXPECT_EQ(cells_.error, error);
  }

  std::shared_ptr<Held> held_ = std::make_shared<Held>();
  std::unique_ptr<HeldBus> owned_ = std::make_unique<HeldBus>(held_);
  HeldBus& inner_ = *owned_;
  Turns events_;
  GpibStatusCells cells_;
  std::unique_ptr<ThreadedGpib> bus_;
  bool released_ = false;
};

TEST_F(ThreadedGpibTest, DoesAllCallsOnOneThreadThatIsNotTheCallers) {
  bus_->Send(0, 18, "A", gpib::kDabEnd);
  bus_->Send(0, 18, "BC", gpib::kDabEnd);
  ASSERT_EQ(held_->Threads.size(), 3u);
  EXPECT_THAT(held_->Threads, testing::Each(held_->Threads[0]));
  EXPECT_NE(held_->Threads[0], std::this_thread::get_id());
  EXPECT_THAT(inner_.Lines(), ElementsAre("> 18 A", "> 18 BC"));
}

TEST_F(ThreadedGpibTest, BringsBackStatusBytesAndAdvice) {
  inner_.Answer(13, "42");
  EXPECT_EQ(Read(13), "42......");
  EXPECT_EQ(cells_.longCount, 2);
  const std::int16_t list[] = {13, gpib::kNoAddr};
  std::int16_t found[2] = {};
  bus_->FindLstn(0, list, found);
  EXPECT_EQ(found[0], 13);
  inner_.FailLine("LOCAL", gpib::kEneb);
  inner_.advice = "No board.";
  bus_->EnableLocal(0, list);
  EXPECT_EQ(cells_.error, gpib::kEneb);
  inner_.advice.clear();
  bus_->ibtmo(0, gpib::kT10s);
  EXPECT_EQ(bus_->Advice(), "No board.") << "still that of the call that failed";
  inner_.ThrowAtCall(1);
  EXPECT_ANY_THROW(bus_->SendIFC(0));
}

TEST_F(ThreadedGpibTest, GivesTheEventLoopTurnsWhileACallTakesLong) {
  inner_.Answer(7, "late");
  events_.onTurn = [this] { events_.onTurn = [this] { Release(); }; };
  events_.count = 0;
  EXPECT_EQ(Read(7), "late....");
  EXPECT_GE(events_.count, 2);
}

TEST_F(ThreadedGpibTest, GivesUpACallThatDoesNotReturnAndRefusesThoseBehindIt) {
  inner_.Answer(7, "late");
  bus_->ibtmo(0, kShortest);
  EXPECT_EQ(Read(7), "........");
  ExpectStatus(gpib::kErr | gpib::kTimo | gpib::kCmpl, gpib::kEabo);
  EXPECT_THAT(bus_->Advice(), HasSubstr("The read to address 7 does not return"));
  bus_->Send(0, 18, "RF OFF", gpib::kDabEnd);
  ExpectStatus(gpib::kErr | gpib::kCmpl, gpib::kEoip);
  EXPECT_THAT(bus_->Advice(), HasSubstr("still busy: The read to address 7"));
  bus_->ibtmo(0, gpib::kT10s);
  ExpectStatus(gpib::kErr | gpib::kCmpl, gpib::kEoip);
  EXPECT_THAT(inner_.Lines(), ElementsAre("TMO 1"));
}

TEST_F(ThreadedGpibTest, ACallThatDoesNotReturnKeepsNothingOfWhatTheProgramTells) {
  bus_->ibtmo(0, kShortest);
  testing::internal::CaptureStderr();
  Read(7);
  std::fputs("RF may be on", stderr);
  bus_.reset();
  Release();
  held_->Gone.get_future().wait();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "RF may be on");
}

TEST_F(ThreadedGpibTest, LeavesACallThatDoesNotReturnToItsThread) {
  bus_->ibtmo(0, kShortest);
  Read(7);
  bus_.reset();
  Release();
  held_->Gone.get_future().wait();
}

TEST_F(ThreadedGpibTest, RfOffGoesOutAfterACallThatTakesItsLimitTwice) {
  bus_->ibtmo(0, gpib::kT100ms);
  Read(7);
  ExpectStatus(gpib::kErr | gpib::kTimo | gpib::kCmpl, gpib::kEabo);
  events_.onTurn = [this] { Release(); };
  bus_->Send(0, 18, "RF OFF", gpib::kDabEnd);
  EXPECT_EQ(cells_.status & gpib::kErr, 0) << bus_->Advice();
  EXPECT_THAT(inner_.Lines(), testing::Contains("> 18 RF OFF"));
}

struct PatientBehindALateCall : ThreadedGpibTest {
  PatientBehindALateCall()
      : ThreadedGpibTest({.Plain = BusPatience::Time(0),
                          .Turn = BusPatience::Time(100),
                          .Grace = BusPatience::Time(0),
                          .Late = std::chrono::hours(1)}) {}
};

TEST_F(PatientBehindALateCall, RfOffGoesOutAfterItUnderTheLimitInForce) {
  bus_->ibtmo(0, kShortest);
  Read(7);
  ExpectStatus(gpib::kErr | gpib::kTimo | gpib::kCmpl, gpib::kEabo);
  bus_->ibtmo(0, gpib::kT10s);
  Release();
  bus_->Send(0, 18, "RF OFF", gpib::kDabEnd);
  EXPECT_EQ(cells_.status & gpib::kErr, 0);
  EXPECT_THAT(inner_.Lines(), ElementsAre("TMO 1", "< 7 !6", "TMO 13", "> 18 RF OFF"));
}

}  // namespace
}  // namespace hylden
