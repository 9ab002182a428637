#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "testrun/LevelTargets.h"
#include "testrun/RunContext.h"

namespace hylden {

/// Levels and dwells one step of a test run: tunes the instruments, brings the level up to the calibrated target
/// without overshooting, holds it for the dwell and records what was applied. Whatever fails, is halted or throws
/// inside a step ends it with RF off. Levels are kept as an offset in dB below the calibrated generator level.
class StepRunner {
 public:
  explicit StepRunner(RunContext& run) : run_(run) {}

  /// A run begins: nothing is known of earlier steps, and no question has been answered.
  void StartRun();
  /// @return what it came to; nothing when the run is to end: RF is off then, and the reason has been shown
  std::optional<ReachedStep> Run(const PlanStep& step, bool first);
  /// The run goes on from an earlier step, which manual mode returned to.
  void ResumeFrom(const PreviousStep& step) { previous_ = step; }

 private:
  /// The way from the product's current to the meter, at one frequency.
  struct ProbePath {
    double Factors = 0;           ///< cable loss and probe factor, dB
    double LimitDbua = kNoValue;  ///< kNoValue where no limit can be told
  };
  struct StepState {
    double Freq = 0;
    double Dwell = 0;
    int Row = 0;
    StepTargets Targets = {};
    Drive Now = {};
    double KeptOffset = 0;
    ProbePath Probe = {};
    StepResult Result = {};
    std::int64_t DwellStartMs = 0;  ///< when the level was reached
  };

  const TestDefinition& Test() const;
  bool Halted() const;
  float DriveLevel() const { return static_cast<float>(double{state_.Targets.SigGenCal} - state_.Now.Offset); }

  // The step as a procedure; each part is false when the step fails.
  bool Procedure(const PlanStep& step, bool first);
  void Begin(const PlanStep& step, bool first);
  bool FindTargets();
  bool SetUpFeedback();
  bool ChooseStart(bool first);
  bool AcceptConflict();
  bool Retune();
  bool RampToTarget();
  bool ModulationOn();
  bool HoldForDwell();
  ReachedStep Record();

  // The ramps (LevelRamps.cpp).
  bool RampSigGen();
  bool RampSigGenWithLimit();
  bool RampForwardPower();
  bool RampNetPower();
  bool FinishPowerRamp(double powerDbm);
  bool CheckDrive();
  bool CheckGain();
  bool RaiseAndDwell(const std::string& dwellStatus);
  /// Reads the probe before a raise where the current is limited: narrows the headroom, or holds the level above the
  /// limit. @return false without a reading
  bool LimitByCurrent(double& headroomDb, bool& held);
  bool ReadProbe(const std::string& status);
  bool ReadForward();
  bool ReadReverse();
  std::optional<double> ReadNet();

  bool Wait(double seconds, const std::string& status);
  void StartDwell();
  void LogCutDwell();
  void Mark(bool& mark, Readout readout);

  RunContext& run_;
  StepState state_;
  PreviousStep previous_;
  bool conflictAccepted_ = false;
};

}  // namespace hylden
