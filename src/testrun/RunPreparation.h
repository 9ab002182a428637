#pragma once

#include <memory>
#include <vector>

#include "documents/clsCalFile.h"
#include "measure/InterpClass.h"
#include "run/ForwardSensor.h"
#include "run/InstrumentsUp.h"
#include "testrun/StepPlan.h"

namespace hylden {

class PlanRange;
class RunDisplay;
class RunGuard;
class Shell;
struct Documents;
struct Instruments;
struct TestDefinition;

/// What stands between Start and the first frequency, and after the last: the plan, the calibration record, the factor
/// tables, and bringing the instruments up and down. It owns the record and the tables of the run.
class RunPreparation {
 public:
  RunPreparation(Shell& shell, Instruments& instruments, Documents& documents, RunDisplay& display, RunGuard& guard);

  /// Plans the steps and shows their number and the estimated time. A list of one frequency beside a sweep is left out,
  /// after a message. @return how many
  int PlanSteps(std::vector<PlanStep>& steps);
  /// Whether the list that the test names, if any, could be read; the operator has been told when not.
  bool ListReadable() const { return listReadable_; }
  /// Loads the calibration record that the test names. @return false after a message
  bool LoadCalibration();
  /// Loads the tables that the test needs. They and the record must cover the steps, from the first to the last; a
  /// rounded last step beyond the stop frequency is left out of the plan, after a message, where they don't.
  /// @return false after a message
  bool LoadRunFactors(std::vector<PlanStep>& steps);

  /// Brings the instruments up in a fixed order: generator 60 dB below 1 mW with the test's modulation and RF off,
  /// power meter, meter, amplifier. @return false after the first failure was told
  bool InitInstruments();
  /// RF off, before anything that may stall on the way to ShutdownInstruments.
  void SwitchRfOff() { up_.SwitchRfOff(); }
  /// Takes down what was brought up, RF first. Each instrument is taken down even when the one before fails; an
  /// exception from one of them is thrown on after the last.
  void ShutdownInstruments();

  clsCalFile& Calibration() { return *calibration_; }
  InterpClass& CableLoss() { return cableLoss_; }
  InterpClass& ProbeFactor() { return probeFactor_; }
  InterpClass& ForwardPort() { return forwardPort_; }
  InterpClass& ReversePort() { return reversePort_; }
  ForwardSensor& Sensor() { return sensor_; }

 private:
  const TestDefinition& Test() const;
  void TakeList(std::vector<PlanStep>& steps);
  void ShowPlan(const std::vector<PlanStep>& steps);
  bool RecordCovers(PlanRange& range);
  bool LoadTables(PlanRange& range);
  bool RecordHasLevels(const std::vector<PlanStep>& steps);
  bool BringUp();
  bool InitModulation();
  bool InitPowerMeter();
  bool InitMeter();
  bool WaitForSharedAddress();

  Shell& shell_;
  Instruments& instruments_;
  Documents& documents_;
  RunDisplay& display_;
  RunGuard& guard_;
  std::unique_ptr<clsCalFile> calibration_;
  InterpClass cableLoss_, probeFactor_, forwardPort_, reversePort_;
  ForwardSensor sensor_;
  InstrumentsUp up_;
  bool listReadable_ = true;
};

}  // namespace hylden
