#pragma once

#include <optional>
#include <string>

#include "run/RunDisplay.h"
#include "testrun/LevelTargets.h"
#include "testrun/RunData.h"

namespace hylden {

/// What a ramp has of its station. What fails there, or was halted, has been told when it returns, and ends the ramp.
class RampStation {
 public:
  virtual ~RampStation() = default;

  /// Sets the generator to a level, dBm, and waits until all has settled on it.
  virtual bool Raise(float levelDbm) = 0;
  /// The level may be the one that stands: its dwell begins.
  virtual void StartDwell() = 0;
  /// Power to and from the coupling device, dBm.
  virtual std::optional<double> ReadForward() = 0;
  virtual std::optional<double> ReadReverse() = 0;
  /// The current that the probe finds, dBuA.
  virtual std::optional<double> ReadProbe() = 0;
  /// This is what holds the level.
  virtual void Held(Readout by) = 0;
  /// Why the ramp can't go on; false.
  virtual bool Fail(const std::string& text) = 0;
  /// The same, with a tone before it.
  virtual bool FailAloud(const std::string& text) = 0;
};

/// The level that a ramp came to, with the readings taken there.
struct ReachedLevel {
  StepResult Applied = {};
  double KeptOffset = 0;  ///< how far below its calibrated level the next step is to begin, dB
};

/// Brings the level of one step up from below, by the test's levelling method, without overshooting. Levels are kept as
/// an offset in dB below the calibrated generator level.
class LevelRamp {
 public:
  LevelRamp(RampStation& station, const TestDefinition& test, const StepTargets& targets)
      : station_(station), test_(test), targets_(targets) {}
  LevelRamp(const LevelRamp&) = delete;
  LevelRamp& operator=(const LevelRamp&) = delete;

  /// @param offset  where the generator has settled
  /// @return nothing when the ramp failed or was halted
  std::optional<ReachedLevel> From(double offset);

 private:
  bool ByGenerator();
  bool ByGeneratorWithLimit();

  bool ByPower();
  bool ReadPower();
  std::optional<double> ReadNet();
  /// The next raise, dB; 0 where something else than the power holds the level. Nothing without a reading.
  std::optional<double> PowerStep();
  bool RaisePower(double stepDb);
  bool MayDrive();
  bool GainSuffices();
  bool ConcludePower();

  float Level() const { return static_cast<float>(double{targets_.SigGenCal} - drive_.Offset); }
  bool ReadProbe();
  double Induced() const { return *reached_.Applied.Induced; }
  void Mark(bool& mark, Readout by);
  /// Ends the ramp where it is; no raise.
  double Hold(bool& mark, Readout by);

  RampStation& station_;
  const TestDefinition& test_;
  const StepTargets& targets_;
  Drive drive_;
  double power_ = 0;  ///< forward or net, by levelling method, dBm
  ReachedLevel reached_;
};

}  // namespace hylden
