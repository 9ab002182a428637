#include "calibration/CalRunCurves.h"

#include <algorithm>

#include "calibration/LevelRules.h"

namespace hylden {

namespace {

enum Pass : std::size_t { kDirect, kInsert };

std::optional<double> Present(const std::optional<double>& dbm) {
  return dbm && !IsMissing(*dbm) ? dbm : std::nullopt;
}

}  // namespace

CalRunCurves::CalRunCurves(CalQuantity quantity, const CalRows& rows, const std::vector<CurvePoint>& targets)
    : quantity_(quantity) {
  switch (quantity_) {
    case CalQuantity::Level: {
      AddCurve("Level", "dBuV");
      AddAim("Target", "dBuV", targets);
      std::vector<CurvePoint> edge = targets;
      for (CurvePoint& point : edge) point.Value += kToleranceDb;
      AddAim("Tolerance", "dBuV", std::move(edge));
      break;
    }
    case CalQuantity::Generator:
      AddCurve("Generator", "dBm");
      break;
    case CalQuantity::Power:
      AddCurve("Forward", "dBm");
      AddCurve("Reverse", "dBm");
      break;
    case CalQuantity::Gain:
      AddCurve("Gain", "dB");
      break;
  }
  for (std::size_t row = 1; row <= rows.size(); ++row) Add(rows, static_cast<int>(row));
}

RowCurves::Values CalRunCurves::ValuesOf(const CalRow& row) const {
  const std::optional<double> forward = Present(row.FwdPwr);
  switch (quantity_) {
    case CalQuantity::Generator:
      return {row.SigGenLevel};
    case CalQuantity::Power:
      return {forward, Present(row.RevPwr)};
    case CalQuantity::Gain:
      return {forward ? std::optional(*forward - row.SigGenLevel) : std::nullopt};
    case CalQuantity::Level:
      break;
  }
  return {row.Reached};
}

std::vector<RowCurves::Added> CalRunCurves::Add(const CalRows& rows, int row) {
  if (row <= lastRow_ || static_cast<std::size_t>(row) > rows.size()) return {};
  const CalRow& added = rows[static_cast<std::size_t>(row - 1)];
  if (!added.Complete) return {};
  lastRow_ = row;
  return AddRow(row, added.Freq, ValuesOf(added));
}

CableCurves::CableCurves(CableQuantity quantity, const std::vector<CablePoint>& points, const CablePassShown& pass)
    : quantity_(quantity) {
  if (quantity_ == CableQuantity::Loss) {
    AddCurve("Insertion loss", "dB");
  } else {
    AddCurve("Direct", "dBuV");
    AddCurve("Insert", "dBuV");
  }
  // In the insert pass the direct readings are all there from the beginning.
  if (quantity_ == CableQuantity::Readings && pass.Passing && pass.Inserted)
    for (std::size_t i = 0; i < points.size(); ++i)
      if (points[i].HasDirect()) AddValue(kDirect, static_cast<int>(i + 1), points[i].Freq, points[i].Direct);
  for (std::size_t row = 1; row <= points.size(); ++row) Add(points, static_cast<int>(row), pass);
}

std::vector<RowCurves::Added> CableCurves::Add(const std::vector<CablePoint>& points, int row,
                                               const CablePassShown& pass) {
  const auto index = static_cast<std::size_t>(row);
  if (row <= lastRow_ || index > points.size() || (pass.Passing && index > pass.Measured)) return {};
  lastRow_ = row;
  const CablePoint& point = points[index - 1];
  const bool both = point.HasBoth() && (pass.Inserted || !pass.Passing);
  std::vector<Added> added;
  const auto add = [&](std::size_t curve, double value) { added.push_back(AddValue(curve, row, point.Freq, value)); };
  if (quantity_ == CableQuantity::Loss) {
    if (both) add(0, point.Loss);
    return added;
  }
  if (point.HasDirect() && !(pass.Passing && pass.Inserted)) add(kDirect, point.Direct);
  if (both) add(kInsert, point.Insert);
  return added;
}

}  // namespace hylden
