// The buses that all other tests lean on.
#include <gtest/gtest.h>

#include <array>

#include "support/DriverWrappers.h"
#include "support/ScriptedBus.h"

namespace hylden {
namespace {

using Lines = std::vector<std::string>;

class TestBusTest : public testing::Test {
 protected:
  TestBusTest() { bus_.RegisterGpibGlobalsForThread(cells_); }

  std::string Read(GpibDriver& driver, int address, int termination = gpib::kStopEnd) {
    std::array<char, 64> buffer{};
    driver.Receive(0, address, buffer, termination);
    return {buffer.data(), static_cast<std::size_t>(cells_.longCount)};
  }
  void Drain(GpibDriver& driver, int address) {
    driver.ibtmo(0, gpib::kT30ms);
    Read(driver, address);
    driver.ibtmo(0, gpib::kT10s);
  }

  ScriptedBus bus_;
  GpibStatusCells cells_;
};

TEST_F(TestBusTest, ADrainUsesUpNoScriptedAnswerButFindsAStaleOne) {
  bus_.Answer(13, "72.6");
  Drain(bus_, 13);
  bus_.StaleAnswer(13, "old");
  Drain(bus_, 13);
  EXPECT_EQ(Read(bus_, 13), "72.6");
  EXPECT_EQ(bus_.Lines(), (Lines{"TMO 8", "< 13 !6", "TMO 13", "TMO 8", "< 13 old", "TMO 13", "< 13 72.6"}));
}

TEST_F(TestBusTest, ATerminationOrAFullBufferLeavesTheRestInTheDevice) {
  bus_.Answer(13, "1.5\r\n");
  bus_.Answer(13, std::string(100, 'x'));
  EXPECT_EQ(Read(bus_, 13, 13), "1.5\r");
  EXPECT_EQ(Read(bus_, 13, 10), "\n");
  EXPECT_EQ(Read(bus_, 13).size(), 64u);
  EXPECT_FALSE(cells_.status & gpib::kEnd);
  EXPECT_EQ(Read(bus_, 13).size(), 36u);
  EXPECT_EQ(Read(bus_, 13), "");
  EXPECT_TRUE(cells_.status & gpib::kTimo);
}

TEST_F(TestBusTest, FailuresStrikeTheCallThatWasMeantAndNoOther) {
  bus_.FailCall(2, gpib::kEnol);
  bus_.FailLine("> 18 RF", gpib::kEabo);
  for (const char* command : {"A", "B\r\n", "RF ON", "RF ON"}) bus_.Send(0, 18, command, gpib::kDabEnd);
  EXPECT_EQ(bus_.Lines(), (Lines{"> 18 A", "> 18 B\\r\\n !2", "> 18 RF ON !6", "> 18 RF ON"}));
}

TEST_F(TestBusTest, TheWrappersLoseAndGarbleAnswersOfTheBusBehind) {
  FailingDriver failing(bus_);
  RecordingDriver recording(failing);
  recording.RegisterGpibGlobalsForThread(cells_);
  bus_.Answers(13, {"1", "2", "3"});
  failing.GarbleReceive(1, "?");
  failing.SilenceReceive(2);
  failing.FailLine("LOCAL", gpib::kEdvr);
  Drain(recording, 13);
  for (int i = 0; i < 3; ++i) Read(recording, 13);
  recording.EnableLocal(0, std::array<std::int16_t, 3>{0, 13, gpib::kNoAddr});
  EXPECT_EQ(recording.Lines(), (Lines{"TMO 8", "< 13 !6", "TMO 13", "< 13 ?", "< 13 !6", "< 13 3", "LOCAL 13 !0"}));
  EXPECT_EQ(bus_.Lines().back(), "< 13 3") << "a failed call must not reach the bus";
}

}  // namespace
}  // namespace hylden
