#include "testrun/RunCurves.h"

#include <algorithm>
#include <cmath>

#include "documents/TestDefinition.h"
#include "documents/clsCalFile.h"
#include "testrun/LevelTargets.h"
#include "text/Pattern.h"

namespace hylden {

namespace {

bool LiesBelow(const RunAim& aim, double frequencyMHz) {
  return aim.Freq < frequencyMHz - kSameMHz;
}

/// What goes into the load; nothing where the sensors can't be right.
std::optional<double> NetOf(const StepResult& result) {
  if (!result.FwdPwr || !result.RevPwr || IsMissing(*result.FwdPwr)) return std::nullopt;
  if (IsMissing(*result.RevPwr)) return result.FwdPwr;
  return NetPower(*result.FwdPwr, *result.RevPwr, *result.FwdPwr);
}

bool IsComplete(const StepEntry& step) {
  return step.Result && std::isfinite(step.Freq);
}

std::string MarkText(const ThresholdEntry& threshold) {
  return threshold.Comment.empty() ? "Threshold " + Format(threshold.OffsetDb, "#0.0") + "dB" : threshold.Comment;
}

}  // namespace

std::vector<RunAim> AimsOf(const TestDefinition& test, clsCalFile calibration, const std::vector<double>& frequencies) {
  std::vector<double> rising = frequencies;
  std::sort(rising.begin(), rising.end());
  rising.erase(std::unique(rising.begin(), rising.end()), rising.end());
  std::vector<RunAim> aims;
  aims.reserve(rising.size());
  for (const double freq : rising) {
    const auto targets = TargetsFor(test, LookUpLevels(calibration, test, freq));
    if (!targets) continue;
    RunAim& aim = aims.emplace_back();
    aim = {freq, double{targets->TestLevel}, double{targets->SigGenCal}};
    if (LimitsCurrent(test)) aim.InducedLimit = targets->InducedLimit;
    if (test.LevelsByPower()) aim.PowerTarget = targets->PowerTarget;
    if (test.LevelsBy(LevelingMethod::NetPower)) aim.ForwardCap = targets->ForwardReference + kForwardCapDb;
  }
  return aims;
}

RunCurves::RunCurves(RunQuantity quantity, RunCurveContext context)
    : quantity_(quantity), context_(std::move(context)) {
  switch (quantity_) {
    case RunQuantity::TestLevel:
      AddCurve("Test level", UnitOfCurves());
      break;
    case RunQuantity::Generator:
      AddCurve("Generator", UnitOfCurves());
      break;
    case RunQuantity::Induced:
      AddCurve("Induced", UnitOfCurves());
      break;
    case RunQuantity::Power:
      for (const char* const name : {"Forward", "Reverse", "Net"}) AddCurve(name, UnitOfCurves());
      break;
  }
  AddAims();
  if (IsRelative()) AddLimit({"Limit", 0});
}

RunCurves::RunCurves(RunQuantity quantity, RunCurveContext context, const std::vector<RunEntry>& rows)
    : RunCurves(quantity, std::move(context)) {
  // By rising frequency each point goes to the end.
  std::vector<std::pair<double, int>> steps;
  steps.reserve(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i)
    if (const auto* const step = std::get_if<StepEntry>(&rows[i]); step && IsComplete(*step))
      steps.emplace_back(step->Freq, static_cast<int>(i + 1));
  std::sort(steps.begin(), steps.end());
  for (const auto& [freq, row] : steps) AddStep(std::get<StepEntry>(rows[static_cast<std::size_t>(row - 1)]), row);
  for (std::size_t i = 0; i < rows.size(); ++i)
    if (IsThreshold(rows[i])) AddMark(rows, static_cast<int>(i + 1));
}

bool RunCurves::IsRelative() const {
  return quantity_ == RunQuantity::Induced && context_.Units.Induced == RunUnit::Relative;
}

std::string RunCurves::UnitOfCurves() const {
  switch (quantity_) {
    case RunQuantity::TestLevel:
      return NameOf(context_.Units.TestLevel);
    case RunQuantity::Induced:
      return NameOf(context_.Units.Induced);
    case RunQuantity::Power:
      return NameOf(context_.Units.Power);
    case RunQuantity::Generator:
      break;
  }
  return NameOf(RunUnit::Dbm);
}

void RunCurves::AddAims() {
  std::vector<const char*> names = {"Target"};
  if (quantity_ == RunQuantity::Generator) names = {"Calibrated"};
  if (quantity_ == RunQuantity::Induced) names = {"Limit"};
  if (quantity_ == RunQuantity::Power) names = {context_.ByNetPower ? "Net target" : "Target", "Forward cap"};
  std::vector<std::vector<CurvePoint>> points(names.size());
  for (const RunAim& aim : context_.Aims) {
    const Values values = AimValues(aim);
    for (std::size_t i = 0; i < names.size(); ++i)
      if (values[i]) points[i].push_back({aim.Freq, *values[i]});
  }
  for (std::size_t i = 0; i < names.size(); ++i) AddAim(names[i], UnitOfCurves(), std::move(points[i]));
}

RowCurves::Values RunCurves::AimValues(const RunAim& aim) const {
  const RunUnitChoice& units = context_.Units;
  switch (quantity_) {
    case RunQuantity::TestLevel:
      return {TestLevelIn(units.TestLevel, aim.TestLevel, context_.ImpedanceOhms)};
    case RunQuantity::Induced:
      if (IsRelative()) return {std::nullopt};  // a line says it
      return {InducedLevelIn(units.Induced, aim.InducedLimit, aim.InducedLimit, context_.ImpedanceOhms)};
    case RunQuantity::Power: {
      const auto power = [&](double dbm) { return IsMissing(dbm) ? std::nullopt : PowerIn(units.Power, dbm); };
      return {power(aim.PowerTarget), power(aim.ForwardCap)};
    }
    case RunQuantity::Generator:
      break;
  }
  return {PowerIn(RunUnit::Dbm, aim.SigGenCal)};
}

RowCurves::Values RunCurves::ApplyValues(double frequencyMHz, const StepResult& result, double offsetDb) const {
  const RunUnitChoice& units = context_.Units;
  const float ohms = context_.ImpedanceOhms;
  switch (quantity_) {
    case RunQuantity::TestLevel:
      return {TestLevelIn(units.TestLevel, double{result.TestLevel} + offsetDb, ohms)};
    case RunQuantity::Induced:
      if (!result.Induced) return {std::nullopt};
      return {InducedLevelIn(units.Induced, *result.Induced + offsetDb, LimitAt(frequencyMHz), ohms)};
    case RunQuantity::Power: {
      const auto power = [&](const std::optional<double>& dbm) {
        return dbm ? PowerIn(units.Power, *dbm + offsetDb) : std::nullopt;
      };
      return {power(result.FwdPwr), power(result.RevPwr), context_.ByNetPower ? power(NetOf(result)) : std::nullopt};
    }
    case RunQuantity::Generator:
      break;
  }
  return {PowerIn(RunUnit::Dbm, double{result.SigGenLevel} + offsetDb)};
}

double RunCurves::LimitAt(double frequencyMHz) const {
  const auto found = std::lower_bound(context_.Aims.begin(), context_.Aims.end(), frequencyMHz, LiesBelow);
  return found != context_.Aims.end() && IsSameFrequency(found->Freq, frequencyMHz) ? found->InducedLimit : kNoValue;
}

std::vector<RowCurves::Added> RunCurves::Add(const std::vector<RunEntry>& rows, int row) {
  if (row < 1 || static_cast<std::size_t>(row) > rows.size()) return {};
  const auto* const step = std::get_if<StepEntry>(&rows[static_cast<std::size_t>(row - 1)]);
  if (!step) AddMark(rows, row);
  return step && IsComplete(*step) && row > lastStep_ ? AddStep(*step, row) : std::vector<Added>();
}

std::vector<RowCurves::Added> RunCurves::AddStep(const StepEntry& step, int row) {
  lastStep_ = std::max(lastStep_, row);
  return AddRow(row, step.Freq, ApplyValues(step.Freq, *step.Result, 0));
}

void RunCurves::AddMark(const std::vector<RunEntry>& rows, int row) {
  const auto& threshold = std::get<ThresholdEntry>(rows[static_cast<std::size_t>(row - 1)]);
  const auto known = std::lower_bound(markRows_.begin(), markRows_.end(), row);
  if (known != markRows_.end() && *known == row) {
    marks_[static_cast<std::size_t>(known - markRows_.begin())].Text = MarkText(threshold);
    return;
  }
  const int step = LatestStepAt(threshold.Freq, row);
  if (step == 0 || known != markRows_.end()) return;
  const StepResult& result = *std::get<StepEntry>(rows[static_cast<std::size_t>(step - 1)]).Result;
  if (quantity_ == RunQuantity::TestLevel && StayedBelow(result.Marks)) return;  // nobody knows it
  const std::optional<double> level = ApplyValues(threshold.Freq, result, threshold.OffsetDb).front();
  if (!level) return;
  marks_.push_back({{threshold.Freq, *level}, MarkText(threshold)});
  markRows_.push_back(row);
}

/// The row of the latest step at the frequency before this row; 0: there is none.
int RunCurves::LatestStepAt(double frequencyMHz, int before) const {
  const std::vector<CurvePoint>& points = curves_.front().Points;
  const auto above = [](double freq, const CurvePoint& other) { return freq < other.Freq; };
  auto at = std::upper_bound(points.begin(), points.end(), frequencyMHz + kSameMHz, above) - points.begin();
  while (at-- > 0 && IsSameFrequency(points[static_cast<std::size_t>(at)].Freq, frequencyMHz))
    if (const int row = rows_.front()[static_cast<std::size_t>(at)]; row < before) return row;
  return 0;
}

}  // namespace hylden
