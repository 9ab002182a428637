#pragma once

namespace hylden {

class PlanRange;
class RunDisplay;
class Shell;
struct Documents;
struct RunInputs;
struct TestDefinition;

/// Fills the inputs of a run from the test definition and the files that it and the equipment name. What fails has been
/// told.
class RunLoader {
 public:
  RunLoader(Shell& shell, Documents& documents, RunDisplay& display, RunInputs& inputs);
  RunLoader(const RunLoader&) = delete;
  RunLoader& operator=(const RunLoader&) = delete;

  /// Plans the steps and shows their number and the estimated time. A list of one frequency beside a sweep is left out,
  /// after a message.
  void PlanSteps();
  /// Loads the calibration record that the test names.
  bool LoadCalibration();
  /// Loads the tables that the test needs. They and the record must cover the steps, from the first to the last; a
  /// rounded last step beyond the stop frequency is left out of the plan, after a message, where they don't.
  bool LoadFactors();

 private:
  void ShowPlan();
  bool RecordCovers(PlanRange& range);
  bool LoadTables(PlanRange& range);
  bool RecordHasLevels();

  Shell& shell_;
  Documents& documents_;
  const TestDefinition& test_;
  RunDisplay& display_;
  RunInputs& inputs_;
};

}  // namespace hylden
