#pragma once

#include <optional>
#include <string>

namespace hylden {

/// The units in which a run shows its levels, with the codes of the Units menus.
enum class RunUnit : int { DbuV = 0, DbuA = 1, Dbm = 2, Milliwatts = 3, Volts = 4, Relative = 5, Watts = 6 };

/// The units chosen for the three displays.
struct RunUnitChoice {
  RunUnit TestLevel = RunUnit::DbuV;
  RunUnit Induced = RunUnit::DbuA;
  RunUnit Power = RunUnit::Dbm;
};

/// The choice as the settings keep it, "0,1,2"; a code that its menu does not have is the default.
std::string UnitsText(const RunUnitChoice& units);
RunUnitChoice UnitsFrom(const std::string& text);

/// Levels as numbers in a unit of the menus; nothing where the unit has none: a missing or overflowing level, an
/// impedance that is not above 0 where it counts, a current without a limit to be relative to (kNoValue).
std::optional<double> TestLevelIn(RunUnit unit, double levelDbuv, float impedanceOhms);
std::optional<double> InducedLevelIn(RunUnit unit, double levelDbua, double limitDbua, float impedanceOhms);
/// Powers of the amplifier in dBm; 0 W, which has no dBm (kNoValue), is a number in watts.
std::optional<double> PowerIn(RunUnit unit, double powerDbm);
/// "dBuV", "W"; a level relative to its limit is in dB.
const char* NameOf(RunUnit unit);

/// A level as it is shown: caption (two lines, CR LF between them), value and tool tip.
struct ShownLevel {
  std::string Caption;
  std::string Value;
  std::string ToolTip = {};
};

/// The calibrated level in dBuV; currents and powers are those in the circuit impedance (ohms). An impedance that is
/// not above 0 has none: "na".
ShownLevel ShowTestLevel(double levelDbuv, RunUnit unit, float impedanceOhms);
/// The probe current in dBuA; relative: dB above the induced-current limit.
ShownLevel ShowInducedLevel(double levelDbua, double limitDbua, RunUnit unit, float impedanceOhms);
/// Forward power in dBm.
ShownLevel ShowPower(double powerDbm, RunUnit unit);

}  // namespace hylden
