#pragma once

#include <cstddef>
#include <vector>

#include "calibration/CableCalibration.h"
#include "documents/SaveCal.h"
#include "run/RowCurves.h"

namespace hylden {

/// What of a level calibration the curves show.
enum class CalQuantity { Level, Generator, Power, Gain };

/// One quantity of a level calibration over frequency. The gain is what the amplifier and its cables make of the
/// generator's level: forward power less level, dB.
class CalRunCurves : public RowCurves {
 public:
  /// @param targets  the wanted levels, dBuV, by rising frequency
  CalRunCurves(CalQuantity quantity, const CalRows& rows, const std::vector<CurvePoint>& targets);
  /// Adds a row, counted from 1, once it is complete. @return the points that are new
  std::vector<Added> Add(const CalRows& rows, int row);

 private:
  Values ValuesOf(const CalRow& row) const;

  CalQuantity quantity_;
  int lastRow_ = 0;
};

/// What of a cable calibration the curves show.
enum class CableQuantity { Readings, Loss };

/// How far a pass is: what is shown of it. Without one all that was read is shown.
struct CablePassShown {
  bool Passing = false, Inserted = false;
  std::size_t Measured = 0;  ///< points
};

/// The readings of both passes of a cable calibration over frequency, or its insertion loss.
class CableCurves : public RowCurves {
 public:
  CableCurves(CableQuantity quantity, const std::vector<CablePoint>& points, const CablePassShown& pass);
  /// Adds a point, counted from 1, once the pass has measured it. @return the points that are new
  std::vector<Added> Add(const std::vector<CablePoint>& points, int row, const CablePassShown& pass);

 private:
  CableQuantity quantity_;
  int lastRow_ = 0;
};

}  // namespace hylden
