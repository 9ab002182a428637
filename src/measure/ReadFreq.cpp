#include "measure/ReadFreq.h"

#include <algorithm>
#include <cmath>

#include "measure/InterpClass.h"
#include "shell/Shell.h"
#include "text/Numbers.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

/// Far beyond any real calibration (a year at 30 s a point); a plan above it is a mistyped step.
constexpr std::size_t kMostPoints = 1000000;
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
    plan_.push_back(band_.FrequencyMHz);
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
  const double count = NearestWhole((stop - start) / step + 1);
  if (!(step > 0) || !(count >= 1 && count <= static_cast<double>(kMostPoints))) return plan;
  band.IfiAmplifier = band.IfiAmplifier && start <= band.FrequencyMHz && band.FrequencyMHz < stop;
  PlanBuilder builder(plan, band);
  for (int k = 0; k < static_cast<int>(count); ++k) builder.Append(start + k * step);
  // The last regular point may lie below the switch frequency: there is none to put the pair before.
  if (band.IfiAmplifier) builder.AppendPair();
  return plan;
}

std::vector<double> LogPlan(double start, double stop, double step, const BandSwitch& band) {
  std::vector<double> plan;
  if (!(step > 0) || !(start > 0) || !std::isfinite(stop)) return plan;
  PlanBuilder builder(plan, band);
  for (double f = start; f < stop; f *= 1 + step / 100) {
    if (plan.size() >= kMostPoints) return {};
    builder.Append(f);
  }
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

/// The frequencies of a list's text. @return the message of what is wrong; empty when all was read
std::string ReadList(std::string text, const std::string& fileName, std::vector<double>& list) {
  LineReader lines(std::move(text));
  while (!lines.AtEnd()) {
    const std::string line = lines.ReadLine();
    double frequency = 0;
    if (line.empty() && list.empty()) break;
    if (line.empty()) continue;
    if (!ReadFreq::ParseFreq(line, frequency)) return kBadData;
    list.push_back(frequency);
  }
  return list.empty() ? "Unexpected end of file in " + fileName : "";
}

}  // namespace

int ReadFreq::FileTolist(const std::string& fileName, std::vector<double>& list) {
  if (fileName.empty()) return 0;
  std::vector<double> read;
  try {
    const std::string fault = ReadList(ReadTextFile(fileName), fileName, read);
    if (!fault.empty()) {
      shell_.dialogs.Tell(fault);
      return -1;
    }
  } catch (const std::exception& error) {
    shell_.ReportError(error, "ReadFreq.FileTolist", fileName);
    return -1;
  }
  list = std::move(read);
  return static_cast<int>(list.size());
}

bool ReadFreq::ParseFreq(std::string_view line, double& frequency) {
  return ReadNumbers(line, {&frequency});
}

void ReadFreq::SortFreqList(std::vector<double>& list) {
  std::stable_sort(list.begin(), list.end());
}

int ReadFreq::BuildFreqPlan(StepType type, double startMHz, double stopMHz, double step, std::vector<double>& plan,
                            const std::string& listFile, const BandSwitch& band) {
  plan.clear();
  std::vector<double> list;
  switch (type) {
    case StepType::Linear:
      plan = LinearPlan(startMHz, stopMHz, step, band);
      break;
    case StepType::Log:
      plan = LogPlan(startMHz, stopMHz, step, band);
      break;
    case StepType::List:
      if (FileTolist(listFile, list) > 0) plan = ListPlan(list, startMHz, stopMHz);
      break;
  }
  return static_cast<int>(plan.size());
}

}  // namespace hylden
