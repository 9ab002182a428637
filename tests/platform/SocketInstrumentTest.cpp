#include "platform/native/SocketInstrument.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/StreamDriver.h"

namespace hylden {
namespace {

using Reply = ScriptedPeer::Reply;
using Socket = StreamDriver<SocketInstrument>;

constexpr int kCr = 13, kLf = 10;

TEST(SocketInstrument, EndsEachMessageWithOneLineFeed) {
  ScriptedPeer peer;
  Socket socket(peer);
  ASSERT_TRUE(socket.Clear()) << socket.driver.Advice();
  for (const std::string text : {"RF OFF", "FREQ 1\r\n", "LVL 2\r", ""}) {
    EXPECT_TRUE(socket.Send(text));
    EXPECT_EQ(socket.cells.status, gpib::kCmpl | gpib::kCic);
    EXPECT_EQ(socket.cells.longCount, static_cast<int>(text.size()));
  }
  EXPECT_EQ(peer.HeardUpTo("LVL 2\r\n"), "RF OFF\nFREQ 1\r\nLVL 2\r\n");
}

struct Read {
  int Termination;
  std::size_t Size;
  std::string Expected;
  bool Ends;
};
struct AnswerCase {
  const char* Name;
  std::string Said;
  std::vector<Read> Reads;
};
class SocketAnswer : public testing::TestWithParam<AnswerCase> {};
INSTANTIATE_TEST_SUITE_P(
    Socket, SocketAnswer,
    testing::Values(AnswerCase{"up_to_line_feed", "1.5\n", {{gpib::kStopEnd, 64, "1.5\n", true}}},
                    AnswerCase{"terminated", "1.5\r\n", {{kLf, 64, "1.5\r\n", true}}},
                    AnswerCase{"one_at_a_time", "1\n2\n", {{kLf, 64, "1\n", true}, {gpib::kStopEnd, 64, "2\n", true}}},
                    AnswerCase{
                        "no_line_feed_behind_cr", "1\r\n2\r\n", {{kCr, 64, "1\r", true}, {kCr, 64, "2\r", true}}},
                    AnswerCase{"cr_alone", "1\r2\r", {{kCr, 64, "1\r", true}, {kCr, 64, "2\r", true}}},
                    AnswerCase{"rest_of_a_long_one",
                               "12345\n6\n",
                               {{kLf, 3, "123", false}, {kLf, 3, "45\n", true}, {kLf, 3, "6\n", true}}},
                    AnswerCase{"full_to_the_end", "12\n3\n", {{kLf, 3, "12\n", true}, {kLf, 3, "3\n", true}}}),
    [](const auto& answer) { return std::string(answer.param.Name); });

TEST_P(SocketAnswer, IsReadToItsEndAndTheRestStays) {
  ScriptedPeer peer([&](const std::string&) { return Reply{GetParam().Said}; });
  Socket socket(peer);
  ASSERT_TRUE(socket.Clear() && socket.Send("?"));
  for (const Read& read : GetParam().Reads) {
    EXPECT_EQ(socket.Receive(read.Termination, read.Size), read.Expected);
    EXPECT_TRUE(socket.Ok());
    EXPECT_EQ(socket.Ended(), read.Ends);
  }
  socket.Hurry();
  EXPECT_EQ(socket.Receive(gpib::kStopEnd), "");
  EXPECT_TRUE(socket.IsLate());
}

TEST(SocketInstrument, TimesOutWithWhatCameOfAnAnswer) {
  ScriptedPeer peer([](const std::string&) { return Reply{"12.3"}; });
  Socket socket(peer);
  ASSERT_TRUE(socket.Clear() && socket.Send("?"));
  EXPECT_EQ(socket.Receive(kLf, 2), "12");  // it has come
  socket.Hurry();
  EXPECT_EQ(socket.Receive(kLf), ".3");
  EXPECT_TRUE(socket.IsLate());
  EXPECT_EQ(socket.driver.Advice(), "");
}

/// Answers each message by its number, and nothing while it is silent.
struct LateLine : ByteStream {
  Outcome Open(Deadline) override { return isOpen = true, Outcome::Done; }
  bool IsOpen() const override { return isOpen; }
  Outcome Write(std::string_view, Deadline) override { return said += std::to_string(++count) + "\n", Outcome::Done; }
  Outcome Read(std::string& bytes, std::size_t, Deadline) override {
    if (isSilent || said.empty()) return Outcome::TimedOut;
    bytes += std::exchange(said, {});
    return Outcome::Done;
  }
  std::string Fault() const override { return {}; }
  std::string Name() const override { return "tcp:late:1"; }

