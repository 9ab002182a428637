#include "testrun/RunUnits.h"

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

std::string TestLevelValue(double dbuv, RunUnit unit, float ohms) {
  switch (unit) {
    case RunUnit::DbuA:
      return Format(DbuvToDbua(dbuv, ohms), kLevelPattern);
    case RunUnit::Dbm:
      return Format(DbuvToDbm(dbuv, ohms), kLevelPattern);
    case RunUnit::Milliwatts:
      return Format(Milliwatts(DbuvToDbm(dbuv, ohms)), kLevelPattern);
    case RunUnit::Volts: {
      const double volts = DbuvToVolts(dbuv);
      return Format(volts, volts < 1 ? "##0.000" : "##0.00");
    }
    default:
      return Format(dbuv, kLevelPattern);
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

std::string InducedValue(double dbua, double limitDbua, RunUnit unit, float ohms) {
  switch (unit) {
    case RunUnit::DbuV:
      return Format(DbuaToDbuv(dbua, ohms), kLevelPattern);
    case RunUnit::Dbm:
      return Format(DbuaToDbm(dbua, ohms), kLevelPattern);
    case RunUnit::Milliwatts:
      return Format(Milliwatts(DbuaToDbm(dbua, ohms)), kLevelPattern);
    case RunUnit::Volts:
      return Format(DbuvToVolts(DbuaToDbuv(dbua, ohms)), "##0.000");
    case RunUnit::Relative:
      return IsMissing(limitDbua) ? kNotAvailable : Format(dbua - limitDbua, kLevelPattern);
    default:
      return Format(dbua, kLevelPattern);
  }
}

/// A display never fails: a level that has no value in the unit is shown as "na".
template <class Function>
std::string ShownValue(bool possible, Function value) {
  if (!possible) return kNotAvailable;
  try {
    return value();
  } catch (const RuntimeError&) {
    return kNotAvailable;
  }
}

}  // namespace

ShownLevel ShowTestLevel(double levelDbuv, RunUnit unit, float impedanceOhms) {
  const bool hasImpedance = impedanceOhms > 0;
  ShownLevel shown{TestLevelCaption(unit),
                   ShownValue(!IsMissing(levelDbuv) && (hasImpedance || !NeedsImpedance(unit, RunUnit::DbuV)),
                              [&] { return TestLevelValue(levelDbuv, unit, impedanceOhms); })};
  if (hasImpedance && !IsMissing(levelDbuv))
    shown.ToolTip = Format(DbuvToDbua(levelDbuv, impedanceOhms), kLevelPattern) + " dBua current in a " +
                    Format(impedanceOhms, kLevelPattern) + " ohm system";
  else if (!hasImpedance && NeedsImpedance(unit, RunUnit::DbuV))
    shown.ToolTip = "The test definition has no circuit impedance";
  return shown;
}

ShownLevel ShowInducedLevel(double levelDbua, double limitDbua, RunUnit unit, float impedanceOhms) {
  ShownLevel shown = InducedCaption(unit);
  shown.Value = ShownValue(!IsMissing(levelDbua) && (impedanceOhms > 0 || !NeedsImpedance(unit, RunUnit::DbuA)),
                           [&] { return InducedValue(levelDbua, limitDbua, unit, impedanceOhms); });
  return shown;
}

ShownLevel ShowPower(double powerDbm, RunUnit unit) {
  if (unit != RunUnit::Watts)
    return {"Forward Power\r\n(dBm)", IsMissing(powerDbm) ? kNotAvailable : Format(powerDbm, kLevelPattern)};
  return {"Forward Power\r\n(watts)", ShownValue(true, [&] { return Format(DbmToWatts(powerDbm), "##0.000"); })};
}

}  // namespace hylden
