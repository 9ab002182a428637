#include "measure/ReadFreq.h"

#include <algorithm>
#include <cmath>

#include "measure/InterpClass.h"
#include "text/LinePlace.h"
#include "text/Numbers.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

/// Distance in MHz of the two points at which an IFI amplifier is visited on its lower and its upper band.
constexpr double kBandStep = 0.000001;

constexpr const char* kBadData = "Bad data in frequency list file";

/// Builds a plan point by point and puts the band-switch pair between the two points that enclose it.
class PlanBuilder {
 public:
  PlanBuilder(std::vector<double>& plan, const BandSwitch& band) : plan_(plan), band_(band) {}

  void Append(double frequency) {
    const double previous = plan_.empty() ? 0 : plan_.back();
    if (band_.IfiAmplifier && previous <= band_.FrequencyMHz && band_.FrequencyMHz < frequency) AppendPair();
    plan_.push_back(frequency);
  }

  void AppendPair() {
    if (pairDone_) return;
    if (plan_.empty() || plan_.back() != band_.FrequencyMHz) plan_.push_back(band_.FrequencyMHz);
    plan_.push_back(band_.FrequencyMHz + kBandStep);
    pairDone_ = true;
  }

 private:
  std::vector<double>& plan_;
  const BandSwitch& band_;
  bool pairDone_ = false;
};

std::vector<double> LinearPlan(double start, double stop, double step, BandSwitch band) {
  std::vector<double> plan;
  const std::vector<double> sweep = LinearSweep(start, stop, step);
  band.IfiAmplifier = band.IfiAmplifier && start <= band.FrequencyMHz && band.FrequencyMHz < stop;
  PlanBuilder builder(plan, band);
  for (const double frequency : sweep) builder.Append(frequency);
  // The last regular point may lie below the switch frequency: there is none to put the pair before.
  if (band.IfiAmplifier && !plan.empty()) builder.AppendPair();
  return plan;
}

std::vector<double> LogPlan(double start, double stop, double step, BandSwitch band) {
  std::vector<double> plan;
  std::vector<double> sweep = LogSweep(start, stop, step);
  if (sweep.empty()) return plan;
  // Above the switch the lower band is never used.
  band.IfiAmplifier = band.IfiAmplifier && start <= band.FrequencyMHz;
  PlanBuilder builder(plan, band);
  sweep.pop_back();
  for (const double frequency : sweep) builder.Append(frequency);
  plan.push_back(stop);
  return plan;
}

std::vector<double> ListPlan(const std::vector<double>& list, double start, double stop) {
  std::vector<double> plan;
  for (const double frequency : list) {
    if (frequency > stop) break;
    if (frequency >= start) plan.push_back(frequency);
  }
  return plan;
}

Result<std::vector<double>> ReadList(LineReader lines, const std::string& fileName) {
  std::vector<double> list;
  for (std::size_t number = 1; !lines.AtEnd(); ++number) {
    const std::string_view line = lines.NextLine();
    if (line.empty() && list.empty()) break;
    if (!line.empty() && !ReadFreq::ParseFreq(line, list.emplace_back()))
      return Because(std::string(kBadData) + "\r\n" + fileName + LinePlace(number, line));
  }
  if (list.empty()) return Because("Unexpected end of file in " + fileName);
  return list;
}

}  // namespace

double SweepPoint(double frequencyMHz) {
  constexpr double kParts = 1e9;
  return std::round(frequencyMHz * kParts) / kParts;
}

std::vector<double> LinearSweep(double startMHz, double stopMHz, double stepMHz) {
  const double count = NearestWhole((stopMHz - startMHz) / stepMHz + 1);
  if (!(stepMHz > 0) || !(count >= 1 && count <= static_cast<double>(kMostSweepPoints))) return {};
  std::vector<double> sweep(static_cast<std::size_t>(count));
  for (std::size_t k = 0; k < sweep.size(); ++k) sweep[k] = SweepPoint(startMHz + static_cast<double>(k) * stepMHz);
  return sweep;
}

std::vector<double> LogSweep(double startMHz, double stopMHz, double stepPercent) {
  if (!(stepPercent > 0) || !(startMHz > 0) || !std::isfinite(stopMHz)) return {};
  std::vector<double> sweep;
  for (double f = startMHz; SweepPoint(f) < stopMHz; f *= 1 + stepPercent / 100) {
    if (sweep.size() + 1 >= kMostSweepPoints) return {};
    sweep.push_back(SweepPoint(f));
  }
  sweep.push_back(stopMHz);
  return sweep;
}

std::string WhyNoSweep(StepType type, double startMHz, double stopMHz, double step) {
  constexpr const char* kNone = ": no frequencies";
  if (type != StepType::Linear && type != StepType::Log) return std::string("no kind of step is chosen") + kNone;
  if (!(step > 0)) return "step of " + ShortestText(step) + kNone;
  if (type == StepType::Log && !(startMHz > 0)) return "start of " + ShortestText(startMHz) + " MHz" + kNone;
  if (!(stopMHz > startMHz)) return std::string("stop not above start") + kNone;
  return "more than " + std::to_string(kMostSweepPoints) + " frequencies: wider steps are needed";
}

Result<std::vector<double>> ReadFreq::FileTolist(const std::string& fileName) {
  if (fileName.empty()) return {};
  return Trapped("ReadFreq.FileTolist", fileName,
                 [&] { return ReadList(LineReader(ReadTextFile(fileName)), fileName); });
}

bool ReadFreq::ParseFreq(std::string_view line, double& frequency) {
  return ReadNumbers(line, {&frequency});
}

void ReadFreq::SortFreqList(std::vector<double>& list) {
  std::stable_sort(list.begin(), list.end());
}

Result<std::vector<double>> ReadFreq::BuildFreqPlan(StepType type, double startMHz, double stopMHz, double step,
                                                    const std::string& listFile, const BandSwitch& band) {
  using Plan = Result<std::vector<double>>;
  switch (type) {
    case StepType::Linear:
      return LinearPlan(startMHz, stopMHz, step, band);
    case StepType::Log:
      return LogPlan(startMHz, stopMHz, step, band);
    case StepType::List:
      return FileTolist(listFile).and_then([&](const auto& list) { return Plan(ListPlan(list, startMHz, stopMHz)); });
  }
  return {};
}

}  // namespace hylden
