#include "documents/LossCurves.h"

#include <algorithm>
#include <cmath>

#include "measure/InterpClass.h"
#include "text/Numbers.h"
#include "text/TextFile.h"

namespace hylden {

Result<std::unique_ptr<CurveFile>> LossCurves::Load(Shell& shell, const std::string& path) {
  InterpClass table(shell);
  if (const Done read = table.InitInterp(path); !read) return Because(read.error());
  return Trapped("LossCurves.Load", path, [&]() -> Result<std::unique_ptr<CurveFile>> {
    std::unique_ptr<LossCurves> curves(new LossCurves(path));
    curves->Read();
    return std::unique_ptr<CurveFile>(std::move(curves));
  });
}

/// A point of a line that holds one. The columns behind the loss are readings where they make it up.
LossCurves::Point LossCurves::PointOf(std::string_view line) {
  constexpr double kRounding = 0.02;
  Point point;
  double loss = 0, direct = 0, insert = 0;
  const bool hasReadings =
      ReadNumbers(line, {&point.Freq, &loss, &direct, &insert}) && std::abs(direct - insert - loss) <= kRounding;
  const ParsedFactorLine table = ParseFactorLine(line);
  point.Freq = table.Freq;
  point.Values[0] = table.Value;
  if (hasReadings) point.Values = {table.Value, static_cast<float>(direct), static_cast<float>(insert)};
  return point;
}

/// The lines that are points of the table.
void LossCurves::Read() {
  for (LineReader lines(ReadTextFile(Path())); !lines.AtEnd();) {
    const std::string_view line = lines.NextLine();
    if (ParseFactorLine(line).Ok) points_.push_back(PointOf(line));
  }
  std::stable_sort(points_.begin(), points_.end(), [](const Point& a, const Point& b) { return a.Freq < b.Freq; });
}

const std::vector<CurveQuantity>& LossCurves::Quantities() const {
  static const std::vector<CurveQuantity> kQuantities = {
      {"Insertion loss", "dB", "The reading without the cable less the one with it"},
      {"Direct", "dBuV", "The reading without the cable"},
      {"Insert", "dBuV", "The reading with the cable"}};
  return kQuantities;
}

std::vector<CurvePoint> LossCurves::Points(std::size_t quantity) const {
  std::vector<CurvePoint> points;
  points.reserve(points_.size());
  for (const Point& point : points_) points.push_back({point.Freq, static_cast<double>(point.Values[quantity])});
  return points;
}

double LossCurves::ValueAt(std::size_t quantity, double freqMHz) {
  if (points_.empty() || !(freqMHz >= points_.front().Freq && freqMHz <= points_.back().Freq)) return kGap;
  const auto valueOf = [quantity](const Point& point) { return point.Values[quantity]; };
  return static_cast<double>(
      cursor_.ValueAt(points_, freqMHz, DuplicateRule::Larger, valueOf, [&](const Point& a, const Point& b) {
        return Interpolate(a.Freq, a.Values[quantity], b.Freq, b.Values[quantity], freqMHz, FreqScale::Linear);
      }));
}

std::string LossCurves::Description() const {
  if (points_.empty()) return {};
  return std::to_string(points_.size()) + " points, " + ShortestText(points_.front().Freq) + " - " +
         ShortestText(points_.back().Freq) + " MHz";
}

}  // namespace hylden
