#pragma once

#include <optional>
#include <string>
#include <vector>

#include "calibration/CableSetup.h"
#include "measure/Conversions.h"
#include "run/ElapsedTime.h"
#include "run/InstrumentsUp.h"
#include "run/RunGuard.h"
#include "run/RunJournal.h"
#include "run/TimeKeeper.h"
#include "run/UnsavedRows.h"

namespace hylden {

class RunDisplay;
class Shell;
struct Instruments;

/// One frequency of an insertion-loss calibration: MHz, dBm; readings in dBuV, -999 until measured; the loss in dB.
struct CablePoint {
  double Freq = 0;
  float SigGenLevel = 0;
  double Direct = kNoValue;
  double Insert = kNoValue;
  double Loss = 0;

  bool HasDirect() const { return !IsMissing(Direct); }
  bool HasBoth() const { return HasDirect() && !IsMissing(Insert); }
};

template <class F>
void RowValues(F& f, CablePoint& point) {
  f.Value(point.Freq);
  f.Value(point.SigGenLevel);
  f.Value(point.Direct);
  f.Value(point.Insert);
  f.Value(point.Loss);
}

/// Those with both readings, which an insertion loss can be made of.
std::vector<CablePoint> CompletePoints(const std::vector<CablePoint>& points);

/// Measures what a cable loses over frequency: a direct pass with the generator straight at the meter, then an insert
/// pass through the cable. Setup and points live as long as the program, until the next plan. However a pass ends, RF
/// is off and the instruments are offline. A pass that ends early keeps the plan and what it has measured: a direct
/// pass has to be taken again, an insert pass costs no direct reading.
class RunCablCal {
 public:
  RunCablCal(Shell& shell, Instruments& instruments);

  CableSetup Setup;

  /// Plans the points of the setup anew. Readings of the same plan are kept, unless their complete loss is saved.
  /// @return false after a message, or when the operator wants to keep readings; the points before are then kept
  bool BuildPlan();
  const std::vector<CablePoint>& Points() const { return points_; }

  /// Both return when the pass ended, failed or was halted. Nothing is done when the operator wants to keep readings
  /// that it would drop.
  void DirectPass(RunDisplay& display);
  void InsertPass(RunDisplay& display);

  /// Asks for a file and writes the complete points to it: those with both readings. @return false after a message, or
  /// when cancelled
  bool SaveFile() { return unsaved_.Save(); }
  /// Complete points that are in no file. No pass asks about them at its end.
  UnsavedRows& Unsaved() { return unsaved_; }
  const UnsavedRows& Unsaved() const { return unsaved_; }

  bool IsRunning() const { return guard_.IsRunning(); }
  RunOutcome Outcome() const { return guard_.Outcome(); }

 private:
  /// One of the two passes.
  struct Pass {
    RunDisplay& Display;
    bool Inserted;
  };

  bool Halted() const;
  bool Keeps(const std::vector<double>& plan) const;
  bool IsComplete() const;
  bool HasAllDirect() const;
  /// Asks before readings go that are not saved, or that wait for their insert pass. @return false when they have to
  /// stay
  bool MayDropReadings(bool dropsDirect);
  bool WriteFile();
  void RunPass(const Pass& pass, const char* context);
  bool BringUp(const Pass& pass);
  void ShowPlan(const Pass& pass);
  void Sweep(const Pass& pass);
  bool MeasurePoint(const Pass& pass, std::size_t index);
  bool Tune(double frequencyMHz, float levelDbm);
  std::optional<double> Read();
  void Store(const Pass& pass, CablePoint& point, float levelDbm, double reading);
  void Journal(const Pass& pass);
  void ExpectTimes(const Pass& pass);
  void EndPass(const Pass& pass);

  Shell& shell_;
  Instruments& instruments_;
  RunGuard guard_;
  InstrumentsUp up_;
  UnsavedRows unsaved_;
  ElapsedTime elapsed_;
  std::vector<CablePoint> points_;
  std::size_t current_ = 0;  ///< the point at work, counted from 1
  RunJournal journal_;
  std::optional<TimeKeeper> times_;  ///< of the pass
};

}  // namespace hylden
