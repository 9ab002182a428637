#pragma once

#include <string>

#include "shell/BDelay.h"

namespace hylden {

/// Where a test run shows itself: the run window, the console runner, a recording test double. Frequencies in MHz, test
/// levels in dBuV, induced levels in dBuA, powers in dBm; a limit of -999 is none. A display never fails and never
/// blocks.
class RunDisplay : public CountdownWindow {
 public:
  /// The quantities that turn red when they held the level.
  enum class Quantity { SigGenLevel, InducedLevel, ForwardPower };

  virtual void Status(const std::string& text) = 0;
  virtual void Step(int step) = 0;
  virtual void Frequency(double frequencyMHz) = 0;
  virtual void SigGenLevel(float levelDbm) = 0;
  virtual void TestLevel(float levelDbuv) = 0;
  virtual void InducedLevel(double levelDbua, double limitDbua) = 0;
  virtual void Power(double powerDbm) = 0;
  virtual void Highlight(Quantity quantity, bool red) = 0;
  virtual void Dwell(double seconds) = 0;
  virtual void Plan(int steps, double estimatedMinutes) = 0;
  /// The test's start and stop frequency.
  virtual void Range(double /*startMHz*/, double /*stopMHz*/) {}
  virtual void Elapsed(double minutes) = 0;
  virtual void Remaining(double minutes) = 0;
  /// The run data was set up afresh (row -1), or this row was added or changed (counted from the header, row 0).
  virtual void RowChanged(int row) = 0;
};

}  // namespace hylden
