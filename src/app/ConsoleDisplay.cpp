#include "app/ConsoleDisplay.h"

#include <ostream>

#include "text/Pattern.h"

namespace hylden {

namespace {
constexpr auto kRedrawInterval = std::chrono::milliseconds(100);
}

void ConsoleDisplay::Countdown(double seconds) {
  activity_ = "dwelling " + Format(seconds, "##0.0") + " s";
  Redraw();
}

void ConsoleDisplay::Status(const std::string& text) {
  activity_ = text;
  Redraw();
}

void ConsoleDisplay::Step(int step) {
  PrintStep();
  step_ = step;
  Redraw();
}

void ConsoleDisplay::SigGenLevel(float levelDbm) {
  levelDbm_ = levelDbm;
  Redraw();
}

void ConsoleDisplay::Plan(int steps, double estimatedMinutes) {
  steps_ = steps;
  EndLine();
  out_ << steps << " steps, estimated " << Format(estimatedMinutes, "##0.0") << " min\n" << std::flush;
}

void ConsoleDisplay::EndLine() {
  if (!lineOpen_) return;
  out_ << '\n' << std::flush;
  lineOpen_ = false;
}

void ConsoleDisplay::Finish() {
  PrintStep();
  EndLine();
  step_ = 0;
}

void ConsoleDisplay::PrintStep() {
  if (!terminal_ && step_ > 0) out_ << Progress() << '\n' << std::flush;
}

std::string ConsoleDisplay::Progress() const {
  return "step " + std::to_string(step_) + " of " + std::to_string(steps_) + "  " + Format(frequencyMHz_, "0.0#####") +
         " MHz  " + Format(levelDbm_, "##0.0") + " dBm  elapsed " + Format(elapsedMinutes_, "##0.0") +
         " min  remaining " + Format(remainingMinutes_, "##0.0") + " min";
}

void ConsoleDisplay::Redraw() {
  if (!terminal_) return;
  const auto now = std::chrono::steady_clock::now();
  if (now - drawn_ < kRedrawInterval) return;
  drawn_ = now;
  out_ << '\r' << Progress() << "  " << activity_ << "\x1b[K" << std::flush;
  lineOpen_ = true;
}

}  // namespace hylden
