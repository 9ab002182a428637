#include "platform/native/GpibAdapter.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "platform/native/SerialStream.h"
#include "support/StreamDriver.h"

namespace hylden {
namespace {

using Reply = ScriptedPeer::Reply;
using Adapter = StreamDriver<GpibAdapter>;

constexpr int kCr = 13, kLf = 10, kT1s = 11;
const std::string kMark = "\x04", kOpened = "++savecfg 0\n++ver\n++ver\n",
                  kSetUp = "++mode 1\n++auto 0\n++eoi 1\n++eos 3\n++eot_char 4\n++eot_enable 1\n++ver\n";

/// What an adapter says to its own commands; each read takes the next of the answers, "" is silence.
ScriptedPeer::Script Answering(std::deque<std::string> answers = {}) {
  return [answers = std::move(answers)](const std::string& line) mutable -> Reply {
    if (line == "++ver") return {"Adapter 1.0\r\n"};
    if (line == "BYE") return {"", true};
    if (!line.starts_with("++read ") || answers.empty()) return {};
    const Reply reply{answers.front()};
    answers.pop_front();
    return reply;
  };
}

TEST(GpibAdapter, SetsItUpAndClearsTheInterface) {
  ScriptedPeer peer(Answering());
  Adapter adapter(peer);
  ASSERT_TRUE(adapter.Clear()) << adapter.driver.Advice();
  EXPECT_EQ(adapter.cells.status, gpib::kCmpl | gpib::kCic);
  EXPECT_EQ(peer.HeardUpTo("++ifc\n++ver\n"), kOpened + kSetUp + "++ifc\n++ver\n");
  EXPECT_EQ(adapter.driver.Way(18), "adapter tcp:127.0.0.1:" + std::to_string(peer.Port()) + ", Adapter 1.0");
}

struct CommandCase {
  const char* Name;
  void (*Call)(Adapter& adapter);
  std::string Heard;
};
class AdapterCommand : public testing::TestWithParam<CommandCase> {};
const std::array<std::int16_t, 3> kAddresses{0, 7, gpib::kNoAddr};
INSTANTIATE_TEST_SUITE_P(
    Adapter, AdapterCommand,
    testing::Values(CommandCase{"message", [](Adapter& a) { a.Send("RF OFF"); },
                                "++addr 18\n++read_tmo_ms 3000\nRF OFF\n++ver\n"},
                    CommandCase{"bytes_of_its_own", [](Adapter& a) { a.Send("+1\r\n\x1b+\xe4"); },
                                "++addr 18\n++read_tmo_ms 3000\n\x1b+1\x1b\r\x1b\n\x1b\x1b\x1b+\xe4\n++ver\n"},
                    CommandCase{"same_address", [](Adapter& a) { a.Send("A"), a.Send("B"); },
                                "++addr 18\n++read_tmo_ms 3000\nA\n++ver\nB\n++ver\n"},
                    CommandCase{"two_addresses", [](Adapter& a) { a.Send("A"), a.Send("B", 7), a.Send("C"); },
                                "++addr 18\n++read_tmo_ms 3000\nA\n++ver\n++addr 7\nB\n++ver\n++addr 18\nC\n++ver\n"},
                    CommandCase{"without_eoi", [](Adapter& a) { a.driver.Send(0, 18, "A", 0); },
                                "++addr 18\n++read_tmo_ms 3000\n++eoi 0\nA\n++eoi 1\n++ver\n"},
                    CommandCase{"time_limit", [](Adapter& a) { a.driver.ibtmo(0, kT1s), a.Send("A"); },
                                "++addr 18\n++read_tmo_ms 1000\nA\n++ver\n"},
                    CommandCase{"remote", [](Adapter& a) { a.driver.SetRWLS(0, kAddresses); },
                                "++addr 7\n++read_tmo_ms 3000\n++llo\n++ver\n"},
                    CommandCase{"local", [](Adapter& a) { a.driver.EnableLocal(0, kAddresses); },
                                "++addr 7\n++read_tmo_ms 3000\n++loc\n++ver\n"}),
    [](const auto& command) { return std::string(command.param.Name); });

TEST_P(AdapterCommand, ReachesTheAdapterToTheByte) {
  ScriptedPeer peer(Answering());
  Adapter adapter(peer);
  ASSERT_TRUE(adapter.Clear());
  peer.HeardUpTo("++ifc\n++ver\n");
  peer.Forget();
  GetParam().Call(adapter);
  EXPECT_TRUE(adapter.Ok()) << adapter.driver.Advice();
  EXPECT_EQ(peer.HeardUpTo(GetParam().Heard), GetParam().Heard);
}

struct Read {
  int Termination;
  std::size_t Size;
  std::string Expected;
  bool Ends;
};
struct AnswerCase {
  const char* Name;
  std::deque<std::string> Said;
  std::vector<Read> Reads;
  std::string Asked;  ///< the reads that the adapter was asked for
};
class AdapterAnswer : public testing::TestWithParam<AnswerCase> {};
INSTANTIATE_TEST_SUITE_P(
    Adapter, AdapterAnswer,
    testing::Values(
        AnswerCase{"to_its_mark", {"1\n2\r\n" + kMark}, {{gpib::kStopEnd, 64, "1\n2\r\n", true}}, "++read eoi\n"},
        AnswerCase{"without_a_line_end", {"1.5" + kMark}, {{gpib::kStopEnd, 64, "1.5", true}}, "++read eoi\n"},
        AnswerCase{"of_one_that_does_not_mark", {"1.5\r\n"}, {{gpib::kStopEnd, 64, "1.5\r\n", true}}, "++read eoi\n"},
        AnswerCase{"to_line_feed",
                   {"1\r\n" + kMark, "2\r\n" + kMark},
                   {{kLf, 64, "1\r\n", true}, {kLf, 64, "2\r\n", true}},
                   "++read 10\n++read 10\n"},
        AnswerCase{
            "to_cr", {"1\r", "\n2\r"}, {{kCr, 64, "1\r", true}, {kCr, 64, "2\r", true}}, "++read 13\n++read 13\n"},
        AnswerCase{"line_feed_of_its_own_behind_cr",
                   {"1\r", "\n" + kMark, "2\r"},
                   {{kCr, 64, "1\r", true}, {kCr, 64, "2\r", true}},
                   "++read 13\n++read 13\n++read 13\n"},
        AnswerCase{"rest_of_a_long_one",
                   {"12345\n" + kMark, "6\n" + kMark},
                   {{kLf, 4, "1234", false}, {kLf, 4, "5\n", true}, {kLf, 4, "6\n", true}},
                   "++read 10\n++read 10\n"},
        AnswerCase{"full_to_the_mark",
                   {"1234" + kMark, "56" + kMark},
                   {{gpib::kStopEnd, 4, "1234", true}, {gpib::kStopEnd, 4, "56", true}},
                   "++read eoi\n++read eoi\n"},
        AnswerCase{"behind_a_complaint",
                   {"Unrecognized command\r\n1\n" + kMark},
                   {{gpib::kStopEnd, 64, "1\n", true}},
                   "++read eoi\n"}),
    [](const auto& answer) { return std::string(answer.param.Name); });

TEST_P(AdapterAnswer, IsReadToItsEnd) {
  ScriptedPeer peer(Answering(GetParam().Said));
  Adapter adapter(peer);
  ASSERT_TRUE(adapter.Clear() && adapter.Send("?"));
  peer.HeardUpTo("?\n++ver\n");
  peer.Forget();
  for (const Read& read : GetParam().Reads) {
    EXPECT_EQ(adapter.Receive(read.Termination, read.Size), read.Expected);
    EXPECT_TRUE(adapter.Ok());
    EXPECT_EQ(adapter.Ended(), read.Ends);
  }
  EXPECT_EQ(peer.HeardUpTo(GetParam().Asked), GetParam().Asked);
}

TEST(GpibAdapter, AsksAgainWhereItsLongestReadIsShorterThanTheLimit) {
  ScriptedPeer peer(Answering({"", "1", "", "2\n" + kMark}));
  StreamDriver<GpibAdapter> adapter(std::make_unique<TcpStream>("127.0.0.1", peer.Port()), 5);
  ASSERT_TRUE(adapter.Clear() && adapter.Send("?"));
  EXPECT_EQ(adapter.Receive(gpib::kStopEnd), "12\n");
  EXPECT_TRUE(adapter.Ended());
}

TEST(GpibAdapter, TimesOutAndDropsWhatComesTooLateForTheQuestion) {
  ScriptedPeer peer([script = Answering({"", "2\n" + kMark})](const std::string& line) {
    Reply reply = script(line);
    if (line == "SECOND?") reply.Bytes = "1\n" + kMark;  // of the first read
    return reply;
  });
  Adapter adapter(peer);
  ASSERT_TRUE(adapter.Clear() && adapter.Send("FIRST?"));
  adapter.Hurry();
  EXPECT_EQ(adapter.Receive(gpib::kStopEnd), "");
  EXPECT_TRUE(adapter.IsLate());
  adapter.driver.ibtmo(0, gpib::kT10s);
  ASSERT_TRUE(adapter.Send("SECOND?"));
  EXPECT_EQ(adapter.Receive(gpib::kStopEnd), "2\n");
}

TEST(GpibAdapter, ReadsNoMoreThanItIsAskedForOfAnAnswerWithoutEnd) {
  ScriptedPeer peer(Answering({std::string(1 << 20, 'x')}));
  Adapter adapter(peer);
  ASSERT_TRUE(adapter.Clear() && adapter.Send("?"));
  EXPECT_EQ(adapter.Receive(kLf), std::string(64, 'x'));
  EXPECT_FALSE(adapter.Ended());
  EXPECT_TRUE(adapter.Send("RF OFF")) << "the next command waits until it is through";
}

TEST(GpibAdapter, TellsItsComplaintsAndTakesNoGreetingForItsVersion) {
  ScriptedPeer peer([script = Answering()](const std::string& line) {
    Reply reply = script(line);
    if (line == "++savecfg 0") reply.Bytes = "Welcome!\r\n12.3\r\nUnrecognized command\r\n";
    if (line == "++llo") reply.Bytes = "Unrecognized command\r\n";
    return reply;
  });
  Adapter adapter(peer);
  ASSERT_TRUE(adapter.Clear());
  EXPECT_TRUE(adapter.driver.Way(7).ends_with(", Adapter 1.0")) << adapter.driver.Way(7);
  adapter.driver.SetRWLS(0, kAddresses);
  EXPECT_TRUE(adapter.Ok());
  EXPECT_TRUE(adapter.driver.Way(7).ends_with("1.0; it has said: Unrecognized command")) << adapter.driver.Way(7);
}

/// An adapter that answers each "++ver" in the end, but nothing in time for some reads.
struct LateStream : ByteStream {
  Outcome Open(Deadline) override { return isOpen = true, Outcome::Done; }
  bool IsOpen() const override { return isOpen; }
  Outcome Write(std::string_view bytes, Deadline) override {
    for (; !bytes.empty(); bytes.remove_prefix(bytes.find('\n') + 1)) {
      if (bytes.starts_with("++ver\n")) said.emplace_back("Adapter 1.0\r\n");
      if (bytes.starts_with("++read ")) said.push_back("7\n" + kMark);
    }
    return Outcome::Done;
  }
  Outcome Read(std::string& bytes, std::size_t, Deadline deadline) override {
    if (said.empty() || deadline == Deadline() || (late > 0 && late-- > 0)) return Outcome::TimedOut;
    bytes += said.front();
    said.pop_front();
    return Outcome::Done;
  }
  std::string Fault() const override { return {}; }
  std::string Name() const override { return "serial:/dev/late"; }

