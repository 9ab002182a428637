#pragma once

#include <cstdint>
#include <optional>

#include "run/ForwardSensor.h"
#include "testrun/LevelRamp.h"
#include "testrun/LevelTargets.h"
#include "testrun/StepPlan.h"

namespace hylden {

class InterpClass;
class RunDisplay;
class RunGuard;
class Shell;
struct EquipRecord;
struct Instruments;
struct RunInputs;
struct TestDefinition;

/// What a step took beside its dwell.
struct StepTiming {
  int Waits = 0;        ///< intermediate dwells
  double Readings = 0;  ///< what was done within its dwell, s
};

/// Levels and dwells the steps of one run: tunes the instruments, brings the level up to the calibrated target, and
/// holds it for the dwell. Whatever fails, is halted or throws inside a step ends it with RF off.
class StepRunner : private RampStation {
 public:
  StepRunner(Shell& shell, Instruments& instruments, const TestDefinition& test, const EquipRecord& equipment,
             RunInputs& inputs, RunDisplay& display, RunGuard& guard);
  StepRunner(const StepRunner&) = delete;
  StepRunner& operator=(const StepRunner&) = delete;

  /// @param previous  the step before in the plan, which has been run
  /// @return what was applied; nothing when the run is to end: RF is off then, and the reason has been shown
  std::optional<ReachedLevel> Run(const PlanStep& step, const PreviousStep& previous);
  /// The operator wants manual mode: the dwell at work ends one intermediate dwell from now, later ones are not held.
  void CutDwells();
  bool DwellsAreCut() const { return dwellsCut_; }
  /// Of the step that was run last.
  const StepTiming& Timing() const { return timing_; }
  /// Manual mode is over.
  /// @param modulationMayBeOff  the next step has to switch it on again
  void GoOn(bool modulationMayBeOff);

 private:
  // The step as a procedure; each part is false when the step fails.
  void Begin();
  bool FindTargets();
  bool SetUpFeedback();
  bool ChooseStart(const PreviousStep& previous);
  bool AcceptConflict();
  bool Retune();
  bool RampToTarget();
  bool ModulationOn();
  bool HoldForDwell();

  // What the ramp has of the station.
  bool Raise(float levelDbm) override;
  void StartDwell() override;
  std::optional<double> ReadForward() override;
  std::optional<double> ReadReverse() override;
  std::optional<double> ReadProbe() override;
  void Held(Readout by) override;
  bool Fail(const std::string& text) override;
  bool FailAloud(const std::string& text) override;

  bool Halted() const;
  float StartLevel() const { return static_cast<float>(double{targets_.SigGenCal} - offset_); }
  /// The value of a factor table at the step's frequency.
  std::optional<double> Factor(InterpClass& table, const char* name);
  bool IntermediateDwell(const char* status);
  double SecondsSinceDwell() const;
  void LogCutDwell();

  Shell& shell_;
  Instruments& instruments_;
  const TestDefinition& test_;
  const EquipRecord& equipment_;
  RunInputs& inputs_;
  RunDisplay& display_;
  RunGuard& guard_;
  ForwardSensor sensor_;
  bool conflictAccepted_ = false;
  bool dwellsCut_ = false;
  bool modulationMayBeOff_ = false;

  // The step at work.
  PlanStep step_;
  StepTargets targets_;
  double offset_ = 0;        ///< where it starts, dB below the calibrated level
  double probeFactors_ = 0;  ///< from the meter's reading to the product's current: cable loss and probe factor, dB
  ReachedLevel reached_;
  std::int64_t dwellStartMs_ = 0;  ///< when the level was reached
  StepTiming timing_;
};

}  // namespace hylden
