#include "app/ConsoleDisplay.h"

namespace hylden {

void ConsoleDisplay::Phase(RunPhase phase) {
  if (phase == RunPhase::TakingDown) PrintDone();
  if (phase == RunPhase::BringingUp || phase == RunPhase::Asking || phase == RunPhase::Ready) line_.End();
}

void ConsoleDisplay::Step(int step) {
  PrintDone();
  line_.Now().Step = step;
  line_.Redraw();
}

/// Not when the step is done: the times at the end of a run come after its last step.
void ConsoleDisplay::PrintDone() {
  if (done_) line_.PrintStep();
  done_ = false;
}

void ConsoleDisplay::Show(Readout readout, std::optional<double> value) {
  RunProgress& now = line_.Now();
  switch (readout) {
    case Readout::Frequency:
      now.FrequencyMHz = value.value_or(0);
      break;
    case Readout::SigGenLevel:
      now.LevelDbm = value.value_or(0);
      line_.Redraw();
      break;
    case Readout::Elapsed:
      now.ElapsedMinutes = value.value_or(0);
      break;
    case Readout::Remaining:
      now.RemainingMinutes = value.value_or(0);
      break;
    default:
      break;
  }
}

}  // namespace hylden
