#include "app/ProgressLine.h"

#include <gtest/gtest.h>

#include <future>
#include <sstream>

#include "platform/VirtualTime.h"

namespace hylden {
namespace {

/// An output that nobody takes until it is opened.
class StoppedOutput : public std::stringbuf {
 public:
  std::promise<void> Opened;

 protected:
  std::streamsize xsputn(const char* text, std::streamsize count) override {
    opened_.wait();
    return std::stringbuf::xsputn(text, count);
  }

 private:
  std::shared_future<void> opened_ = Opened.get_future();
};

TEST(ProgressLine, RunGoesOnWhileNobodyTakesItsLinesAndNoneIsLost) {
  VirtualClock clock;
  StoppedOutput output;
  std::ostream out(&output);
  ProgressLine line(out, false, clock);
  line.Start(2, 0);
  for (const int step : {1, 2}) {
    line.Now().Step = step;
    line.PrintStep();
  }
  EXPECT_EQ(output.str(), "");
  output.Opened.set_value();
  line.End();
  EXPECT_NE(output.str().find("2 steps\nstep 1 of 2"), std::string::npos);
  EXPECT_NE(output.str().find("\nstep 2 of 2"), std::string::npos);
}

}  // namespace
}  // namespace hylden
