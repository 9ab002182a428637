#pragma once

#include <chrono>
#include <iosfwd>
#include <string>

#include "testrun/RunDisplay.h"

namespace hylden {

/// A test run on a terminal: one progress line (step, frequency, level, elapsed, remaining) that is rewritten in place;
/// where the output is no terminal, a plain line for every step.
class ConsoleDisplay : public RunDisplay {
 public:
  ConsoleDisplay(std::ostream& out, bool terminal) : out_(out), terminal_(terminal) {}

  void Countdown(double seconds) override;
  void Status(const std::string& text) override;
  void Step(int step) override;
  void Frequency(double frequencyMHz) override { frequencyMHz_ = frequencyMHz; }
  void SigGenLevel(float levelDbm) override;
  void TestLevel(float) override {}
  void InducedLevel(double, double) override {}
  void Power(double) override {}
  void Highlight(Quantity, bool) override {}
  void Dwell(double) override {}
  void Plan(int steps, double estimatedMinutes) override;
  void Elapsed(double minutes) override { elapsedMinutes_ = minutes; }
  void Remaining(double minutes) override { remainingMinutes_ = minutes; }
  void RowChanged(int) override {}

  /// Ends the progress line, so that other text starts on a line of its own.
  void EndLine();
  /// The run has ended: the last step's line is completed.
  void Finish();

 private:
  std::string Progress() const;
  void Redraw();
  void PrintStep();

  std::ostream& out_;
  bool terminal_;
  bool lineOpen_ = false;
  int step_ = 0, steps_ = 0;
  double frequencyMHz_ = 0;
  float levelDbm_ = 0;
  double elapsedMinutes_ = 0, remainingMinutes_ = 0;
  std::string activity_;
  std::chrono::steady_clock::time_point drawn_{};
};

}  // namespace hylden
