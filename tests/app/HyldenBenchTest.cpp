// The program hylden-bench: what it prints, how it is reached, how it ends.

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <string>
#include <vector>

#include "support/TempDir.h"

namespace hylden {
namespace {

/// The program beside the test, in the demo station's directory.
class HyldenBench {
 public:
  explicit HyldenBench(std::vector<std::string> arguments) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    child_ = fork();
    if (child_ == 0) {
      dup2(ends[1], STDOUT_FILENO);
      dup2(ends[1], STDERR_FILENO);
      Become(std::move(arguments));
    }
    close(ends[1]);
    from_ = ends[0];
  }
  ~HyldenBench() {
    if (child_ > 0) kill(child_, SIGKILL), waitpid(child_, nullptr, 0);
    close(from_);
  }

  /// Reads what it says until that holds the text, or ends.
  const std::string& ReadTo(const std::string& text) {
    std::array<char, 1024> bytes;
    while (said_.find(text) == said_.npos) {
      const ssize_t count = read(from_, bytes.data(), bytes.size());
      if (count <= 0) break;
      said_.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return said_;
  }
  void Signal(int number) const { kill(child_, number); }
  /// Reads to its end. @return its exit status
  int Status() {
    ReadTo(std::string(1, '\0'));
    int status = 0;
    waitpid(std::exchange(child_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  /// Connects to the way that the text begins with.
  int Connect(const std::string& way) const {
    const std::string place = way + ":127.0.0.1:";
    const std::size_t at = said_.find(place);
    EXPECT_NE(at, std::string::npos) << said_;
    const int port = at == std::string::npos ? 0 : std::atoi(said_.c_str() + at + place.size());
    sockaddr_in server{};
    server.sin_family = AF_INET;
    server.sin_port = htons(static_cast<std::uint16_t>(port));
    server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    EXPECT_EQ(connect(fd, reinterpret_cast<const sockaddr*>(&server), sizeof server), 0);
    return fd;
  }

 private:
  [[noreturn]] void Become(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), HYLDEN_BINARY_DIR "/bin/hylden-bench");
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    setenv("HYLDEN_HOME", home_.Path().c_str(), 1);
    if (chdir(HYLDEN_SOURCE_DIR "/examples/station") == 0) execv(argv[0], argv.data());
    _exit(127);
  }

  TempDir home_;
  pid_t child_ = -1;
  int from_ = -1;
  std::string said_;
};

std::string Ask(int fd, const std::string& text) {
  EXPECT_EQ(write(fd, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  std::string line;
  char byte = 0;
  while (!line.ends_with('\n') && read(fd, &byte, 1) == 1) line += byte;
  return line;
}

TEST(HyldenBenchProgram, ServesTheStationOnEveryWayUntilItIsStoppedAndTellsTheStateOfRf) {
  HyldenBench program({"--equipment", "station.eqp", "--bench", "bench.txt"});
  EXPECT_THAT(program.ReadTo("ready\n"),
              testing::AllOf(testing::HasSubstr("\n13=socket:127.0.0.1:"), testing::HasSubstr("\n14=socket:127.0.0.1:"),
                             testing::HasSubstr("\nAdapter=serial:/dev/")));
  const int generator = program.Connect("18=socket"), adapter = program.Connect("Adapter=tcp");
  const std::string on = "FREQ 20.0 MHZ\r\nPOW -10.0 DBM\r\nOUTP ON\r\n";
  EXPECT_EQ(write(generator, on.data(), on.size()), static_cast<ssize_t>(on.size()));
  close(generator);
  EXPECT_THAT(Ask(adapter, "++addr 13\nMKA?\n++read eoi\n"), testing::EndsWith("\r\n"));
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Status(), 0);
  EXPECT_THAT(program.ReadTo("stopped"), testing::EndsWith("stopped: RF is ON, 20 MHz at -10 dBm\n"));
  close(adapter);
}

TEST(HyldenBenchProgram, SaysWhatItCannotUse) {
  struct Case {
    std::vector<std::string> arguments;
    int status;
    const char* says;
  };
  for (const Case& c :
       {Case{{"--version"}, 0, "Hylden "}, Case{{}, 2, "--equipment is required"},
        Case{{"--equipment", "no.eqp"}, 1, "Error loading equipment file no.eqp"},
        Case{{"--equipment", "station.eqp", "--bench", "no.txt"}, 1, "no.txt"},
        Case{{"--equipment", "station.eqp", "--bench", "station.eqp"}, 1, "station.eqp, line 1: "},
        Case{{"--equipment", "station.eqp", "--meter-at", "home"}, 2, "port, probe, generator or cable"},
        Case{{"--equipment", "station.eqp", "--break", "close"}, 2, "close, hang or garble"},
        Case{{"--equipment", "station.eqp", "--listen", "300.0.0.1"}, 1, "can't listen on 300.0.0.1"}}) {
    HyldenBench program(c.arguments);
    EXPECT_EQ(program.Status(), c.status) << c.says;
    EXPECT_THAT(program.ReadTo(c.says), testing::HasSubstr(c.says));
  }
}

}  // namespace
}  // namespace hylden
