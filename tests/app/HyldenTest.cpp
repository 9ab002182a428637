// The desktop program as a process of its own, on the bench, with RF on.

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <string>

#include "platform/native/SingleInstance.h"
#include "support/TempDir.h"

namespace hylden {
namespace {

class HyldenProgram : public testing::Test {
 protected:
  HyldenProgram() {
    std::filesystem::copy(HYLDEN_SOURCE_DIR "/examples/station", station_);
    directory_.Write("home/Hylden.ini",
                     "[Gpib]\r\nDriver=bench\r\nBench=" + station_ + "/bench.txt\r\n[System]\r\nLogToFile=1\r\n");
  }
  /// @param test  the switch that names one; without it the generator is tried in its editor
  void Start(const char* test = "/t:substitution-am.tst") {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    child_ = fork();
    if (child_ == 0) Become(ends[1], test);
    close(ends[1]);
    output_ = ends[0];
  }
  /// Reads on until the text has come, or to the end.
  std::string SaidUntil(const std::string& text) {
    std::string said;
    for (char c = 0; said.find(text) == std::string::npos && read(output_, &c, 1) == 1;) said += c;
    return said;
  }
  void TearDown() override {
    if (child_ > 0) kill(child_, SIGKILL);
    if (output_ >= 0) close(output_);
  }

  TempDir directory_;
  std::string station_ = directory_.File("station");
  std::string lock_ = "test-" + std::to_string(getpid());
  pid_t child_ = -1;
  int output_ = -1;

 private:
  [[noreturn]] void Become(int output, const char* test) const {
    dup2(output, STDOUT_FILENO);
    setenv("HYLDEN_LOCK", lock_.c_str(), 1);
    setenv("HYLDEN_HOME", directory_.File("home").c_str(), 1);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    if (chdir(station_.c_str()) == 0)
      execl(HYLDEN_BINARY_DIR "/tests/hylden_operated", "hylden", "/e:station.eqp", test, nullptr);
    _exit(127);
  }
};

TEST_F(HyldenProgram, EndsInOrderWithRfOffAtASignalAndIsNeverFrozen) {
  Start();
  ASSERT_NE(SaidUntil("RF ON\n").find("RF ON"), std::string::npos);
  for (const int number : {SIGTSTP, SIGPIPE, SIGQUIT}) kill(child_, number);
  int status = 0;
  waitpid(child_, &status, WUNTRACED);
  ASSERT_TRUE(WIFEXITED(status)) << "ended or stopped by signal " << (status & 0x7f) << ", " << (status >> 8);
  child_ = -1;
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(SaidUntil("end"), "Save Run Data: RF off\n");
  EXPECT_NE(directory_.Read("station/runlog.hyl").find("Instruments taken offline"), std::string::npos);
}

TEST_F(HyldenProgram, EndsWithRfOffBehindAGeneratorThatIsTriedInItsEditor) {
  Start(nullptr);
  ASSERT_NE(SaidUntil("RF ON\n").find("RF ON"), std::string::npos);
  kill(child_, SIGTERM);
  EXPECT_EQ(SaidUntil("end"), "Save Definition: RF off\n");
  int status = 0;
  waitpid(child_, &status, 0);
  child_ = -1;
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST_F(HyldenProgram, EndsAtOnceBesideAnotherOne) {
  SingleInstance other("hylden-" + lock_);
  ASSERT_TRUE(other.Claim());
  Start();
  int status = 0;
  waitpid(child_, &status, 0);
  child_ = -1;
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_EQ(SaidUntil("end"), "");
}

}  // namespace
}  // namespace hylden
