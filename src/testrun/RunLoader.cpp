#include "testrun/RunLoader.h"

#include <utility>

#include "documents/Documents.h"
#include "measure/Conversions.h"
#include "run/FactorLoading.h"
#include "run/RunDisplay.h"
#include "shell/Shell.h"
#include "testrun/RunInputs.h"
#include "testrun/TestPlan.h"
#include "text/Numbers.h"

namespace hylden {

RunLoader::RunLoader(Shell& shell, Documents& documents, RunDisplay& display, RunInputs& inputs)
    : shell_(shell), documents_(documents), test_(documents.testSetup.Definition), display_(display), inputs_(inputs) {}

void RunLoader::PlanSteps() {
  display_.Status("Calculating frequencies and dwell times...");
  TestPlan plan = PlanTest(test_);
  inputs_.Steps = std::move(plan.Steps);
  documents_.testSetup.ListUnused = plan.ListUnused;
  inputs_.ListReadable = shell_.Ok(plan.ListFrequencies);
  if (plan.ListUnused && inputs_.ListReadable && *plan.ListFrequencies > 0 && !inputs_.Steps.empty())
    shell_.dialogs.Tell("The frequency list holds one frequency only, and is left out:\r\n" + test_.ListFile);
  ShowPlan();
}

void RunLoader::ShowPlan() {
  display_.Plan(RunPlanOf(inputs_.Steps, test_));
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
