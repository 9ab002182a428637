#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <thread>

#include "platform/native/PortMappedStream.h"
#include "platform/native/Vxi11Instrument.h"

namespace hylden {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// An instrument in the network, portmapper and core channel on one port. One connection after the other.
class Vxi11Peer {
 public:
  Vxi11Peer() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    socklen_t size = sizeof address;
    bind(listener_, reinterpret_cast<sockaddr*>(&address), size);
    listen(listener_, 4);
    getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { Serve(); });
  }
  ~Vxi11Peer() {
    ends_ = true;
    shutdown(listener_, SHUT_RDWR);
    HangUp();
    thread_.join();
    close(listener_);
  }

  int Port() const { return port_; }
  /// Ends the connection that is there.
  void HangUp() { shutdown(line_, SHUT_RDWR); }
  std::vector<std::string> Heard() {
    const std::lock_guard lock(mutex_);
    return heard_;
  }

  std::atomic<bool> offersVxi11 = true;
  std::atomic<std::uint32_t> error = 0;  ///< of calls on the link
  std::atomic<bool> keepsReply = false;  ///< until the next call
  std::atomic<bool> takesHalf = false, isClearable = true;
  /// What it says instead of a reply, once or for as long as anybody listens.
  void Say(const std::string& bytes, bool forever) {
    const std::lock_guard lock(mutex_);
    said_ = bytes;
    forever_ = forever;
  }

 private:
  void Serve() {
    while (!ends_) {
      const int line = accept(listener_, nullptr, nullptr);
      if (line < 0) return;
      line_ = line;
      while (Answer(line)) {
      }
      line_ = -1;
      close(line);
    }
  }
  static bool ReadAll(int line, std::string& bytes) {
    return bytes.empty() || recv(line, bytes.data(), bytes.size(), MSG_WAITALL) == static_cast<ssize_t>(bytes.size());
  }
  bool Answer(int line) {
    std::string header(4, '\0');
    if (!ReadAll(line, header)) return false;
    std::string record(XdrReader(header).Number() & 0x7FFFFFFF, '\0');
    if (!ReadAll(line, record)) return false;
    XdrReader call(record);
    const std::uint32_t id = call.Number();
    for (int i = 0; i < 3; ++i) call.Number();
    call.Number();  // version
    const std::uint32_t procedure = call.Number();
    for (int i = 0; i < 4; ++i) call.Number();
    XdrWriter reply;
    reply.Number(id).Number(1).Number(0).Number(0).Number(0).Number(0);
    const std::string body = reply.Bytes() + Results(procedure, call);
    // In two fragments, as some instruments do.
    std::string bytes = XdrWriter().Number(8).Bytes() + body.substr(0, 8) +
                        XdrWriter().Number(0x80000000 | static_cast<std::uint32_t>(body.size() - 8)).Bytes() +
                        body.substr(8);
    if (const std::string said = TakeSaid(); !said.empty()) {
      const auto say = [&] { return send(line, said.data(), said.size(), MSG_NOSIGNAL) > 0; };
      while (say() && forever_) continue;
      return !forever_;
    }
    if (keepsReply.exchange(false)) return kept_ = bytes, true;
    bytes = std::exchange(kept_, {}) + bytes;
    return send(line, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
  }
  std::string TakeSaid() {
    const std::lock_guard lock(mutex_);
    return std::exchange(said_, {});
  }
  std::string Results(std::uint32_t procedure, XdrReader& call) {
    const std::lock_guard lock(mutex_);
    XdrWriter results;
    if (procedure == 3) return results.Number(offersVxi11 ? static_cast<std::uint32_t>(port_) : 0).Bytes();
    if (procedure == 10) {
      for (int i = 0; i < 3; ++i) call.Number();
      heard_.push_back("link " + std::string(call.Opaque()));
      return results.Number(0).Number(7).Number(0).Number(16).Bytes();
    }
    EXPECT_EQ(call.Number(), 7u) << "the link";
    const std::uint32_t first = call.Number(), refused = error;
    if (procedure == 11) {
      call.Number();
      const bool ends = (call.Number() & 8) != 0;
      const std::string data(call.Opaque());
      heard_.push_back("> " + data + (ends ? "" : " ..."));
      if (data.ends_with('?')) answer_ = "0123456789\n";
      const std::size_t taken = takesHalf.exchange(false) ? data.size() / 2 : data.size();
      return results.Number(refused).Number(static_cast<std::uint32_t>(taken)).Bytes();
    }
    if (procedure == 12) {
      const std::string piece = answer_.substr(0, first);
      answer_.erase(0, piece.size());
      return results.Number(piece.empty() ? 15 : refused).Number(answer_.empty() ? 4 : 1).Opaque(piece).Bytes();
    }
    heard_.push_back("call " + std::to_string(procedure));
    if (procedure == 15 && !isClearable) return results.Number(17).Bytes();
    return results.Number(procedure == 17 ? 8 : refused).Bytes();
  }

  int listener_ = -1, port_ = 0;
  std::atomic<int> line_ = -1;
  std::atomic<bool> ends_ = false;
  std::mutex mutex_;
  std::vector<std::string> heard_;
  std::string answer_, kept_, said_;
  std::atomic<bool> forever_ = false;
  std::thread thread_;
};

