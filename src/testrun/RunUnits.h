#pragma once

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
