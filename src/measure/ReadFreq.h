#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "shell/Failure.h"

namespace hylden {

enum class StepType : int { Linear = 0, Log = 1, List = 2 };

/// The amplifier's part in a frequency plan.
struct BandSwitch {
  bool IfiAmplifier = false;
  double FrequencyMHz = 0;
};

/// The longest sweep; what asks for more (a mistyped step) gives an empty one.
inline constexpr std::size_t kMostSweepPoints = 1'000'000;

/// The frequency without what the arithmetic of a sweep leaves behind its ninth decimal. A record, a table and the band
/// switch are decimals: 0.8500000000000001 MHz would lie beyond a record that ends at 0.85, and 220.00000000000003 MHz
/// in the band above a switch at 220.
double SweepPoint(double frequencyMHz);
/// The frequencies of a sweep in fixed steps, MHz. Their number is rounded to the nearest (ties to even), so that the
/// last one may lie half a step above or below the stop frequency. Empty for a step of 0 or less.
std::vector<double> LinearSweep(double startMHz, double stopMHz, double stepMHz);
/// The frequencies of a sweep that rises by a percentage; the last one is exactly the stop frequency. Empty for a step
/// or a start of 0 or less.
std::vector<double> LogSweep(double startMHz, double stopMHz, double stepPercent);

/// Why a sweep holds no frequency, in words: "step of 0: no frequencies".
std::string WhyNoSweep(StepType type, double startMHz, double stopMHz, double step);
/// The same of a list, behind which its name stands, and of entries that are no numbers.
inline constexpr char kBadListText[] = "no frequency list: can't read ";
inline constexpr char kNoListText[] = "no frequency list is chosen";
inline constexpr char kNothingOfListText[] = "nothing of the list between start and stop: no frequencies";
inline constexpr char kNoNumberPlanText[] = "an entry is no number";

/// Frequency lists (.lst) and the frequency plans of calibrations; frequencies in MHz.
class ReadFreq {
 public:
  /// The frequencies of a list file, in file order; none for an empty name.
  static Result<std::vector<double>> FileTolist(const std::string& fileName);
  /// Whether the line holds a frequency (its first number), and which.
  static bool ParseFreq(std::string_view line, double& frequency);
  static void SortFreqList(std::vector<double>& list);
  /// The plan of a calibration; a step (or, on a logarithmic scale, a start) of 0 or less gives an empty plan.
  /// @param step  MHz (linear) or percent (logarithmic); not read for a list
  static Result<std::vector<double>> BuildFreqPlan(StepType type, double startMHz, double stopMHz, double step,
                                                   const std::string& listFile, const BandSwitch& band);
};

}  // namespace hylden