  bool isOpen = false;
  int late = 0;
  std::deque<std::string> said;
};

TEST(GpibAdapter, TakesNoLateVersionForAnAnswer) {
  auto stream = std::make_unique<LateStream>();
  LateStream& line = *stream;
  Adapter adapter(std::move(stream));
  line.late = 1;
  ASSERT_TRUE(adapter.Clear()) << "the hello was repeated";
  ASSERT_TRUE(adapter.Send("?"));
  EXPECT_EQ(adapter.Receive(gpib::kStopEnd), "7\n");
  line.late = 1;
  ASSERT_FALSE(adapter.Send("RF ON"));
  ASSERT_TRUE(adapter.Send("?"));
  EXPECT_EQ(adapter.Receive(gpib::kStopEnd), "7\n") << "opened anew, with an answer on its way";
}

TEST(GpibAdapter, IsNotThereWhenItTakesAConnectionAndIsSilent) {
  ScriptedPeer peer;
  Adapter adapter(peer);
  adapter.Hurry();
  EXPECT_FALSE(adapter.Clear());
  EXPECT_TRUE(adapter.IsLost());
  EXPECT_NE(adapter.driver.Advice().find("can be opened, but does not answer ++ver"), std::string::npos);
  EXPECT_NE(adapter.driver.Way(18).find("does not answer ++ver"), std::string::npos) << adapter.driver.Way(18);
}

TEST(GpibAdapter, DoesNotPassACommandAsSentThatNobodyHasAnswered) {
  ScriptedPeer peer([script = Answering(), isDead = false](const std::string& line) mutable {
    isDead = isDead || line == "RF OFF";
    return isDead ? Reply{} : script(line);
  });
  Adapter adapter(peer);
  ASSERT_TRUE(adapter.Clear());
  adapter.Hurry();
  EXPECT_FALSE(adapter.Send("RF OFF"));
  EXPECT_TRUE(adapter.IsLate());
}

class LostAdapter : public testing::TestWithParam<ScriptedPeer::On> {};
INSTANTIATE_TEST_SUITE_P(Streams, LostAdapter, testing::Values(ScriptedPeer::On::Port, ScriptedPeer::On::Terminal),
                         [](const auto& on) { return on.param == ScriptedPeer::On::Port ? "Tcp" : "Serial"; });

TEST_P(LostAdapter, FailsInWordsAndASocketIsSetUpAgainForTheNextCommand) {
  const bool isSocket = GetParam() == ScriptedPeer::On::Port;
  ScriptedPeer peer(Answering(), GetParam());
  std::unique_ptr<ByteStream> stream = std::make_unique<SerialStream>(peer.Device());
  if (isSocket) stream = std::make_unique<TcpStream>("127.0.0.1", peer.Port());
  Adapter adapter(std::move(stream));
  ASSERT_TRUE(adapter.Clear() && adapter.Send("A")) << adapter.driver.Advice();
  EXPECT_FALSE(adapter.Send("BYE"));
  EXPECT_TRUE(adapter.IsLost());
  EXPECT_NE(adapter.driver.Advice().find(isSocket ? "is lost" : "is gone"), std::string::npos)
      << adapter.driver.Advice();
  peer.Forget();
  EXPECT_EQ(adapter.Send("RF OFF"), isSocket);
  EXPECT_EQ(peer.HeardUpTo(isSocket ? "RF OFF\n++ver\n" : ""),
            isSocket ? kOpened + kSetUp + "++addr 18\n++read_tmo_ms 3000\nRF OFF\n++ver\n" : "");
}

TEST(GpibAdapter, CannotTellWhoListensButNoticesThatItIsGone) {
  std::array<std::int16_t, 2> found{};
  ScriptedPeer peer(Answering());
  Adapter adapter(peer);
  adapter.driver.FindLstn(0, kAddresses, found);
  EXPECT_EQ(adapter.cells.error, 11);
  EXPECT_TRUE(adapter.Send("A"));
  const int port = ScriptedPeer::FreePort();
  Adapter nowhere(std::make_unique<TcpStream>("127.0.0.1", port));
  nowhere.driver.FindLstn(0, kAddresses, found);
  EXPECT_TRUE(nowhere.IsLost());
  EXPECT_TRUE(nowhere.driver.Advice().starts_with("Nothing answers at")) << nowhere.driver.Advice();
}

}  // namespace
}  // namespace hylden
