#include "run/FactorLoading.h"

#include <algorithm>

#include "measure/InterpClass.h"
#include "text/Numbers.h"

namespace hylden {

PlanRange::PlanRange(std::vector<double> frequencies, std::optional<double> linearStopMHz) {
  std::sort(frequencies.begin(), frequencies.end());
  lowest_ = frequencies.front();
  highest_ = frequencies.back();
  if (linearStopMHz && highest_ > *linearStopMHz && frequencies.size() > 1)
    withoutLast_ = frequencies[frequencies.size() - 2];
}

bool PlanRange::IsWithin(double fromMHz, double toMHz) {
  if (!(fromMHz <= lowest_)) return false;
  if (toMHz >= highest_) return true;
  if (!withoutLast_ || !(toMHz >= *withoutLast_)) return false;
  leftOut_ = highest_;
  highest_ = *withoutLast_;
  withoutLast_.reset();
  return true;
}

std::string PlanRange::LeftOutText() const {
  return "The last step, " + ShortestText(leftOut_.value_or(highest_)) +
         " MHz, lies beyond the stop frequency, and tables or calibration do not cover it.\r\n"
         "It is left out; the last one is " +
         ShortestText(highest_) + " MHz.";
}

Done LoadCoveringTables(std::initializer_list<FactorTable> tables, PlanRange& plan) {
  for (const FactorTable& t : tables) {
    if (!t.Wanted) continue;
    if (const Done loaded = t.Table.InitInterp(t.Path); !loaded)
      return Because(Failure(loaded.error()).Add(Failure(t.LoadText)));
    if (!plan.IsWithin(t.Table.MinFreq(), t.Table.MaxFreq())) return Because(t.CoverText);
  }
  return {};
}

}  // namespace hylden
