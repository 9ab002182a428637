#include "platform/native/SingleInstance.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <thread>

namespace hylden {
namespace {

/// A place of this test alone: others run beside it.
std::string OwnPlace() {
  return "hylden-test-" + std::to_string(getpid());
}

/// Another process that has taken the place, as another user where this one may become it.
class Holder {
 public:
  explicit Holder(const std::string& place) {
    int ends[2];
    if (pipe(ends) != 0) return;
    process_ = fork();
    if (process_ == 0) {
      umask(077);
      setenv("TMPDIR", "/nowhere", 1);
      if (getuid() == 0 && setuid(12345) != 0) _exit(1);
      SingleInstance instance(place);
      const char claimed = instance.Claim() && instance.Listen() >= 0 ? 1 : 0;
      if (write(ends[1], &claimed, 1) == 1) pause();
      _exit(0);
    }
    close(ends[1]);
    char claimed = 0;
    Claimed = read(ends[0], &claimed, 1) == 1 && claimed == 1;
    close(ends[0]);
  }
  ~Holder() { Kill(); }

  void Kill() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    process_ = -1;
  }

  bool Claimed = false;

 private:
  pid_t process_ = -1;
};

TEST(SingleInstance, SecondOneIsRefusedUntilTheFirstHasGone) {
  auto first = std::make_unique<SingleInstance>(OwnPlace());
  SingleInstance second(OwnPlace());
  EXPECT_TRUE(first->Claim());
  EXPECT_TRUE(first->Claim());
  EXPECT_FALSE(second.Claim());
  first.reset();
  EXPECT_TRUE(second.Claim());
}

TEST(SingleInstance, IsOnePerComputerWhateverTheUserAndAKilledHolderKeepsNobodyOut) {
  Holder other(OwnPlace());
  ASSERT_TRUE(other.Claimed);
  EXPECT_FALSE(SingleInstance(OwnPlace()).Claim());
  EXPECT_EQ(SingleInstance(OwnPlace()).Ask("raise", 5), std::nullopt) << "another user's, or one that hangs";
  other.Kill();
  EXPECT_TRUE(SingleInstance(OwnPlace()).Claim());
}

TEST(SingleInstance, TheFirstAnswersWhatAnotherAsksOnceItListens) {
  SingleInstance first(OwnPlace());
  ASSERT_TRUE(first.Claim());
  EXPECT_EQ(SingleInstance(OwnPlace()).Ask("early"), std::nullopt);
  pollfd caller{first.Listen(), POLLIN, 0};
  std::optional<std::string> answer;
  std::thread second([&] { answer = SingleInstance(OwnPlace()).Ask("/t:radio.tst"); });
  EXPECT_EQ(poll(&caller, 1, 2000), 1);
  first.Answer([](const std::string& request) { return "not " + request; });
  second.join();
  EXPECT_EQ(answer, "not /t:radio.tst");
}

TEST(SingleInstance, ATestHasAPlaceOfItsOwn) {
  unsetenv("HYLDEN_LOCK");
  EXPECT_EQ(SingleInstance::Place(), "hylden");
  setenv("HYLDEN_LOCK", "x", 1);
  EXPECT_EQ(SingleInstance::Place(), "hylden-x");
  unsetenv("HYLDEN_LOCK");
}

}  // namespace
}  // namespace hylden
