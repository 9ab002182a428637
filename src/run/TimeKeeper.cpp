#include "run/TimeKeeper.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "run/RunDisplay.h"
#include "shell/Shell.h"
#include "text/Duration.h"
#include "text/TextFile.h"

namespace hylden {

std::int64_t TimeKeeper::CountedMs() const {
  return shell_.clock.TickMs() - shell_.dialogs.WaitedMs();
}

double TimeKeeper::Seconds() const {
  return static_cast<double>(CountedMs() - startMs_) / 1000;
}

double TimeKeeper::Lap() {
  const std::int64_t now = CountedMs();
  return static_cast<double>(now - std::exchange(lapMs_, now)) / 1000;
}

std::string TimeKeeper::File() const {
  return shell_.settings.ProgramDirectory() + "/times.txt";
}

std::vector<RunTimes> TimeKeeper::Runs() const {
  try {
    return TimesOfText(ReadTextFile(File()));
  } catch (const std::exception&) {
    return {};  // nobody can tell then
  }
}

void TimeKeeper::Expect(const std::string& kind, const std::string& station, std::vector<ExpectedStep> steps) {
  // What a simulated bench takes says nothing of the instruments.
  key_ = (shell_.runNotice.empty() ? "" : "simulated ") + kind + "; " + station;
  expected_ = std::move(steps);
  left_.clear();
  predicted_ = 0;
  if (const auto times = TypicalTimes(Runs(), key_)) {
    std::vector<double> left(expected_.size() + 1, times->Down.value_or(0));
    for (std::size_t i = expected_.size(); i-- > 0;) {
      const auto seconds = SecondsOf(expected_[i], *times);
      if (!seconds) return display_.Ahead({});
      left[i] = left[i + 1] + *seconds;
    }
    left_ = std::move(left);
    predicted_ = times->Up.value_or(0) + left_.front();
  }
  display_.Ahead({0, predicted_ > 0 ? "takes about " + DurationText(predicted_) : ""});
}

void TimeKeeper::Start() {
  startMs_ = lapMs_ = CountedMs();
  up_ = down_ = std::nullopt;
  next_ = 0;
  foreseen_ = taken_ = share_ = 0;
  measured_.clear();
  measured_.reserve(expected_.size());
}

void TimeKeeper::InstrumentsUp() {
  up_ = Lap();
  ShowAhead(0);
}

void TimeKeeper::StepDone(std::size_t step, int waits, double readings, bool whole) {
  const double seconds = Lap();
  // A step behind manual mode begins elsewhere, and may have been measured before.
  if (whole && step == next_ && step < expected_.size()) {
    measured_.push_back({expected_[step], seconds, waits, readings});
    if (!left_.empty()) {
      // One that stalled says nothing of the others.
      constexpr double kMost = 3;
      const double usual = left_[step] - left_[step + 1];
      foreseen_ += usual;
      taken_ += std::min(seconds, kMost * usual);
    }
  }
  next_ = step + 1;
}

/// How much longer its steps take than in earlier runs. The first ones say little of the others.
double TimeKeeper::Pace() const {
  constexpr double kShareOfTrust = 0.05;
  const double trust = kShareOfTrust * predicted_;
  return (taken_ + trust) / (foreseen_ + trust);
}

void TimeKeeper::ShowAhead(std::size_t step) {
  if (step >= left_.size() || !(predicted_ > 0)) return;
  const double left = left_[step] * Pace(), over = Seconds();
  if (over + left > 0) share_ = std::max(share_, over / (over + left));
  display_.Ahead({share_, "about " + DurationText(left) + " left, ends at " +
                              ClockAfter(shell_.clock.SecondsSinceMidnight(), left)});
}

void TimeKeeper::Ended(bool inOrder) {
  const double seconds = Lap();
  if (inOrder) down_ = seconds;
  display_.Ahead({});
}

void TimeKeeper::Keep() {
  if (measured_.empty()) return;
  RunTimes times = TimesOf(std::exchange(measured_, {}));
  times.Up = up_;
  times.Down = down_;
  times.Key = key_;
  std::vector<RunTimes> runs = Runs();
  AddTimes(runs, std::move(times));
  try {
    ReplaceFile(File(), TimesText(runs));
  } catch (const std::exception&) {
    // The next run is told without this one.
  }
}

}  // namespace hylden
