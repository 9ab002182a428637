#include "app/ConsoleDisplay.h"

namespace hylden {

void ConsoleDisplay::Step(int step) {
  line_.PrintStep();
  line_.Now().Step = step;
  line_.Redraw();
}

void ConsoleDisplay::SigGenLevel(float levelDbm) {
  line_.Now().LevelDbm = levelDbm;
  line_.Redraw();
}

void ConsoleDisplay::Finish() {
  line_.PrintStep();
  line_.End();
}

void ConsoleCalDisplay::Plan(const CalibrationPlan& plan) {
  done_ = 0;
  line_.Start(plan.Points, plan.EstimatedMinutes);
}

void ConsoleCalDisplay::Frequency(double frequencyMHz) {
  line_.Now().Step = done_ + 1;
  line_.Now().FrequencyMHz = frequencyMHz;
}

void ConsoleCalDisplay::SigGenLevel(float levelDbm) {
  line_.Now().LevelDbm = levelDbm;
  line_.Redraw();
}

void ConsoleCalDisplay::Step(int step) {
  done_ = step;
  line_.PrintStep();
  line_.Redraw();
}

}  // namespace hylden
