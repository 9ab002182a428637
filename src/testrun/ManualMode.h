#pragma once

#include <exception>
#include <functional>
#include <optional>
#include <string>

#include "testrun/RunContext.h"

namespace hylden {

/// Range of the level scroll bar, in tenths of a dB: deep enough for any threshold, and little enough above the
/// calibrated level that a slipped key does no harm.
inline constexpr int kLowestOffsetTenths = -600, kHighestOffsetTenths = 100;
/// Pace at which manual changes are applied, ms.
inline constexpr int kManualTimerMs = 500;

enum class ArrowKey { Left, Right, Up, Down };

/// The two scroll bars of manual mode.
struct ManualScroll {
  int Step = 1;          ///< 1 to the highest step reached
  int OffsetTenths = 0;  ///< tenths of a dB
  bool operator==(const ManualScroll&) const = default;
};
/// Right and Left move a step up and down, Up and Down the level by 0.1 dB. A key that would leave a range moves
/// nothing.
ManualScroll MoveByKey(ManualScroll now, ArrowKey key, int highestStep);

/// What stands at the product in manual mode.
struct ManualStanding {
  double Freq = 0;   ///< MHz
  float Offset = 0;  ///< dB from the level reached at the step
};

/// Manual mode as the run sees it: what the operator's events do to the instruments and the run data. A failing
/// instrument ends with RF off; nothing raises the level once a halt was requested. Offsets in dB.
class ManualMode {
 public:
  explicit ManualMode(RunContext& run) : run_(run) {}

  /// @param constantPeakOffset  dB, of the step just run
  void Enter(int step, int highestStep, float constantPeakOffset);
  void Leave() { active_ = false; }
  bool IsActive() const { return active_; }
  /// An event is being worked on; changes wait for the next tick of the timer.
  bool IsBusy() const { return busy_; }
  int ReturnStep() const { return returnStep_; }
  /// The last offset that the generator took.
  float LevelOffset() const { return levelOffset_; }
  /// The last frequency and offset that the generator took.
  const ManualStanding& Standing() const { return standing_; }
  /// The most that the level may rise at once: the test's level increment.
  float MostRise() const;
  bool ModulationIsOn() const { return modulationOn_; }

  /// Goes to a step that has been run, at the present offset. A generator that refuses stays there with RF off.
  /// @return false when it was refused or not listened to
  bool manStepNumChange(int step);
  /// A generator that refuses ends with RF off, and the offset is the one before.
  /// @return false when it was refused or not listened to
  bool manLevOffsetChange(float offsetDb);
  void manRfOn(bool on);
  void manModOn(bool on);
  /// Notes a threshold and asks for a comment; without one the row stays. Nothing while an event is being worked on:
  /// nothing stands at the product while the amplifiers change over.
  void manThresholdClick(double frequencyMHz, float offsetDb);
  void manExitClick();

 private:
  bool Handle(const std::function<Done()>& change);
  void Trap(const std::exception& error);
  Done GoToStep(int step);
  Done SetLevel();
  void ShowStep();
  void ShowLevel();
  Done SwitchRf(bool on);
  Done SwitchModulation(bool on);
  void SwitchRfOff();
  double FreqNow() const { return run_.inputs->Steps[static_cast<std::size_t>(returnStep_ - 1)].Freq; }
  const ReachedStep& StepNow() const { return *run_.reached[static_cast<std::size_t>(returnStep_ - 1)]; }

  RunContext& run_;
  bool active_ = false;
  bool busy_ = false;
  int returnStep_ = 1;
  int highestStep_ = 1;
  float levelOffset_ = 0;
  float constantPeakOffset_ = 0;
  ManualStanding standing_;
  float exposedOffset_ = 0;  ///< the last offset that stood there with RF on
  bool modulationOn_ = false;
};

/// Manual mode as the operator's form holds it: the scroll bars and what has changed since the last tick of its timer.
class ManualPanel {
 public:
  explicit ManualPanel(ManualMode& mode) : mode_(mode) {}

  void Open(const ManualStart& start);
  /// The bar was moved; a value outside its range is not taken. @return whether it moved
  bool MoveStep(int step);
  bool MoveOffset(int tenths);
  bool Key(ArrowKey key);
  /// The timer: applies what has changed, the lower of two levels first. A rise takes as many ticks as the test's level
  /// increment makes of it; what the generator refuses is given up, and the bar goes back to what stands.
  void Tick();
  /// What a threshold notes: what waits is applied, a rise under way ends here. None while an event is being worked on.
  std::optional<ManualStanding> Threshold();
  /// The test goes on: a step that waits is gone to, but nothing is raised any more.
  void Leave();

  const ManualScroll& Scroll() const { return scroll_; }
  int HighestStep() const { return highestStep_; }
  float OffsetDb() const { return static_cast<float>(scroll_.OffsetTenths) / 10; }
  std::string OffsetText() const;

 private:
  bool Apply(bool step, bool level);
  void EndRise();

  ManualMode& mode_;
  ManualScroll scroll_;
  int highestStep_ = 1;
  bool stepChanged_ = false;
  bool levelChanged_ = false;
  bool rising_ = false;  ///< the last tick left a part of the rise to the next one
};

}  // namespace hylden
