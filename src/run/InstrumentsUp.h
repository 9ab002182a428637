#pragma once

#include <functional>
#include <vector>

#include "shell/Failure.h"

namespace hylden {

class RunGuard;
class Shell;
struct EquipRecord;
struct Instruments;

/// Runs every action, whatever the others do, and throws the first exception on after the last.
void RunAll(const std::vector<std::function<void()>>& actions);

/// Brings a run's instruments up one by one and knows which ones have to be taken down again. Bringing up is false
/// after its failure was told.
class InstrumentsUp {
 public:
  InstrumentsUp(Shell& shell, Instruments& instruments, RunGuard& guard)
      : shell_(shell), instruments_(instruments), guard_(guard) {}

  /// Clears the interface and opens the generator at its minimum, with modulation and RF off.
  bool BringUpSigGen();
  bool BringUpPowerMeter();
  bool BringUpMeter();
  /// Under control of the bus, or as a generic one that needs none.
  bool BringUpAmplifier(const EquipRecord& equipment);

  /// Takes the generator alone down: RF off, offline. What fails stays up for TakeDown to try again, and to
  /// tell.
  void CloseSigGen();
  /// RF off, quietly, before anything that may stall on the way to TakeDown.
  void SwitchRfOff();
  /// Takes down what was brought up, RF first, and leaves what came up half-way local. Each instrument is taken down
  /// even when the one before fails; an exception from one of them is thrown on after the last. Shows what failed, and
  /// tells when RF may still be on.
  void TakeDown();

 private:
  enum class Generator { Unknown, Up, Closed };
  struct State {
    Generator SigGen = Generator::Unknown;
    bool PwrMtr = false, Meter = false, IfiAmp = false;
  };

  /// @param otherwise  what it means to the run when it was not done
  bool IsUp(const Done& done, const char* otherwise);
  /// Keeps what failed until it is told.
  void Note(const Done& done) { down_ = Both(down_, done); }
  void TakeInstrumentsDown();
  void Conclude();

  Shell& shell_;
  Instruments& instruments_;
  RunGuard& guard_;
  State up_;
  Done down_;
  bool rfSwitchedOff_ = false;
};

}  // namespace hylden
