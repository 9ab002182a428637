#pragma once

#include <exception>
#include <functional>
#include <optional>
#include <vector>

#include "shell/Failure.h"

namespace hylden {

class ManualControls;
class RunData;
class RunDisplay;
class RunGuard;
class Shell;
struct EquipRecord;
struct Instruments;
struct TestDefinition;

/// A step that was run, as manual mode goes back to it.
struct ReachedStep {
  double Freq = 0;        ///< MHz
  float SigGenLevel = 0;  ///< that stood for its dwell, dBm
  float TestLevel = 0;    ///< dBuV
  /// How far below its calibrated level the next step is to begin, dB; nothing in the former part of a continued run,
  /// behind which a step begins as the first one does.
  std::optional<double> KeptOffset = {};
  int Row = 0;  ///< of the run data
};

/// What stands at the product in manual mode.
struct ManualStanding {
  double Freq = 0;   ///< MHz
  float Offset = 0;  ///< dB from the level reached at the step
};

/// Manual mode: between two steps the operator has the generator. Its form calls what has the names of the operator's
/// events; they change the instruments and the run data. A failing instrument ends with RF off; nothing raises the
/// level once a halt was requested. Offsets in dB.
class ManualMode {
 public:
  /// @param reached  the steps that have been run, in the plan's order
  ManualMode(Shell& shell, Instruments& instruments, const TestDefinition& test, const EquipRecord& equipment,
             RunDisplay& display, ManualControls& controls, RunGuard& guard, RunData& data,
             const std::vector<ReachedStep>& reached);
  ManualMode(const ManualMode&) = delete;
  ManualMode& operator=(const ManualMode&) = delete;

  /// Opens the form after a step, and returns when the operator goes on.
  /// @return the step behind which the run goes on; nothing after a halt
  std::optional<int> Run(int step);
  /// Takes the form away, where something thrown left it open.
  void Close();
  /// The modulation was switched off, or may have been.
  bool ModulationMayBeOff() const { return modulation_ != Modulated::On; }

  /// An event is being worked on; changes wait for the next tick of the timer.
  bool IsBusy() const { return busy_; }
  /// The last offset that the generator took.
  float LevelOffset() const { return levelOffset_; }
  /// The last frequency and offset that the generator took.
  const ManualStanding& Standing() const { return standing_; }
  /// The most that the level may rise at once: the test's level increment.
  float MostRise() const;

  /// Goes to a step that has been run, at the present offset. A generator that refuses stays there with RF off.
  /// @return false when it was refused or not listened to
  bool manStepNumChange(int step);
  /// A generator that refuses ends with RF off, and the offset is the one before.
  /// @return false when it was refused or not listened to
  bool manLevOffsetChange(float offsetDb);
  void manRfOn(bool on);
  void manModOn(bool on);
  /// Notes a threshold and asks for a comment; without one the row stays. Nothing while an event is being worked on:
  /// nothing stands at the product while the amplifiers change over.
  void manThresholdClick(double frequencyMHz, float offsetDb);
  void manExitClick();

 private:
  enum class State { Closed, Open, Left };  ///< Left: the operator goes on, and the form is still there
  enum class Modulated { Off, On, Unknown };

  bool Halted() const;
  void Open(int step);
  bool Handle(const std::function<Done()>& change);
  void Trap(const std::exception& error);
  Done GoToStep(int step);
  Done SetLevel();
  void ShowStep();
  Done SwitchRf(bool on);
  Done SwitchModulation(bool on);
  void SwitchRfOff();
  const ReachedStep& StepNow() const { return reached_[static_cast<std::size_t>(step_ - 1)]; }

  Shell& shell_;
  Instruments& instruments_;
  const TestDefinition& test_;
  const EquipRecord& equipment_;
  RunDisplay& display_;
  ManualControls& controls_;
  RunGuard& guard_;
  RunData& data_;
  const std::vector<ReachedStep>& reached_;

  State state_ = State::Closed;
  bool busy_ = false;
  int step_ = 1;
  float levelOffset_ = 0;
  ManualStanding standing_;
  float exposedOffset_ = 0;  ///< the last offset that stood there with RF on
  Modulated modulation_ = Modulated::Off;
};

}  // namespace hylden
