#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace hylden {

/// The scale on which a lookup interpolates between frequencies.
enum class FreqScale : int { Linear = 0, Log = 1 };
/// Which of two points at one frequency (a band change) counts.
enum class DuplicateRule : int { Larger = 0, Smaller = 1 };

/// Two-point interpolation at f; on the logarithmic scale a lower frequency below 1e-6 MHz gives -999.
float Interpolate(double f1, float y1, double f2, float y2, double f, FreqScale scale);
float PickDuplicate(float a, float b, DuplicateRule rule);

/// Looks values up in points of rising frequency, each with a Freq in MHz. Lookups at rising frequencies take constant
/// time.
class FrequencyCursor {
 public:
  /// The value at a frequency; of two points there (a band change) the rule says which one counts.
  /// @param valueOf  the value of a point
  /// @param between  the value between a point and the next
  /// @pre the frequency lies within the points
  template <class Point, class ValueOf, class Between>
  float ValueAt(const std::vector<Point>& points, double frequency, DuplicateRule rule, ValueOf valueOf,
                Between between) {
    MoveTo(points, frequency);
    const Point& found = points[index_];
    if (frequency < found.Freq) return between(points[index_ - 1], found);
    const bool pair = index_ + 1 < points.size() && points[index_ + 1].Freq == frequency;
    return pair ? PickDuplicate(valueOf(found), valueOf(points[index_ + 1]), rule) : valueOf(found);
  }

 private:
  /// To the first point that is not below the frequency; points may have been loaded anew.
  template <class Point>
  void MoveTo(const std::vector<Point>& points, double frequency) {
    constexpr int kNear = 4;
    if (index_ >= points.size()) index_ = 0;
    if (index_ == 0 || frequency > points[index_ - 1].Freq)
      for (int step = 0; step < kNear; ++step, ++index_)
        if (frequency <= points[index_].Freq) return;
    const auto first = std::lower_bound(points.begin(), points.end(), frequency,
                                        [](const Point& point, double f) { return point.Freq < f; });
    index_ = static_cast<std::size_t>(first - points.begin());
  }

  std::size_t index_ = 0;
};

}  // namespace hylden
