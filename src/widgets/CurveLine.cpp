#include "widgets/CurveLine.h"

#include <algorithm>
#include <cmath>

namespace hylden {

namespace {

/// Pieces of a bent line: close enough that their corners can't be seen.
constexpr double kPieceRatio = 0.02;
constexpr int kMostPieces = 64;

/// The bent line from one point to the next, without its ends.
void Bend(const CurvePoint& from, const CurvePoint& to, FreqAxis shownOn, std::vector<CurvePoint>& line) {
  const double ratio = std::log(to.Freq / from.Freq);
  const int pieces = std::clamp(static_cast<int>(ratio / kPieceRatio), 1, kMostPieces);
  for (int piece = 1; piece < pieces; ++piece) {
    const double t = static_cast<double>(piece) / pieces;
    const double shown =
        shownOn == FreqAxis::Log ? from.Freq * std::exp(t * ratio) : from.Freq + t * (to.Freq - from.Freq);
    const double share =
        shownOn == FreqAxis::Log ? (shown - from.Freq) / (to.Freq - from.Freq) : std::log(shown / from.Freq) / ratio;
    line.push_back({shown, from.Value + share * (to.Value - from.Value)});
  }
}

}  // namespace

std::vector<CurvePoint> LineThrough(const std::vector<CurvePoint>& points, FreqAxis straightOn, FreqAxis shownOn) {
  std::vector<CurvePoint> line;
  line.reserve(points.size());
  for (const CurvePoint& point : points) {
    if (point.Freq <= 0 && (straightOn == FreqAxis::Log || shownOn == FreqAxis::Log)) continue;
    if (straightOn != shownOn && !line.empty()) Bend(CurvePoint(line.back()), point, shownOn, line);
    line.push_back(point);
  }
  return line;
}

}  // namespace hylden
