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

Done LoadCoveringTable(InterpClass& table, const std::string& path, PlanRange& plan, const char* loadText,
                       const char* coverText) {
  if (const Done loaded = table.InitInterp(path); !loaded)
    return Because(Failure(loaded.error()).Add(Failure(loadText)));
  return plan.IsWithin(table.MinFreq(), table.MaxFreq()) ? Done() : Because(coverText);
}

}  // namespace hylden
