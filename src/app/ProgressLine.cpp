#include "app/ProgressLine.h"

#include <ostream>

#include "text/Duration.h"
#include "text/Pattern.h"

namespace hylden {

namespace {
constexpr auto kRedrawInterval = std::chrono::milliseconds(100);
}

void ProgressLine::Start(int steps, double estimatedMinutes) {
  End();
  now_ = {.Steps = steps};
  activity_.clear();
  out_ << steps << (steps == 1 ? " step" : " steps");
  if (estimatedMinutes > 0) {
    out_ << ", estimated " << DurationText(estimatedMinutes * 60) << ", until "
         << ClockAfter(clock_.SecondsSinceMidnight(), estimatedMinutes * 60);
  }
  out_ << '\n' << std::flush;
}

void ProgressLine::Activity(const std::string& text) {
  activity_ = text;
  Redraw();
}

void ProgressLine::Countdown(double seconds) {
  Activity("dwelling " + Format(seconds, "##0.0") + " s");
}

void ProgressLine::PrintStep() {
  if (!terminal_ && now_.Step > 0) out_ << Text() << '\n' << std::flush;
}

void ProgressLine::End() {
  if (!open_) return;
  out_ << '\n' << std::flush;
  open_ = false;
}

std::string ProgressLine::Text() const {
  return "step " + std::to_string(now_.Step) + " of " + std::to_string(now_.Steps) + "  " +
         Format(now_.FrequencyMHz, "0.0#####") + " MHz  " + Format(now_.LevelDbm, "##0.0") + " dBm  elapsed " +
         DurationText(now_.ElapsedMinutes * 60) + "  remaining " + DurationText(now_.RemainingMinutes * 60);
}

void ProgressLine::Redraw() {
  if (!terminal_) return;
  const auto now = std::chrono::steady_clock::now();
  if (now - drawn_ < kRedrawInterval) return;
  drawn_ = now;
  out_ << '\r' << Text() << "  " << ahead_ << (ahead_.empty() ? "" : "  ") << activity_ << "\x1b[K" << std::flush;
  open_ = true;
}

}  // namespace hylden
