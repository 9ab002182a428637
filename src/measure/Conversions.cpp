#include "measure/Conversions.h"

#include <cmath>

#include "text/RuntimeError.h"

namespace hylden::Conversions {
namespace {

/// Voltages (in V) and microvolt figures below this count as nothing.
constexpr double kSmallest = 1e-6;
/// What a voltage below kSmallest is in dBm.
constexpr double kFloorDbm = -107;
/// 1 uV across 1 ohm is 1e-12 W, which is -90 dBm.
constexpr double kDbuvOverDbm = 90;
constexpr double kDbuvOverDbmv = 60;
/// The impedance that readings in volts and dBuV refer to.
constexpr float kInstrumentOhms = 50;

double Checked(double result) {
  if (std::isnan(result)) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  if (std::isinf(result)) throw RuntimeError(ErrorNumber::Overflow);
  return result;
}

double TenLogOhms(float ohms) {
  return 10 * Log10(static_cast<double>(ohms));
}

}  // namespace

double Log10(double x) {
  if (!(x > 0)) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  return Checked(std::log(x) / std::log(10.0));
}

double VoltsToDbuv(double volts) {
  if (volts < 0) return kNoValue;
  if (volts < kSmallest) return 0;
  return 20 * Log10(volts / 1e-6);
}

double MicrovoltsToDbuv(double microvolts) {
  if (microvolts < 0) return kNoValue;
  if (microvolts < kSmallest) return 0;
  return 20 * Log10(microvolts);
}

double DbuvToVolts(double dbuv) {
  return Checked(std::pow(10.0, dbuv / 20) * 1e-6);
}

double VoltsToDbm(double volts, float ohms) {
  if (volts < 0) return kNoValue;
  if (volts < kSmallest) return kFloorDbm;
  return DbuvToDbm(VoltsToDbuv(volts), ohms);
}

double WattsToDbm(double watts) {
  if (watts <= 0) return kNoValue;
  return 10 * Log10(watts / 0.001);
}

double DbmToWatts(double dbm) {
  return Checked(std::pow(10.0, dbm / 10) * 0.001);
}

double DbmToDbuv(double dbm, float ohms) {
  return Checked(TenLogOhms(ohms) + kDbuvOverDbm + dbm);
}

double DbuvToDbm(double dbuv, float ohms) {
  return Checked(dbuv - kDbuvOverDbm - TenLogOhms(ohms));
}

double DbuaToDbuv(double dbua, float ohms) {
  return Checked(2 * TenLogOhms(ohms) + dbua);
}

double DbuaToDbm(double dbua, float ohms) {
  return Checked(TenLogOhms(ohms) + dbua - kDbuvOverDbm);
}

double RatioToDb(double a, double b, double k) {
  if (a <= 0 || b <= 0) return kNoValue;
  return Checked(k * Log10(a / b));
}

bool IsLinear(PowerUnits units) {
  return units == PowerUnits::Watts || units == PowerUnits::Millivolts || units == PowerUnits::Volts;
}

bool IsLinear(MeterUnits units) {
  return units == MeterUnits::Volts || units == MeterUnits::Millivolts;
}

std::optional<double> PowerReadingToDbm(std::int32_t units, double reading) {
  switch (static_cast<PowerUnits>(units)) {
    case PowerUnits::Watts:
      return WattsToDbm(reading);
    case PowerUnits::Dbm:
      return reading;
    case PowerUnits::Dbuv:
      return DbuvToDbm(reading, kInstrumentOhms);
    case PowerUnits::Millivolts:
      return VoltsToDbm(reading / 1000, kInstrumentOhms);
    case PowerUnits::Volts:
      return VoltsToDbm(reading, kInstrumentOhms);
    case PowerUnits::Dbmv:
      return DbuvToDbm(reading + kDbuvOverDbmv, kInstrumentOhms);
  }
  return std::nullopt;
}

std::optional<double> MeterReadingToDbuv(std::int32_t units, double reading) {
  switch (static_cast<MeterUnits>(units)) {
    case MeterUnits::Volts:
      return VoltsToDbuv(reading);
    case MeterUnits::Dbuv:
      return reading;
    case MeterUnits::Millivolts:
      return VoltsToDbuv(reading / 1000);
    case MeterUnits::Dbmv:
      return reading + kDbuvOverDbmv;
    case MeterUnits::Dbm:
      return DbmToDbuv(reading, kInstrumentOhms);
  }
  return std::nullopt;
}

std::optional<double> DbuvToMeterUnits(std::int32_t units, double dbuv) {
  switch (static_cast<MeterUnits>(units)) {
    case MeterUnits::Volts:
      return DbuvToVolts(dbuv);
    case MeterUnits::Dbuv:
      return dbuv;
    case MeterUnits::Millivolts:
      return DbuvToVolts(dbuv) * 1000;
    case MeterUnits::Dbmv:
      return dbuv - kDbuvOverDbmv;
    case MeterUnits::Dbm:
      return DbuvToDbm(dbuv, kInstrumentOhms);
  }
  return std::nullopt;
}

}  // namespace hylden::Conversions
