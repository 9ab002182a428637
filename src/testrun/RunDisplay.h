#pragma once

#include <string>

#include "shell/BDelay.h"

namespace hylden {

/// Where a test run shows itself: the run window, the console runner, a recording test double. Frequencies in MHz, test
/// levels in dBuV, induced levels in dBuA, powers in dBm; a limit of -999 is none. A display leaves out what it
/// has no place for; it never fails and never blocks.
class RunDisplay : public CountdownWindow {
 public:
  /// The quantities that turn red when they held the level.
  enum class Quantity { SigGenLevel, InducedLevel, ForwardPower };

  void Countdown(double /*seconds*/) override {}
  virtual void Status(const std::string& /*text*/) {}
  virtual void Step(int /*step*/) {}
  /// Manual mode went to this step; its row of the run data is the one to look at until manual mode ends.
  virtual void ManualStep(int /*step*/, int /*row*/) {}
  virtual void Frequency(double /*frequencyMHz*/) {}
  virtual void SigGenLevel(float /*levelDbm*/) {}
  virtual void TestLevel(float /*levelDbuv*/) {}
  virtual void InducedLevel(double /*levelDbua*/, double /*limitDbua*/) {}
  virtual void Power(double /*powerDbm*/) {}
  /// A step begins: the induced level and the power shown are those of the step before.
  virtual void ForgetReadings() {}
  virtual void Highlight(Quantity /*quantity*/, bool /*red*/) {}
  virtual void Dwell(double /*seconds*/) {}
  virtual void Plan(int /*steps*/, double /*estimatedMinutes*/) {}
  /// The test's start and stop frequency.
  virtual void Range(double /*startMHz*/, double /*stopMHz*/) {}
  virtual void Elapsed(double /*minutes*/) {}
  virtual void Remaining(double /*minutes*/) {}
  /// The run data was set up afresh (row -1), or this row was added or changed (counted from the header, row 0).
  virtual void RowChanged(int /*row*/) {}
};

}  // namespace hylden
