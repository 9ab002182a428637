#include "bench/FrequencyTable.h"

#include <algorithm>

namespace hylden {

bool FrequencyTable::Append(double freqMHz, double value) {
  if (!points_.empty() && freqMHz < points_.back().FreqMHz) return false;
  points_.push_back({freqMHz, value});
  return true;
}

double FrequencyTable::At(double freqMHz) const {
  if (points_.empty()) return 0;
  const auto above = std::upper_bound(points_.begin(), points_.end(), freqMHz,
                                      [](double freq, const Point& point) { return freq < point.FreqMHz; });
  if (above == points_.begin()) return points_.front().Value;
  if (above == points_.end()) return points_.back().Value;
  const Point& below = *(above - 1);
  const double part = (freqMHz - below.FreqMHz) / (above->FreqMHz - below.FreqMHz);
  return below.Value + part * (above->Value - below.Value);
}

}  // namespace hylden
