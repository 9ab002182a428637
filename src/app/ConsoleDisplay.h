#pragma once

#include "app/ProgressLine.h"
#include "calibration/CalibrationDisplay.h"
#include "testrun/RunDisplay.h"

namespace hylden {

/// A test run on a terminal's progress line.
class ConsoleDisplay : public RunDisplay {
 public:
  explicit ConsoleDisplay(ProgressLine& line) : line_(line) {}

  void Countdown(double seconds) override { line_.Countdown(seconds); }
  void Status(const std::string& text) override { line_.Activity(text); }
  void Step(int step) override;
  void Frequency(double frequencyMHz) override { line_.Now().FrequencyMHz = frequencyMHz; }
  void SigGenLevel(float levelDbm) override;
  void Plan(int steps, double estimatedMinutes) override { line_.Start(steps, estimatedMinutes); }
  void Elapsed(double minutes) override { line_.Now().ElapsedMinutes = minutes; }
  void Remaining(double minutes) override { line_.Now().RemainingMinutes = minutes; }

  /// The run has ended: the last step's line is completed.
  void Finish();

 private:
  ProgressLine& line_;
};

/// A calibration on a terminal's progress line.
class ConsoleCalDisplay : public CalibrationDisplay {
 public:
  explicit ConsoleCalDisplay(ProgressLine& line) : line_(line) {}

  void Countdown(double seconds) override { line_.Countdown(seconds); }
  void Running(bool running) override {
    if (running) line_.End();
  }
  void Status(const std::string& text) override { line_.Activity(text); }
  void Plan(const CalibrationPlan& plan) override;
  void Frequency(double frequencyMHz) override;
  void SigGenLevel(float levelDbm) override;
  void Step(int step) override;
  void Elapsed(double minutes) override { line_.Now().ElapsedMinutes = minutes; }
  void Remaining(double minutes) override { line_.Now().RemainingMinutes = minutes; }

 private:
  ProgressLine& line_;
  int done_ = 0;
};

}  // namespace hylden
