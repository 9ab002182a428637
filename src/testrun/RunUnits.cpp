#include "testrun/RunUnits.h"

#include <array>
#include <cmath>

#include "measure/Conversions.h"
#include "text/Pattern.h"
#include "text/RuntimeError.h"

namespace hylden {

namespace {

using namespace Conversions;

constexpr std::string_view kLevelPattern = "##0.0";
constexpr const char* kNotAvailable = "na";

double Milliwatts(double dbm) {
  return DbmToWatts(dbm) * 1000;
}

double DbuvToDbua(double dbuv, float ohms) {
  return dbuv - DbuaToDbuv(0, ohms);
}

bool NeedsImpedance(RunUnit shown, RunUnit held) {
  const bool converted = shown != held && shown != RunUnit::Relative;
  return converted && !(held == RunUnit::DbuV && shown == RunUnit::Volts);
}

/// Nothing for what overflows: a display never fails.
template <class Function>
std::optional<double> Finite(Function value) {
  try {
    const double number = value();
    return std::isfinite(number) ? std::optional(number) : std::nullopt;
  } catch (const RuntimeError&) {
    return std::nullopt;
  }
}

double TestLevelValue(double dbuv, RunUnit unit, float ohms) {
  switch (unit) {
    case RunUnit::DbuA:
      return DbuvToDbua(dbuv, ohms);
    case RunUnit::Dbm:
      return DbuvToDbm(dbuv, ohms);
    case RunUnit::Milliwatts:
      return Milliwatts(DbuvToDbm(dbuv, ohms));
    case RunUnit::Volts:
      return DbuvToVolts(dbuv);
    default:
      return dbuv;
  }
}

double InducedValue(double dbua, double limitDbua, RunUnit unit, float ohms) {
  switch (unit) {
    case RunUnit::DbuV:
      return DbuaToDbuv(dbua, ohms);
    case RunUnit::Dbm:
      return DbuaToDbm(dbua, ohms);
    case RunUnit::Milliwatts:
      return Milliwatts(DbuaToDbm(dbua, ohms));
    case RunUnit::Volts:
      return DbuvToVolts(DbuaToDbuv(dbua, ohms));
    case RunUnit::Relative:
      return dbua - limitDbua;
    default:
      return dbua;
  }
}

std::string TestLevelCaption(RunUnit unit) {
  switch (unit) {
    case RunUnit::DbuA:
      return "Test Level\r\n(dBuA)";
    case RunUnit::Dbm:
      return "Test Level\r\n(dBm)";
    case RunUnit::Milliwatts:
      return "Test Level\r\n(mW)";
    case RunUnit::Volts:
      return "Test Level\r\n(Volts)";
    default:
      return "Test Level\r\n(dBuv)";
  }
}

ShownLevel InducedCaption(RunUnit unit) {
  const char* voltage = "Voltage calculated based on measured current and nominal circuit impedance";
  const char* power = "Power calculated based on measured current and nominal circuit impedance";
  switch (unit) {
    case RunUnit::DbuV:
      return {"Induced Level\r\n(dBuv est)", {}, voltage};
    case RunUnit::Dbm:
      return {"Induced Level\r\n(dBm est)", {}, power};
    case RunUnit::Milliwatts:
      return {"Induced Level\r\n(mW est)", {}, power};
    case RunUnit::Volts:
      return {"Induced Level\r\n(Volts est)", {}, voltage};
    case RunUnit::Relative:
      return {"Induced level\r\ndB (relative)", {}, "dB relative to induced current limit"};
    default:
      return {"Induced Level\r\n(dBuA)", {}, "Current reading corrected for cable loss and probe factor"};
  }
}

std::string Shown(const std::optional<double>& value, std::string_view pattern) {
  return value ? Format(*value, pattern) : kNotAvailable;
}

}  // namespace

std::string UnitsText(const RunUnitChoice& units) {
  const auto code = [](RunUnit unit) { return std::to_string(static_cast<int>(unit)); };
  return code(units.TestLevel) + "," + code(units.Induced) + "," + code(units.Power);
}

RunUnitChoice UnitsFrom(const std::string& text) {
  constexpr std::string_view kLevels = "01234", kCurrents = "012345", kPowers = "26";
  RunUnitChoice units;
  if (text.size() != 5 || text[1] != ',' || text[3] != ',') return units;
  const auto take = [](char code, std::string_view menu, RunUnit& unit) {
    if (menu.find(code) != std::string_view::npos) unit = static_cast<RunUnit>(code - '0');
  };
  take(text[0], kLevels, units.TestLevel);
  take(text[2], kCurrents, units.Induced);
  take(text[4], kPowers, units.Power);
  return units;
}

std::optional<double> TestLevelIn(RunUnit unit, double levelDbuv, float impedanceOhms) {
  if (IsMissing(levelDbuv) || (!(impedanceOhms > 0) && NeedsImpedance(unit, RunUnit::DbuV))) return std::nullopt;
  return Finite([&] { return TestLevelValue(levelDbuv, unit, impedanceOhms); });
}

std::optional<double> InducedLevelIn(RunUnit unit, double levelDbua, double limitDbua, float impedanceOhms) {
  if (IsMissing(levelDbua) || (!(impedanceOhms > 0) && NeedsImpedance(unit, RunUnit::DbuA))) return std::nullopt;
  if (unit == RunUnit::Relative && IsMissing(limitDbua)) return std::nullopt;
  return Finite([&] { return InducedValue(levelDbua, limitDbua, unit, impedanceOhms); });
}

std::optional<double> PowerIn(RunUnit unit, double powerDbm) {
  if (unit == RunUnit::Watts) return Finite([&] { return DbmToWatts(powerDbm); });
  return IsMissing(powerDbm) ? std::nullopt : Finite([&] { return powerDbm; });
}

const char* NameOf(RunUnit unit) {
  constexpr std::array kNames = {"dBuV", "dBuA", "dBm", "mW", "V", "dB", "W"};
  return kNames.at(static_cast<std::size_t>(unit));
}

ShownLevel ShowTestLevel(double levelDbuv, RunUnit unit, float impedanceOhms) {
  const bool hasImpedance = impedanceOhms > 0;
  const std::optional<double> level = TestLevelIn(unit, levelDbuv, impedanceOhms);
  const std::string_view volts = level.value_or(0) < 1 ? "##0.000" : "##0.00";
  ShownLevel shown{TestLevelCaption(unit), Shown(level, unit == RunUnit::Volts ? volts : kLevelPattern)};
  if (hasImpedance && !IsMissing(levelDbuv))
    shown.ToolTip = Format(DbuvToDbua(levelDbuv, impedanceOhms), kLevelPattern) + " dBua current in a " +
                    Format(impedanceOhms, kLevelPattern) + " ohm system";
  else if (!hasImpedance && NeedsImpedance(unit, RunUnit::DbuV))
    shown.ToolTip = "The test definition has no circuit impedance";
  return shown;
}

ShownLevel ShowInducedLevel(double levelDbua, double limitDbua, RunUnit unit, float impedanceOhms) {
  ShownLevel shown = InducedCaption(unit);
  shown.Value = Shown(InducedLevelIn(unit, levelDbua, limitDbua, impedanceOhms),
                      unit == RunUnit::Volts ? "##0.000" : kLevelPattern);
  return shown;
}

ShownLevel ShowPower(double powerDbm, RunUnit unit) {
  const bool watts = unit == RunUnit::Watts;
  return {watts ? "Forward Power\r\n(watts)" : "Forward Power\r\n(dBm)",
          Shown(PowerIn(watts ? unit : RunUnit::Dbm, powerDbm), watts ? "##0.000" : kLevelPattern)};
}

}  // namespace hylden
