#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "shell/Failure.h"

namespace hylden {

class InterpClass;

/// The frequencies from the first to the last point of a plan, MHz. The last point of a linear plan is rounded and may
/// lie beyond the stop frequency; where something ends before it, that point is left out.
class PlanRange {
 public:
  /// @param frequencies  of the plan, at least one, in any order
  /// @param linearStopMHz  the stop frequency of a linear plan; nothing for another
  PlanRange(std::vector<double> frequencies, std::optional<double> linearStopMHz);

  double Lowest() const { return lowest_; }
  double Highest() const { return highest_; }
  /// Whether what reaches from one frequency to the other covers the plan, if need be without its rounded last point.
  bool IsWithin(double fromMHz, double toMHz);
  /// The rounded last point, where it is not covered: the plan has to go without it.
  std::optional<double> LeftOut() const { return leftOut_; }
  /// What the operator is told about it.
  std::string LeftOutText() const;

 private:
  double lowest_, highest_;
  std::optional<double> withoutLast_;  ///< the highest frequency without the rounded last point
  std::optional<double> leftOut_;
};

/// A factor table of a run, and what it means when it can't be loaded, or doesn't cover the plan.
struct FactorTable {
  bool Wanted;
  InterpClass& Table;
  const std::string& Path;
  const char *LoadText, *CoverText;
};
/// Loads the tables that are wanted, in this order, up to one that can't be used.
Done LoadCoveringTables(std::initializer_list<FactorTable> tables, PlanRange& plan);

}  // namespace hylden
