#pragma once

#include <string>

#include "calibration/CalibrationDisplay.h"
#include "testrun/RunDisplay.h"

namespace hylden {

/// A run window in which nobody looks; the base of those that watch something.
class SilentRunDisplay : public RunDisplay {
 public:
  void Countdown(double) override {}
  void Status(const std::string&) override {}
  void Step(int) override {}
  void Frequency(double) override {}
  void SigGenLevel(float) override {}
  void TestLevel(float) override {}
  void InducedLevel(double, double) override {}
  void Power(double) override {}
  void Highlight(Quantity, bool) override {}
  void Dwell(double) override {}
  void Plan(int, double) override {}
  void Elapsed(double) override {}
  void Remaining(double) override {}
  void RowChanged(int) override {}
};

/// The same for a calibration.
class SilentCalibrationDisplay : public CalibrationDisplay {
 public:
  void Countdown(double) override {}
  void Running(bool) override {}
  void Status(const std::string&) override {}
  void Plan(const CalibrationPlan&) override {}
  void Frequency(double) override {}
  void SigGenLevel(float) override {}
  void MeterLevel(double) override {}
  void Step(int) override {}
  void Elapsed(double) override {}
  void TableCut(int) override {}
  void RowChanged(int) override {}
};

}  // namespace hylden
