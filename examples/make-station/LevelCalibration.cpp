#include "make-station/LevelCalibration.h"

#include <algorithm>
#include <cmath>

#include "text/Pattern.h"

namespace hylden {
namespace {

constexpr double kToleranceDb = 0.5;
constexpr double kMaxStepDb = 6;

std::vector<double> Plan(const CalibrationRequest& request) {
  std::vector<double> plan;
  for (double f = request.StartMHz; f < request.StopMHz; f *= 1 + request.StepPercent / 100) {
    const bool crosses =
        request.Ifi && !plan.empty() && plan.back() <= request.BandSwitchMHz && f > request.BandSwitchMHz;
    if (crosses) plan.insert(plan.end(), {request.BandSwitchMHz, request.BandSwitchMHz + 0.000001});
    plan.push_back(f);
  }
  plan.push_back(request.StopMHz);
  return plan;
}

/// The change of the generator level for the next try, dB; see the level calibration.
double NextStep(double levelDbuv, double targetDbuv) {
  if (levelDbuv >= targetDbuv) return kToleranceDb / 2 + targetDbuv - levelDbuv;
  const double step = (targetDbuv + kToleranceDb - levelDbuv) / 1.5;
  return std::min(step < 0.2 ? 0.1 : step, kMaxStepDb);
}

/// A generator takes its level in tenths of a dB.
double AsSent(double levelDbm) {
  return std::round(levelDbm * 10) / 10;
}

std::string Line(double freqMHz, double levelDbm, double targetDbuv, double forwardDbm, double reverseDbm) {
  return Format(freqMHz, "0.0#####") + "," + Format(levelDbm, "###0.000") + "," + Format(targetDbuv, "##0.00") + "," +
         Format(forwardDbm, "##0.00") + "," + Format(reverseDbm, "##0.00") + ",";
}

}  // namespace

std::vector<std::string> CalibrationLines(const RfPath& path, const CalibrationRequest& request) {
  const double target = Conversions::VoltsToDbuv(request.TestLevelVolts);
  double level = -30;
  std::vector<std::string> lines;
  for (const double freq : Plan(request)) {
    const Amplifier amplifier = !request.Ifi                    ? Amplifier::Generic
                                : freq <= request.BandSwitchMHz ? Amplifier::IfiLow
                                                                : Amplifier::IfiHigh;
    CalibrationReading reading = path.CalibrationPort(freq, AsSent(level), amplifier);
    while (reading.TestLevelDbuv <= target || reading.TestLevelDbuv >= target + kToleranceDb) {
      level += NextStep(reading.TestLevelDbuv, target);
      reading = path.CalibrationPort(freq, AsSent(level), amplifier);
    }
    const double excess = reading.TestLevelDbuv - target - kToleranceDb / 2;
    level -= excess;
    lines.push_back(Line(freq, level, target, reading.ForwardDbm - excess, reading.ReverseDbm - excess));
  }
  return lines;
}

}  // namespace hylden
