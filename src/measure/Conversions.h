#pragma once

#include <cstdint>
#include <optional>

/// Arithmetic between the logarithmic units of levels. Impedances are in ohms. A quantity that has no logarithm gives
/// kNoValue; an overflow or an invalid operation is a RuntimeError, never a silent infinity.
namespace hylden {

/// "No value": a lookup without an answer, a power that was not recorded, the decibels of nothing.
inline constexpr double kNoValue = -999;
/// Whether a lookup gave no value.
constexpr bool IsMissing(double value) {
  return value < -998;
}

namespace Conversions {

double Log10(double x);
double VoltsToDbuv(double volts);
double MicrovoltsToDbuv(double microvolts);
double DbuvToVolts(double dbuv);
double VoltsToDbm(double volts, float ohms);
double WattsToDbm(double watts);
double DbmToWatts(double dbm);
double DbmToDbuv(double dbm, float ohms);
double DbuvToDbm(double dbuv, float ohms);
/// The voltage that the current develops across the impedance.
double DbuaToDbuv(double dbua, float ohms);
/// The power that the current delivers into the impedance.
double DbuaToDbm(double dbua, float ohms);
/// k * log10(a / b): k is 10 for powers, 20 for voltages.
double RatioToDb(double a, double b, double k);

/// Units of a power meter's answers, as stored in its definition.
enum class PowerUnits : std::int32_t { Watts = 0, Dbm = 1, Dbuv = 2, Millivolts = 3, Volts = 4, Dbmv = 5 };
/// Units of a meter's answers and level commands, as stored in its definition.
enum class MeterUnits : std::int32_t { Volts = 0, Dbuv = 1, Millivolts = 2, Dbmv = 3, Dbm = 4 };

/// Whether the units are volts or watts, not decibels.
bool IsLinear(PowerUnits units);
bool IsLinear(MeterUnits units);

/// A power meter's reading in dBm; nothing for a code that is no unit.
std::optional<double> PowerReadingToDbm(std::int32_t units, double reading);
/// A meter's reading in dBuV; nothing for a code that is no unit.
std::optional<double> MeterReadingToDbuv(std::int32_t units, double reading);
/// The other way round, for a meter's level commands.
std::optional<double> DbuvToMeterUnits(std::int32_t units, double dbuv);

}  // namespace Conversions
}  // namespace hylden
