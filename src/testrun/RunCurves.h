#pragma once

#include <optional>
#include <vector>

#include "measure/Conversions.h"
#include "run/RowCurves.h"
#include "testrun/RunData.h"
#include "testrun/RunUnits.h"

namespace hylden {

class clsCalFile;
struct TestDefinition;

/// What a step at a frequency (MHz) aims at; kNoValue where that is not known.
struct RunAim {
  double Freq = 0;
  double TestLevel = kNoValue;     ///< dBuV
  double SigGenCal = kNoValue;     ///< dBm
  double InducedLimit = kNoValue;  ///< dBuA
  double PowerTarget = kNoValue;   ///< forward or net power, dBm
  double ForwardCap = kNoValue;    ///< of a net power test, dBm
};
/// The aims of a test at these frequencies, by rising frequency; those that the record has no answer for are left out.
std::vector<RunAim> AimsOf(const TestDefinition& test, clsCalFile calibration, const std::vector<double>& frequencies);

/// What a run is, beside its rows. All of it may be left out: saved rows alone have curves, too.
struct RunCurveContext {
  RunUnitChoice Units = {};
  float ImpedanceOhms = 0;        ///< of the product's circuit; 0: not known
  bool ByNetPower = false;        ///< the power target is one of net power
  std::vector<RunAim> Aims = {};  ///< by rising frequency
};

/// What of a run the curves show.
enum class RunQuantity { TestLevel, Generator, Induced, Power };
inline constexpr int kRunQuantities = 4;

/// One quantity of a run over frequency, in the chosen unit: what was applied and what it aimed at, and the thresholds
/// as marks. A row that is added costs the same however many there are. Steps may be in any order and repeat
/// frequencies; what a step did not measure leaves a gap.
class RunCurves : public RowCurves {
 public:
  explicit RunCurves(RunQuantity quantity, RunCurveContext context = {});
  /// With the curves of all rows.
  RunCurves(RunQuantity quantity, RunCurveContext context, const std::vector<RunEntry>& rows);

  /// Adds a row, counted from 1, that is complete, or takes over the changed comment of a threshold. A threshold stands
  /// at the level of its step at that frequency, changed by its offset. What is not complete is left out, and so is a
  /// step that is there already.
  /// @return the points that are new
  std::vector<Added> Add(const std::vector<RunEntry>& rows, int row);

 private:
  bool IsRelative() const;
  std::string UnitOfCurves() const;
  void AddAims();
  Values AimValues(const RunAim& aim) const;
  Values ApplyValues(double frequencyMHz, const StepResult& result, double offsetDb) const;
  double LimitAt(double frequencyMHz) const;
  int LatestStepAt(double frequencyMHz, int before) const;
  std::vector<Added> AddStep(const StepEntry& step, int row);
  void AddMark(const std::vector<RunEntry>& rows, int row);

  RunQuantity quantity_;
  RunCurveContext context_;
  std::vector<int> markRows_;  ///< rising
  int lastStep_ = 0;           ///< the highest row of a step that was added
};

}  // namespace hylden
