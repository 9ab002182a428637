#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "run/StepTimes.h"

namespace hylden {

class RunDisplay;
class Shell;

/// Times a run, without manual mode and without what waits for the operator, keeps what its steps took in times.txt of
/// the program directory, and tells by earlier runs how long this one takes. What can't be read or written costs no
/// more than the estimate.
class TimeKeeper {
 public:
  TimeKeeper(Shell& shell, RunDisplay& display) : shell_(shell), display_(display) {}

  /// What the run to come consists of; shows how long it takes. RF is off.
  /// @param kind  runs of one kind, at one station, differ in their definition's numbers only
  void Expect(const std::string& kind, const std::string& station, std::vector<ExpectedStep> steps);
  /// s; 0: nobody can tell.
  double PredictedSeconds() const { return predicted_; }
  /// Since the start, s.
  double Seconds() const;

  /// The instruments are going to be brought up.
  void Start();
  /// What lies between these two is not counted.
  void Pause() { pausedMs_ = CountedMs(); }
  void Resume() { startMs_ += CountedMs() - pausedMs_, lapMs_ += CountedMs() - pausedMs_; }
  void InstrumentsUp();
  /// A step, counted from 0 among those expected, is complete.
  /// @param whole  its dwell was not cut
  void StepDone(std::size_t step, int waits, double readings, bool whole);
  /// Shows what lies ahead before this step, at the pace that the run has had so far.
  void ShowAhead(std::size_t step);
  /// The instruments are going to be taken down.
  void TakingDown() { Lap(); }
  /// They are down.
  /// @param inOrder  nothing had failed
  void Ended(bool inOrder);
  /// Keeps what this run took. RF is off, since a disk may stall.
  void Keep();

 private:
  std::int64_t CountedMs() const;
  double Lap();
  double Pace() const;
  std::string File() const;
  std::vector<RunTimes> Runs() const;

  Shell& shell_;
  RunDisplay& display_;
  std::string key_;
  std::vector<ExpectedStep> expected_;
  std::vector<double> left_;  ///< before each step and behind the last, s; empty where nobody can tell
  double predicted_ = 0;
  double foreseen_ = 0, taken_ = 0;  ///< for the steps that are done, s: by earlier runs, and now
  double share_ = 0;                 ///< of the run that is over
  std::int64_t startMs_ = 0, lapMs_ = 0, pausedMs_ = 0;
  std::optional<double> up_, down_;
  std::vector<MeasuredStep> measured_;
  std::size_t next_ = 0;  ///< step that goes on from the one before it
};

}  // namespace hylden
