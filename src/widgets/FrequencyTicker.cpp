#include "widgets/FrequencyTicker.h"

#include <cmath>
#include <initializer_list>

namespace hylden {

namespace {

constexpr double kFewDecades = 3;

/// The multiples of every decade that the range touches.
QVector<double> Multiples(double lower, double upper, std::initializer_list<double> factors) {
  QVector<double> ticks;
  const int last = static_cast<int>(std::floor(std::log10(upper)));
  for (int decade = static_cast<int>(std::floor(std::log10(lower))); decade <= last; ++decade)
    for (const double factor : factors) ticks << factor * std::pow(10, decade);
  return ticks;
}

}  // namespace

QVector<double> FrequencyTicker::createTickVector(double tickStep, const QCPRange& range) {
  decades_ = range.lower > 0 ? std::log10(range.upper / range.lower) : 0;
  if (decades_ < 1) return QCPAxisTicker::createTickVector(tickStep, range);
  if (decades_ > kFewDecades) return Multiples(range.lower, range.upper, {1});
  return Multiples(range.lower, range.upper, {1, 2, 5});
}

QVector<double> FrequencyTicker::createSubTickVector(int subTickCount, const QVector<double>& ticks) {
  if (decades_ < 1 || ticks.isEmpty()) return QCPAxisTicker::createSubTickVector(subTickCount, ticks);
  return Multiples(ticks.first(), ticks.last() * 10, {2, 3, 4, 5, 6, 7, 8, 9});
}

}  // namespace hylden
