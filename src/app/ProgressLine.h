#pragma once

#include <atomic>
#include <chrono>
#include <iosfwd>
#include <string>

#include "platform/Clock.h"
#include "platform/native/WorkThread.h"

namespace hylden {

/// How far a run is: steps counted from 1, MHz, dBm, minutes.
struct RunProgress {
  int Step = 0, Steps = 0;
  double FrequencyMHz = 0;
  double LevelDbm = 0;
  double ElapsedMinutes = 0, RemainingMinutes = 0;
};

/// The progress of a run on a terminal: one line (step, frequency, level, elapsed, remaining) that is rewritten in
/// place; where the output is no terminal, a plain line for every step. RF is on meanwhile, and may not stay on because
/// nobody takes the output (a pager, a stopped terminal, a line that went dead): it is written on a thread of its own,
/// and only End waits for it.
class ProgressLine {
 public:
  ProgressLine(std::ostream& out, bool terminal, const Clock& clock) : out_(out), terminal_(terminal), clock_(clock) {}

  /// Starts a run of this many steps.
  /// @param estimatedMinutes  0 where nobody can tell
  void Start(int steps, double estimatedMinutes);
  /// How far the run is, to be changed; Redraw shows it on a terminal now and then.
  RunProgress& Now() { return now_; }
  void Redraw();
  void Activity(const std::string& text);
  /// How long it takes yet, for a terminal; empty where nobody can tell.
  void Ahead(const std::string& text) { ahead_ = text; }
  void Countdown(double seconds);
  /// A line of its own, which stays.
  void Note(const std::string& text);
  /// The step that stands there is complete: the plain line for it.
  void PrintStep();

  /// Waits until all is written, and ends the line, so that other text starts on a line of its own. Not while RF is on.
  void End();

 private:
  std::string Text() const;
  void Write(std::string text);

  std::ostream& out_;
  bool terminal_;
  const Clock& clock_;
  bool open_ = false;
  RunProgress now_;
  std::string activity_, ahead_;
  std::chrono::steady_clock::time_point drawn_{};
  std::atomic<int> waiting_{0};  ///< texts that are not written yet
  WorkThread writer_;
};

}  // namespace hylden