class Vxi11Test : public testing::Test {
 protected:
  Vxi11Test() { instrument_.RegisterGpibGlobalsForThread(cells_); }

  std::string Read(std::size_t size = 64) {
    std::string buffer(size, '\0');
    instrument_.Receive(0, 18, buffer, gpib::kStopEnd);
    return buffer.substr(0, static_cast<std::size_t>(cells_.longCount));
  }
  void Send(const std::string& text) { instrument_.Send(0, 18, text, gpib::kDabEnd); }
  bool Fails() const { return (cells_.status & gpib::kErr) != 0; }

  Vxi11Peer peer_;
  GpibStatusCells cells_;
  Vxi11Instrument instrument_{std::make_unique<PortMappedStream>("127.0.0.1", Vxi11Instrument::kProgram,
                                                                 Vxi11Instrument::kVersion, peer_.Port())};
};

TEST_F(Vxi11Test, LinksSendsInPiecesAndReadsToTheEnd) {
  instrument_.SendIFC(0);
  EXPECT_FALSE(Fails()) << instrument_.Advice();
  const std::int16_t list[] = {18, gpib::kNoAddr};
  std::int16_t found[2];
  instrument_.FindLstn(0, list, found);
  EXPECT_EQ(found[0], 18);
  instrument_.SetRWLS(0, list);
  EXPECT_FALSE(Fails());
  instrument_.EnableLocal(0, list);
  EXPECT_FALSE(Fails()) << "not every instrument knows it";
  Send("RF OFF");
  EXPECT_EQ(cells_.longCount, 6);
  std::string longer(1020, 'x');
  Send(longer.append(" READ?"));
  EXPECT_EQ(Read(4), "0123");
  EXPECT_EQ(cells_.status & gpib::kEnd, 0);
  EXPECT_EQ(Read(), "456789\n");
  EXPECT_NE(cells_.status & gpib::kEnd, 0);
  EXPECT_THAT(peer_.Heard(), ElementsAre("link inst0", "call 16", "call 17", "> RF OFF",
                                         "> " + longer.substr(0, 1024) + " ...", "> D?"));
}

TEST_F(Vxi11Test, ASilentInstrumentTimesOutAndItsLateReplyIsPassedOver) {
  instrument_.SendIFC(0);
  Read();
  EXPECT_EQ(cells_.status & (gpib::kErr | gpib::kTimo), gpib::kErr | gpib::kTimo);
  EXPECT_EQ(cells_.error, gpib::kEabo);
  Send("A?");
  instrument_.ibtmo(0, 1);
  peer_.keepsReply = true;
  Read(4);
  EXPECT_EQ(cells_.error, gpib::kEabo) << "nothing came at all";
  instrument_.ibtmo(0, gpib::kT10s);
  EXPECT_EQ(Read(), "456789\n") << "the late reply is none of this call's";
}

TEST_F(Vxi11Test, AConnectionThatBrokeIsMadeAgain) {
  instrument_.SendIFC(0);
  Send("A?");
  peer_.HangUp();
  Read();
  EXPECT_EQ(cells_.error, gpib::kEdvr);
  EXPECT_NE(instrument_.Advice(), "");
  Send("RF OFF");
  EXPECT_FALSE(Fails()) << instrument_.Advice();
  EXPECT_THAT(peer_.Heard(), ElementsAre("link inst0", "> A?", "link inst0", "> RF OFF"));
}

