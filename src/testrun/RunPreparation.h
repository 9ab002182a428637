#pragma once

#include <memory>
#include <vector>

#include "calibration/InstrumentsUp.h"
#include "calibration/PowerReading.h"
#include "documents/clsCalFile.h"
#include "measure/InterpClass.h"
#include "testrun/StepPlan.h"

namespace hylden {

class RunDisplay;
class Shell;
struct Documents;
struct Instruments;
struct TestDefinition;

/// What stands between Start and the first frequency, and after the last: the plan, the calibration record, the factor
/// tables, and bringing the instruments up and down. It owns the record and the tables of the run.
class RunPreparation {
 public:
  RunPreparation(Shell& shell, Instruments& instruments, Documents& documents, RunDisplay& display);

  /// Plans the steps and shows their number and the estimated time. @return how many
  int PlanSteps(std::vector<PlanStep>& steps);
  /// Loads the calibration record that the test names. @return false after a message
  bool LoadCalibration();
  /// Loads the tables that the test needs; each must cover its frequency range. @return false after a message
  bool LoadRunFactors();

  /// Brings the instruments up in a fixed order: generator 60 dB below 1 mW with the test's modulation and RF off,
  /// power meter, meter, amplifier. @return false after the message of the first failure
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
  bool LoadTable(InterpClass& table, const std::string& path, const char* loadText, const char* coverText);
  bool BringUp();
  bool InitModulation();
  bool InitPowerMeter();
  bool InitMeter();
  bool WaitForSharedAddress();
  bool Refuse(const char* text);

  Shell& shell_;
  Instruments& instruments_;
  Documents& documents_;
  RunDisplay& display_;
  std::unique_ptr<clsCalFile> calibration_;
  InterpClass cableLoss_, probeFactor_, forwardPort_, reversePort_;
  ForwardSensor sensor_;
  InstrumentsUp up_;
};

}  // namespace hylden
