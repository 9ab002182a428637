#include "app/ProgressLine.h"

#include <ostream>
#include <utility>

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
  std::string text = std::to_string(steps) + (steps == 1 ? " step" : " steps");
  if (estimatedMinutes > 0)
    text += ", estimated " + DurationText(estimatedMinutes * 60) + ", until " +
            ClockAfter(clock_.SecondsSinceMidnight(), estimatedMinutes * 60);
  Write(text + '\n');
}

void ProgressLine::Activity(const std::string& text) {
  activity_ = text;
  Redraw();
}

void ProgressLine::Countdown(double seconds) {
  Activity("dwelling " + Format(seconds, "##0.0") + " s");
}

void ProgressLine::PrintStep() {
  if (!terminal_ && now_.Step > 0) Write(Text() + '\n');
}

void ProgressLine::Note(const std::string& text) {
  Write((terminal_ ? "\r" + text + "\x1b[K" : text) + '\n');
  open_ = false;
}

void ProgressLine::Write(std::string text) {
  ++waiting_;
  writer_.Post([this, text = std::move(text)] {
    out_ << text << std::flush;
    --waiting_;
  });
}

void ProgressLine::End() {
  writer_.Wait();
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
  if (now - drawn_ < kRedrawInterval || waiting_ > 0) return;
  drawn_ = now;
  Write('\r' + Text() + "  " + ahead_ + (ahead_.empty() ? "" : "  ") + activity_ + "\x1b[K");
  open_ = true;
}

}  // namespace hylden
