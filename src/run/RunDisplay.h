#pragma once

#include <optional>
#include <string>

#include "shell/BDelay.h"

namespace hylden {

/// The figures of a run, in their units.
enum class Readout {
  Frequency,     ///< MHz
  SigGenLevel,   ///< dBm
  TestLevel,     ///< at the coupling device, dBuV
  InducedLevel,  ///< dBuA
  InducedLimit,  ///< where the induced level is held, dBuA; -999 where it is not
  ForwardPower,  ///< dBm
  MeterLevel,    ///< dBuV
  CableLoss,     ///< dB
  Dwell,         ///< of the step at work, s
  Elapsed,       ///< minutes
  Remaining      ///< minutes
};

/// How a run stands.
enum class RunPhase {
  Ready,       ///< it can be started, and what was recorded can be saved
  BringingUp,  ///< it was started: the instruments are being brought up
  Running,
  TakingDown,  ///< it is over: the instruments are being taken down
  Asking       ///< the operator is asked about what was recorded
};

/// What a run is going to do.
struct RunPlan {
  int Steps = 0;
  double StartMHz = 0, StopMHz = 0;
  double DwellSeconds = 0;      ///< of every step; 0 where each has its own
  double EstimatedMinutes = 0;  ///< 0 where nobody can tell
};

/// What lies ahead of a run, by what earlier runs at the station took.
struct RunAhead {
  double Share = 0;  ///< of its time that is over, 0 to 1
  std::string Text;  ///< "about 0:12:34 left, ends at 14:05"; empty where nobody can tell
};

/// Where a run shows itself: its window, the console runner, a recording test double. A display leaves out what it has
/// no place for; it never fails and never blocks. Steps and rows are counted from 1.
class RunDisplay : public CountdownWindow {
 public:
  void Countdown(double /*seconds*/) override {}
  virtual void Phase(RunPhase /*phase*/) {}
  /// What it does just now; empty: nothing.
  virtual void Status(const std::string& /*text*/) {}
  /// What stays true to the end of the run, whatever the status says meanwhile.
  virtual void Note(const std::string& /*text*/) {}
  virtual void Plan(const RunPlan& /*plan*/) {}
  /// Before a run, and behind each of its steps; where nobody can tell once more when it is over.
  virtual void Ahead(const RunAhead& /*ahead*/) {}
  virtual void Step(int /*step*/) {}
  /// The step is complete; its figures and times have been shown.
  virtual void StepDone(int /*step*/) {}
  /// Nothing: the figure is one of the step before.
  virtual void Show(Readout /*readout*/, std::optional<double> /*value*/) {}
  /// Whether this is what held the level.
  virtual void Mark(Readout /*readout*/, bool /*held*/) {}
  /// This row is there or has changed; it may be one beyond the last. 0: there are none any more.
  virtual void RowChanged(int /*row*/) {}
};

}  // namespace hylden
