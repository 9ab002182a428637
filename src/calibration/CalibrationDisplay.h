#pragma once

#include <string>

#include "shell/BDelay.h"

namespace hylden {

/// What a calibration is going to do.
struct CalibrationPlan {
  int Points = 0;
  double StartMHz = 0, StopMHz = 0;
  double DwellSeconds = 0;
  double EstimatedMinutes = 0;  ///< 0 where nobody can tell
};

/// Where a calibration shows itself: its window, the console runner, a recording test double. Frequencies in MHz,
/// levels in dBm and dBuV. A display never fails and never blocks.
class CalibrationDisplay : public CountdownWindow {
 public:
  void Countdown(double /*seconds*/) override {}
  /// Running: only Halt can be pressed. Otherwise a run can be started, and what was measured saved.
  virtual void Running(bool /*running*/) {}
  virtual void Status(const std::string& /*text*/) {}
  /// The instruments are being brought up or taken down; nothing can be done about it.
  virtual void Busy(bool /*busy*/) {}
  virtual void Plan(const CalibrationPlan& /*plan*/) {}
  virtual void Frequency(double /*frequencyMHz*/) {}
  virtual void SigGenLevel(float /*levelDbm*/) {}
  virtual void MeterLevel(double /*levelDbuv*/) {}
  /// The step that was completed, counted from 1; its figures and times have been shown.
  virtual void Step(int /*step*/) {}
  virtual void Elapsed(double /*minutes*/) {}
  virtual void Remaining(double /*minutes*/) {}
  /// The table keeps its first rows only; 0 empties it.
  virtual void TableCut(int /*rows*/) {}
  /// This row (counted from 1) is there or has changed; it may be one beyond the last.
  virtual void RowChanged(int /*row*/) {}

  // What only a level calibration shows.
  virtual void TestLevel(double /*volts*/) {}
  virtual void CableLoss(double /*db*/) {}
  virtual void ForwardPower(double /*watts*/) {}
};

/// Holds the display busy while it lives.
class BusyDisplay {
 public:
  explicit BusyDisplay(CalibrationDisplay& display) : display_(display) { display_.Busy(true); }
  ~BusyDisplay() { display_.Busy(false); }
  BusyDisplay(const BusyDisplay&) = delete;
  BusyDisplay& operator=(const BusyDisplay&) = delete;

 private:
  CalibrationDisplay& display_;
};

}  // namespace hylden
