#include "platform/native/StreamServer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace hylden {
namespace {

constexpr int kLimitMs = 10000;  // only a failing test waits so long

/// Answers every line with itself, in capitals for a terminal's client to tell; "bye" ends it.
class Echo : public StreamSession {
 public:
  bool TakesMore() const override { return input_.size() < 10000; }
  void Take(std::string_view bytes) override { input_ += bytes; }
  std::string Serve() override {
    const std::size_t end = input_.find('\n');
    if (end == input_.npos) return {};
    const std::string line = input_.substr(0, end + 1);
    input_.erase(0, end + 1);
    ended_ = line == "bye\n";
    return line;
  }
  std::optional<std::int64_t> DueInMs() const override {
    if (input_.find('\n') == input_.npos) return std::nullopt;
    return 0;
  }
  bool Ended() const override { return ended_; }

 private:
  std::string input_;
  bool ended_ = false;
};

class ServedEcho : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(pipe(stop_.data()), 0);
    const auto make = [] { return std::make_unique<Echo>(); };
    port_ = server_.Listen("127.0.0.1", 0, make).Port;
    terminal_ = server_.OpenTerminal(make);
    loop_ = std::thread([this] { server_.Run(stop_[0]); });
  }
  void TearDown() override {
    close(stop_[1]);
    loop_.join();
    close(stop_[0]);
  }

  int Connect() const {
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(static_cast<std::uint16_t>(port_));
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(connect(fd, reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    return fd;
  }
  int OpenTerminal() const { return open(terminal_.c_str(), O_RDWR | O_NOCTTY); }
  static void Send(int fd, const std::string& bytes) {
    EXPECT_EQ(write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  /// A line, or what came before the connection was closed.
  static std::string Line(int fd) {
    std::string line;
    char byte = 0;
    for (pollfd wait{fd, POLLIN, 0}; !line.ends_with('\n') && poll(&wait, 1, kLimitMs) == 1;) {
      if (read(fd, &byte, 1) != 1) break;
      line += byte;
    }
    return line;
  }
  static std::string Ask(int fd, const std::string& bytes) {
    Send(fd, bytes);
    return Line(fd);
  }

  StreamServer server_;
  std::array<int, 2> stop_{};
  int port_ = 0;
  std::string terminal_;
  std::thread loop_;
};

TEST_F(ServedEcho, AnswersEachOfItsClients) {
  const std::array<int, 3> clients = {Connect(), Connect(), OpenTerminal()};
  for (const int client : clients) Send(client, "hal");
  for (const int client : clients) EXPECT_EQ(Ask(client, "f\r\n"), "half\r\n");
  for (const int client : clients) close(client);
}

TEST_F(ServedEcho, AClientThatGoesAwayOrFloodsHarmsNobody) {
  const int other = Connect();
  const int half = Connect(), flooding = Connect(), resetting = Connect();
  Send(half, "half a line");
  close(half);
  fcntl(flooding, F_SETFL, O_NONBLOCK);
  const std::string lines = std::string(1023, 'x') + '\n';
  // It never reads: the server stops taking, and the system's buffers fill.
  std::size_t written = 0;
  while (written < 100'000'000) {
    const ssize_t count = write(flooding, lines.data(), lines.size());
    pollfd wait{flooding, POLLOUT, 0};
    if (count < 0 && poll(&wait, 1, 30) == 0) break;
    written += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  }
  EXPECT_LT(written, 100'000'000U);
  EXPECT_EQ(Ask(other, "still here\n"), "still here\n");
  const linger hard{1, 0};
  setsockopt(resetting, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
  Send(resetting, "x\n");
  close(resetting);
  close(flooding);
  EXPECT_EQ(Ask(other, "still here\n"), "still here\n");
  close(other);
}

TEST_F(ServedEcho, WhatWasSentBeforeTheEndIsAnswered) {
  const int client = Connect();
  Send(client, "one\ntwo\n");
  shutdown(client, SHUT_WR);
  EXPECT_EQ(Line(client), "one\n");
  EXPECT_EQ(Line(client), "two\n");
  EXPECT_EQ(Line(client), "");
  close(client);
}

TEST_F(ServedEcho, ClosesTheConnectionOfASessionThatEnds) {
  const int client = Connect();
  Send(client, "bye\n");
  Line(client);
  EXPECT_EQ(Line(client), "");
  close(client);
}

TEST_F(ServedEcho, ATerminalHasNoEchoAndBeginsAnewForItsNextClient) {
  int client = OpenTerminal();
  termios how{};
  ASSERT_EQ(tcgetattr(client, &how), 0);
  EXPECT_EQ(how.c_lflag & static_cast<tcflag_t>(ECHO | ICANON), 0U);
  EXPECT_EQ(Ask(client, "first\n"), "first\n");
  Send(client, "half a line");
  close(client);
  // When the server has seen nobody there, whatever was left is forgotten.
  std::string answer;
  for (int tries = 0; tries < 100 && answer != "second\n"; ++tries) {
    client = OpenTerminal();
    answer = Ask(client, "second\n");
    close(client);
  }
  EXPECT_EQ(answer, "second\n");
}

TEST(StreamServer, TellsWhyItCannotListen) {
  StreamServer first, second;
  const auto none = [] { return std::unique_ptr<StreamSession>(); };
  const StreamServer::Place place = first.Listen("127.0.0.1", 0, none);
  EXPECT_TRUE(place.Loopback);
  EXPECT_FALSE(first.Listen("0.0.0.0", 0, none).Loopback);
  try {
    second.Listen("127.0.0.1", place.Port, none);
    ADD_FAILURE() << "two at one port";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(error.what(),
              "can't listen on 127.0.0.1, port " + std::to_string(place.Port) + ": Address already in use");
  }
}

}  // namespace
}  // namespace hylden
