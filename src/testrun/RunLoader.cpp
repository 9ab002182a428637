#include "testrun/RunLoader.h"

#include <utility>

#include "documents/Documents.h"
#include "measure/Conversions.h"
#include "measure/ReadFreq.h"
#include "run/FactorLoading.h"
#include "run/RunDisplay.h"
#include "shell/Shell.h"
#include "testrun/RunInputs.h"
#include "text/Numbers.h"

namespace hylden {

namespace {
constexpr std::size_t kLeastListFrequencies = 2;
}

RunLoader::RunLoader(Shell& shell, Documents& documents, RunDisplay& display, RunInputs& inputs)
    : shell_(shell), documents_(documents), test_(documents.testSetup.Definition), display_(display), inputs_(inputs) {}

void RunLoader::PlanSteps() {
  display_.Status("Calculating frequencies and dwell times...");
  inputs_.Steps = PlanSweep(test_);
  documents_.testSetup.ListUnused = false;
  if (test_.FreqList) TakeList();
  ShowPlan();
}

void RunLoader::TakeList() {
  auto list = ReadFreq::FileTolist(test_.ListFile);
  inputs_.ListReadable = shell_.Ok(list);
  const std::size_t count = inputs_.ListReadable ? list->size() : 0;
  if (count >= kLeastListFrequencies) {
    MergeList(inputs_.Steps, std::move(*list), test_);
    return;
  }
  documents_.testSetup.ListUnused = true;
  if (count > 0 && !inputs_.Steps.empty())
    shell_.dialogs.Tell("The frequency list holds one frequency only, and is left out:\r\n" + test_.ListFile);
}

void RunLoader::ShowPlan() {
  display_.Plan({.Steps = static_cast<int>(inputs_.Steps.size()),
                 .StartMHz = test_.StartFreq,
                 .StopMHz = test_.StopFreq,
                 .EstimatedMinutes = EstimateRunSeconds(inputs_.Steps, test_) / 60});
}

bool RunLoader::LoadCalibration() {
  return shell_.Ok(inputs_.Calibration.LoadFile(test_.CalInfoFile));
}

bool RunLoader::LoadFactors() {
  const bool linear = test_.FreqSweep && test_.StepType == StepType::Linear;
  std::vector<double> frequencies;
  frequencies.reserve(inputs_.Steps.size());
  for (const PlanStep& step : inputs_.Steps) frequencies.push_back(step.Freq);
  PlanRange range(std::move(frequencies), linear ? std::optional(test_.StopFreq) : std::nullopt);
  if (!RecordCovers(range) || !LoadTables(range)) return false;
  if (range.LeftOut()) {
    inputs_.Steps.pop_back();
    ShowPlan();
    shell_.dialogs.Tell(range.LeftOutText());
  }
  return RecordHasLevels();
}

bool RunLoader::RecordCovers(PlanRange& range) {
  const double first = inputs_.Calibration.GetStartFreq(), last = inputs_.Calibration.GetStopFreq();
  if (range.IsWithin(first, last)) return true;
  shell_.dialogs.Tell("Calibration file does not cover frequency range:\r\nit goes from " + ShortestText(first) +
                      " to " + ShortestText(last) + " MHz.");
  return false;
}

bool RunLoader::LoadTables(PlanRange& range) {
  const EquipRecord& equipment = documents_.equip.Record;
  const bool probe = test_.MonitorProbe;
  return shell_.Ok(LoadCoveringTables(
      {
          {probe, inputs_.CableLoss, equipment.CableLossFile, "Error loading cable loss file.",
           "Cable loss file does not cover frequency range"},
          {probe, inputs_.ProbeFactor, equipment.ProbeFile, "Error loading probe factor file.",
           "Probe factor file does not cover frequency range"},
          {!equipment.FwdPortFile.empty(), inputs_.ForwardPort, equipment.FwdPortFile,
           "Error loading foward coupling port file", "Forward port file does not cover frequency range"},
          {!equipment.RevPortFile.empty(), inputs_.ReversePort, equipment.RevPortFile,
           "Error loading reverse coupling port file", "Reverse port file does not cover frequency range"},
      },
      range));
}

bool RunLoader::RecordHasLevels() {
  clsCalFile& record = inputs_.Calibration;
  for (const PlanStep& step : inputs_.Steps) {
    if (!IsMissing(record.GetSigGen(step.Freq)) && !IsMissing(record.GetTestLevel(step.Freq))) continue;
    shell_.dialogs.Tell("Calibration file gives no level at " + ShortestText(step.Freq) + " MHz");
    return false;
  }
  return true;
}

}  // namespace hylden