TEST_F(Vxi11Test, WhatTheInstrumentRefusesIsToldInWords) {
  peer_.offersVxi11 = false;
  instrument_.SendIFC(0);
  EXPECT_TRUE(Fails());
  EXPECT_THAT(instrument_.Advice(), HasSubstr("does not offer VXI-11"));
  peer_.offersVxi11 = true;
  instrument_.SendIFC(0);
  peer_.error = 11;
  Send("RF ON");
  EXPECT_EQ(cells_.error, gpib::kEdvr);
  EXPECT_THAT(instrument_.Advice(), HasSubstr("locked by another program (error 11)"));
}

struct NonsenseCase {
  const char* Name;
  std::string Says;
  bool Forever;
  bool TimesOut;
};
class Vxi11Nonsense : public Vxi11Test, public testing::WithParamInterface<NonsenseCase> {};
std::string Record(const std::string& body) {
  return XdrWriter().Number(0x80000000 | static_cast<std::uint32_t>(body.size())).Bytes() + body;
}
std::string ReplyTo(std::uint32_t call) {
  return XdrWriter().Number(call).Number(1).Number(0).Number(0).Number(0).Number(0).Bytes();
}
INSTANTIATE_TEST_SUITE_P(Vxi11, Vxi11Nonsense,
                         testing::Values(NonsenseCase{"replies_to_others", Record(ReplyTo(999)), true, true},
                                         NonsenseCase{"fragments_without_bytes", std::string(4096, '\0'), true, false},
                                         NonsenseCase{"a_record_without_end",
                                                      std::string("\0\xFF\0\0", 4) + std::string(0xFF0000, 'x') +
                                                          std::string("\0\xFF\0\0", 4),
                                                      false, false},
                                         NonsenseCase{"a_web_page", "HTTP/1.1 400 Bad Request\r\n\r\n", false, false},
                                         NonsenseCase{"half_a_reply", Record(ReplyTo(2).substr(0, 12)), false, false},
                                         NonsenseCase{"nothing_done", Record(ReplyTo(2)), false, false}),
                         [](const auto& nonsense) { return std::string(nonsense.param.Name); });

TEST_P(Vxi11Nonsense, EndsInTimeAndTheInstrumentIsAskedAnewForTheNextCommand) {
  instrument_.SendIFC(0);
  if (GetParam().TimesOut) instrument_.ibtmo(0, gpib::kT30ms);
  peer_.Say(GetParam().Says, GetParam().Forever);
  Send("RF ON");
  EXPECT_TRUE(Fails());
  EXPECT_EQ(cells_.error, GetParam().TimesOut ? gpib::kEabo : gpib::kEdvr);
  if (GetParam().TimesOut) return;
  EXPECT_NE(instrument_.Advice(), "");
  Send("RF OFF");
  EXPECT_FALSE(Fails()) << instrument_.Advice();
  EXPECT_THAT(peer_.Heard(), testing::Contains("> RF OFF"));
}

TEST_F(Vxi11Test, DoesNotJoinTheHalfOfACommandWithTheNextOne) {
  instrument_.SendIFC(0);
  for (const bool isClearable : {true, false}) {
    peer_.isClearable = isClearable;
    peer_.takesHalf = true;
    Send("FREQ 1");
    EXPECT_TRUE(Fails());
    EXPECT_THAT(instrument_.Advice(), HasSubstr("only a part of the command"));
    Send("RF OFF");
    EXPECT_FALSE(Fails()) << instrument_.Advice();
  }
  EXPECT_THAT(peer_.Heard(), ElementsAre("link inst0", "> FREQ 1", "call 15", "> RF OFF", "> FREQ 1", "call 15",
                                         "link inst0", "> RF OFF"));
}

TEST_F(Vxi11Test, AnInstrumentThatDoesNotKnowRemoteIsDrivenAllTheSame) {
  instrument_.SendIFC(0);
  const std::int16_t list[] = {18, gpib::kNoAddr};
  peer_.Say(Record(XdrWriter().Number(2).Number(1).Number(0).Number(0).Number(0).Number(3).Bytes()), false);
  instrument_.SetRWLS(0, list);
  EXPECT_FALSE(Fails()) << instrument_.Advice();
}

TEST(XdrWriter, WritesBigEndianAndFillsUp) {
  EXPECT_EQ(XdrWriter().Number(0x0607AF).Opaque("inst0").Bytes(),
            std::string("\x00\x06\x07\xAF\x00\x00\x00\x05inst0\x00\x00\x00", 16));
  EXPECT_FALSE((XdrReader(std::string_view("\0\0\0\5in", 6)).Opaque().size() > 0)) << "not there whole";
}

}  // namespace
}  // namespace hylden
