#pragma once

#include <optional>

namespace hylden {

class ManualMode;
struct ManualStanding;
struct ManualStart;

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
};

/// Manual mode as the operator's form holds it: the scroll bars and what has changed since the last tick of its timer.
class ManualPanel {
 public:
  explicit ManualPanel(ManualMode& mode) : mode_(mode) {}
  ManualPanel(const ManualPanel&) = delete;
  ManualPanel& operator=(const ManualPanel&) = delete;

  void Open(const ManualStart& start);
  /// The bar was moved; a value outside its range is not taken. @return whether it moved
  bool MoveStep(int step);
  bool MoveOffset(int tenths);
  /// Right and Left move a step up and down, Up and Down the level by 0.1 dB.
  bool Key(ArrowKey key);
  /// The timer: applies what has changed, the lower of two levels first. A rise takes as many ticks as the test's level
  /// increment makes of it; what the generator refuses is given up, and the bar goes back to what stands.
  void Tick();
  /// What a threshold notes: what waits is applied, a rise under way ends here. None while an event is being worked on.
  std::optional<ManualStanding> Threshold();
  /// The test goes on: a step that waits is gone to, but nothing is raised any more.
  void Leave();

  const ManualScroll& Scroll() const { return scroll_; }

 private:
  float OffsetDb() const { return static_cast<float>(scroll_.OffsetTenths) / 10; }
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
