#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/native/SerialStream.h"
#include "platform/native/StreamAddress.h"
#include "platform/native/TcpStream.h"
#include "support/ScriptedPeer.h"

namespace hylden {
namespace {

using Outcome = ByteStream::Outcome;
using Reply = ScriptedPeer::Reply;

ByteStream::Deadline In(int milliseconds) {
  return std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
}
// What comes is waited for long enough for a slow machine, what does not come briefly.
ByteStream::Deadline Soon() {
  return In(2000);
}
ByteStream::Deadline Never() {
  return In(30);
}

/// Reads until so many bytes are there.
std::string Bytes(ByteStream& stream, std::size_t count) {
  std::string bytes;
  while (bytes.size() < count && stream.Read(bytes, count - bytes.size(), Soon()) == Outcome::Done) continue;
  return bytes;
}

Reply Echo(const std::string& line) {
  return {line + "\n"};
}

std::unique_ptr<ByteStream> To(const ScriptedPeer& peer) {
  if (!peer.Device().empty()) return std::make_unique<SerialStream>(peer.Device());
  return std::make_unique<TcpStream>("localhost", peer.Port());
}

class EachStream : public testing::TestWithParam<ScriptedPeer::On> {};
INSTANTIATE_TEST_SUITE_P(Streams, EachStream, testing::Values(ScriptedPeer::On::Port, ScriptedPeer::On::Terminal),
                         [](const auto& on) { return on.param == ScriptedPeer::On::Port ? "Tcp" : "Serial"; });

TEST_P(EachStream, CarriesEveryByteBothWays) {
  std::string all = "\r\x1b\x03\x11\x13+";
  for (int byte = 0; byte < 256; ++byte)
    if (byte != '\n') all += static_cast<char>(byte);
  all += '\n';
  ScriptedPeer peer(Echo, GetParam());
  const auto stream = To(peer);
  ASSERT_EQ(stream->Open(Soon()), Outcome::Done) << stream->Fault();
  ASSERT_EQ(stream->Write(all, Soon()), Outcome::Done);
  EXPECT_EQ(Bytes(*stream, all.size()), all);
}

TEST_P(EachStream, IsLateWithoutAnAnswerAndStaysOpen) {
  ScriptedPeer peer(Echo, GetParam());
  const auto stream = To(peer);
  ASSERT_EQ(stream->Open(Soon()), Outcome::Done);
  std::string bytes;
  EXPECT_EQ(stream->Read(bytes, 10, Never()), Outcome::TimedOut);
  EXPECT_EQ(stream->Fault(), stream->Name() + " does not answer in time.");
  ASSERT_EQ(stream->Write("a\n", Soon()), Outcome::Done);
  EXPECT_EQ(Bytes(*stream, 2), "a\n");
}

TEST_P(EachStream, DropsWhatIsUnreadWhenItIsOpenedAgain) {
  ScriptedPeer peer(Echo, GetParam());
  const auto stream = To(peer);
  ASSERT_EQ(stream->Open(Soon()), Outcome::Done);
  ASSERT_EQ(stream->Write("old\n", Soon()), Outcome::Done);
  ASSERT_EQ(Bytes(*stream, 1), "o");
  ASSERT_EQ(stream->Open(Soon()), Outcome::Done) << stream->Fault();
  ASSERT_EQ(stream->Write("new\n", Soon()), Outcome::Done);
  EXPECT_EQ(Bytes(*stream, 4), "new\n");
}

TEST_P(EachStream, IsLostWhenTheOtherEndGoesInTheMiddle) {
  ScriptedPeer peer([](const std::string&) { return Reply{"12", true}; }, GetParam());
  const auto stream = To(peer);
  ASSERT_EQ(stream->Open(Soon()), Outcome::Done);
  ASSERT_EQ(stream->Write("LEVEL?\n", Soon()), Outcome::Done);
  std::string bytes;
  Outcome outcome = Outcome::Done;
  while (outcome == Outcome::Done) outcome = stream->Read(bytes, 10, Soon());
  EXPECT_EQ(outcome, Outcome::Lost);
  EXPECT_FALSE(stream->IsOpen());
  EXPECT_TRUE(stream->Fault().find("again.") != std::string::npos) << stream->Fault();
}

TEST(TcpStream, DoesNotWriteToAnEndThatHasClosedMeanwhile) {
  ScriptedPeer peer([](const std::string&) { return Reply{"", true}; });
  TcpStream stream("127.0.0.1", peer.Port());
  ASSERT_EQ(stream.Open(Soon()), Outcome::Done);
  ASSERT_EQ(stream.Write("BYE\n", Soon()), Outcome::Done);
  ASSERT_TRUE(peer.HasHungUp());
  EXPECT_EQ(stream.Write("RF OFF\n", Soon()), Outcome::Lost) << "it would be lost without a word";
  ASSERT_EQ(stream.Open(Soon()), Outcome::Done) << stream.Fault();
  EXPECT_EQ(stream.Write("RF OFF\n", Soon()), Outcome::Done);
}

TEST(TcpStream, TellsWhetherWhatWasWrittenHasArrived) {
  ScriptedPeer peer({}, ScriptedPeer::On::DeafPort);
  TcpStream stream("127.0.0.1", peer.Port());
  ASSERT_EQ(stream.Open(Soon()), Outcome::Done);
  ASSERT_EQ(stream.Write("RF OFF\n", Soon()), Outcome::Done);
  EXPECT_EQ(stream.Flush(Soon()), Outcome::Done);
  EXPECT_EQ(stream.Write(std::string(std::size_t{32} << 20, 'x'), Never()), Outcome::TimedOut);
  EXPECT_EQ(stream.Flush(Never()), Outcome::TimedOut);
  EXPECT_EQ(stream.Fault(), stream.Name() + " has not taken what was sent last.");
}

TEST(ByteStream, SaysInWordsWhyItCannotBeOpened) {
  const std::string port = std::to_string(ScriptedPeer::FreePort());
  const struct {
    std::string Address, Fault;
  } cases[] = {
      {"tcp:127.0.0.1:" + port, "Nothing answers at 127.0.0.1:" + port + ": connection refused."},
      {"tcp:no such host:1234", "The name no such host is not known ("},
      {"serial:/dev/no-such-line", "There is no /dev/no-such-line: check"},
      {"serial:/dev/null", "/dev/null is no serial line"},
  };
  for (const auto& [address, fault] : cases) {
    const ParsedStream parsed = ParseStream(address);
    ASSERT_TRUE(parsed.Stream) << parsed.Fault;
    EXPECT_EQ(parsed.Stream->Open(Soon()), Outcome::Lost) << address;
    EXPECT_FALSE(parsed.Stream->IsOpen());
    EXPECT_TRUE(parsed.Stream->Fault().starts_with(fault)) << parsed.Stream->Fault();
  }
}

TEST(ParseStream, ReadsTheAddressesOfSettings) {
  const struct {
    const char *Address, *Name;
  } cases[] = {
      {"tcp:gpib.lab", "tcp:gpib.lab:1234"},
      {"tcp:10.0.0.7:5025", "tcp:10.0.0.7:5025"},
      {"tcp:[::1]", "tcp:[::1]:1234"},
      {"tcp:[fe80::1%eth0]:99", "tcp:[fe80::1%eth0]:99"},
      {"serial:/dev/ttyUSB0", "serial:/dev/ttyUSB0,115200"},
      {"serial:/dev/ttyACM1,9600", "serial:/dev/ttyACM1,9600"},
  };
  for (const auto& [address, name] : cases) {
    const ParsedStream parsed = ParseStream(address);
    ASSERT_TRUE(parsed.Stream) << parsed.Fault;
    EXPECT_EQ(parsed.Stream->Name(), name);
  }
}

TEST(ParseStream, SaysWhyATextIsNoAddress) {
  for (const char* const address :
       {"tcp:", "tcp:host:", "tcp:host:0", "tcp:host:65536", "tcp:host:12x", "tcp:::1", "tcp:[::1", "tcp:[::1]5",
        "serial:", "serial:,9600", "serial:/dev/ttyS0,", "serial:/dev/ttyS0,12345", "/dev/ttyS0", ""}) {
    const ParsedStream parsed = ParseStream(address);
    EXPECT_FALSE(parsed.Stream) << address;
    EXPECT_FALSE(parsed.Fault.empty()) << address;
  }
  EXPECT_NE(ParseStream("serial:/dev/ttyS0,12345").Fault.find("no speed of 12345 baud; there are 1200,"),
            std::string::npos);
}

}  // namespace
}  // namespace hylden
