#pragma once

#include "run/InstrumentsUp.h"

namespace hylden {

class RunDisplay;
struct TestDefinition;

/// Brings up what a test needs of the station, and takes it down again.
class TestInstruments {
 public:
  TestInstruments(Shell& shell, Instruments& instruments, const TestDefinition& test, const EquipRecord& equipment,
                  RunDisplay& display, RunGuard& guard);
  TestInstruments(const TestInstruments&) = delete;
  TestInstruments& operator=(const TestInstruments&) = delete;

  /// In a fixed order: generator 60 dB below 1 mW with the test's modulation and RF off, power meter, meter, amplifier.
  /// @return false after the first failure was told
  bool BringUp();
  /// RF off, before anything that may stall on the way to TakeDown.
  void SwitchRfOff() { up_.SwitchRfOff(); }
  /// Takes down what was brought up, RF first. Each instrument is taken down even when the one before fails; an
  /// exception from one of them is thrown on after the last.
  void TakeDown();

 private:
  bool BringUpAll();
  bool SetUpModulation();
  bool BringUpPowerMeter();
  bool BringUpMeter();
  bool WaitForSharedAddress();

  Shell& shell_;
  Instruments& instruments_;
  const TestDefinition& test_;
  const EquipRecord& equipment_;
  RunDisplay& display_;
  RunGuard& guard_;
  InstrumentsUp up_;
};

}  // namespace hylden
