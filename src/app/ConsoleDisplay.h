#pragma once

#include "app/ProgressLine.h"
#include "run/RunDisplay.h"

namespace hylden {

/// A run on a terminal's progress line.
class ConsoleDisplay : public RunDisplay {
 public:
  explicit ConsoleDisplay(ProgressLine& line) : line_(line) {}

  void Countdown(double seconds) override { line_.Countdown(seconds); }
  void Phase(RunPhase phase) override;
  void Status(const std::string& text) override { line_.Activity(text); }
  void Note(const std::string& text) override { line_.Note(text); }
  void Plan(const RunPlan& plan) override { line_.Start(plan.Steps, plan.EstimatedMinutes); }
  void Ahead(const RunAhead& ahead) override { line_.Ahead(ahead.Text); }
  void Step(int step) override;
  void StepDone(int /*step*/) override { done_ = true; }
  void Show(Readout readout, std::optional<double> value) override;

 private:
  void PrintDone();

  ProgressLine& line_;
  bool done_ = false;  ///< the step that stands there is complete
};

}  // namespace hylden