  bool isOpen = false, isSilent = true;
  int count = 0;
  std::string said;
};

TEST(SocketInstrument, TakesNoLateAnswerForThatOfTheNextQuestion) {
  auto stream = std::make_unique<LateLine>();
  LateLine& line = *stream;
  Socket socket(std::move(stream));
  ASSERT_TRUE(socket.Clear() && socket.Send("FIRST?"));
  socket.Receive(kLf);
  EXPECT_TRUE(socket.IsLate());
  line.isSilent = false;
  ASSERT_TRUE(socket.Send("SECOND?"));
  EXPECT_EQ(socket.Receive(kLf), "2\n");
}

TEST(SocketInstrument, ReadsNoMoreThanItIsAskedForOfAnAnswerWithoutEnd) {
  ScriptedPeer peer([](const std::string&) { return Reply{std::string(1 << 20, 'x')}; });
  Socket socket(peer);
  ASSERT_TRUE(socket.Clear() && socket.Send("?"));
  EXPECT_EQ(socket.Receive(kLf), std::string(64, 'x'));
  EXPECT_FALSE(socket.Ended());
  ASSERT_TRUE(socket.Clear() && socket.Send("?")) << "clearing the interface leaves it behind";
}

TEST(SocketInstrument, FailsInWordsWhenItClosesInAnAnswerAndConnectsAgainForTheNextCommand) {
  ScriptedPeer peer([](const std::string& line) { return line == "?" ? Reply{"12", true} : Reply{}; });
  Socket socket(peer);
  ASSERT_TRUE(socket.Clear() && socket.Send("?"));
  EXPECT_EQ(socket.Receive(kLf), "12");
  EXPECT_TRUE(socket.IsLost());
  EXPECT_NE(socket.driver.Advice().find("the other end closed it"), std::string::npos) << socket.driver.Advice();
  EXPECT_NE(socket.driver.Way(18).find("is lost"), std::string::npos) << socket.driver.Way(18);
  EXPECT_FALSE(socket.Send("RF OFF")) << "the command before may have been lost";
  EXPECT_TRUE(socket.IsLost());
  EXPECT_EQ(peer.HeardUpTo("RF OFF\n"), "?\nRF OFF\n") << "it is sent all the same";
  EXPECT_TRUE(socket.Send("RF OFF"));
  EXPECT_EQ(peer.Connections(), 2);
  EXPECT_EQ(socket.driver.Way(18), "socket:127.0.0.1:" + std::to_string(peer.Port()) + ", connected");
}

TEST(SocketInstrument, DoesNotJoinTheHalfOfACommandWithTheNextOne) {
  ScriptedPeer peer({}, ScriptedPeer::On::DeafPort);
  Socket socket(peer);
  ASSERT_TRUE(socket.Clear());
  socket.Hurry();
  EXPECT_FALSE(socket.Send(std::string(std::size_t{32} << 20, 'x')));
  EXPECT_TRUE(socket.IsLate());
  EXPECT_TRUE(socket.Send("RF OFF")) << "on a connection of its own";
}

TEST(SocketInstrument, HasNothingToReadOnAConnectionThatIsMadeAgain) {
  ScriptedPeer peer([](const std::string&) { return Reply{"", true}; });
  Socket socket(peer);
  ASSERT_TRUE(socket.Clear() && socket.Send("?"));
  EXPECT_EQ(socket.Receive(kLf), "");
  EXPECT_TRUE(socket.IsLost());
  EXPECT_EQ(socket.Receive(kLf), "");
  EXPECT_TRUE(socket.IsLost());
  EXPECT_NE(socket.driver.Advice().find("it stands again"), std::string::npos) << socket.driver.Advice();
}

TEST(SocketInstrument, IsFoundWhereItsConnectionStandsOrCanBeMadeAgain) {
  const std::array<std::int16_t, 3> addresses{0, 18, gpib::kNoAddr};
  std::array<std::int16_t, 2> found{};
  ScriptedPeer peer([](const std::string& line) { return Reply{"late\n", line == "BYE"}; });
  Socket socket(peer);
  socket.driver.FindLstn(0, addresses, found);
  EXPECT_TRUE(socket.Ok());
  EXPECT_EQ(found[0], 18);
  ASSERT_TRUE(socket.Send("BYE"));
  ASSERT_TRUE(peer.HasHungUp());
  socket.driver.FindLstn(0, addresses, found);
  EXPECT_TRUE(socket.Ok());
  ASSERT_TRUE(socket.Send("?")) << "an instrument that was switched off and on is there for the next run";
  EXPECT_EQ(socket.Receive(kLf), "late\n");
}

TEST(SocketInstrument, TellsThatNothingAnswersAtItsAddress) {
  const int port = ScriptedPeer::FreePort();
  Socket socket(std::make_unique<TcpStream>("127.0.0.1", port));
  const std::string fault = "Nothing answers at 127.0.0.1:" + std::to_string(port) + ": connection refused.";
  const std::array<std::int16_t, 3> addresses{0, 18, gpib::kNoAddr};
  std::array<std::int16_t, 2> found{};
  EXPECT_FALSE(socket.Clear());
  EXPECT_TRUE(socket.IsLost());
  EXPECT_TRUE(socket.driver.Advice().starts_with(fault)) << socket.driver.Advice();
  EXPECT_FALSE(socket.Send("RF OFF"));
  EXPECT_TRUE(socket.IsLost());
  socket.driver.FindLstn(0, addresses, found);
  EXPECT_EQ(socket.cells.error, gpib::kEnol);
  EXPECT_TRUE(socket.driver.Advice().starts_with(fault)) << socket.driver.Advice();
}

TEST(SocketInstrument, HasNoSecondBoard) {
  ScriptedPeer peer;
  Socket socket(peer);
  socket.driver.Send(1, 18, "RF ON", gpib::kDabEnd);
  EXPECT_EQ(socket.cells.error, gpib::kEneb);
  EXPECT_EQ(peer.Connections(), 0);
}

}  // namespace
}  // namespace hylden
