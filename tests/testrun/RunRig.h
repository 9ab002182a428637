#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "support/RecordingDisplay.h"
#include "support/TestStation.h"
#include "testrun/ManualControls.h"
#include "testrun/RunEngine.h"

namespace hylden {

/// Keeps what a run does to the window of manual mode, in order.
struct RecordingManual : ManualControls {
  void OpenManual(const ManualStart& start) override {
    calls.push_back("manual opened");
    opened = start;
    isOpen = true;
    rf = start.RfOn, mod = start.ModOn;
  }
  void CloseManual() override {
    calls.push_back("manual closed");
    isOpen = false;
  }
  void ManualStep(int step, int row, double frequencyMHz) override {
    at = {step, row};
    freq = frequencyMHz;
  }
  void ManualRf(bool on) override { rf = on; }
  void ManualMod(bool on) override { mod = on; }

  Strings calls;
  bool isOpen = false;
  ManualStart opened;
  std::pair<int, int> at;  ///< step and row
  double freq = 0;
  bool rf = false, mod = false;
};

/// The scripted station, live, with a test run. The probe reads 90 dB over the generator's level. The test definition
/// holds three steps, 1, 2 and 4 MHz, calibrated at -10, -8 and -6 dBm for 40, 42 and 44 dBm forward and 30, 32 and 34
/// dBm reverse power and 120 dBuV.
struct RunRig : TestStation {
  RunRig() {
    MakeLive([](double levelDbm) { return levelDbm + 90; });
    test.CalInfoFile = t.directory.Write("bench.hyinfo", "");
    t.directory.Write("bench.cal", "1,-10,120,40,30,\r\n2,-8,120,42,32,\r\n4,-6,120,44,34,\r\n");
    equipment.ProbeFile = t.directory.Write("probe.prb", "0.1 0\r\n1000 0\r\n1001 1\r\n");
    test.StartFreq = 1, test.StopFreq = 4, test.FreqSweep = true, test.StepType = StepType::Log, test.LogStep = 100;
    test.SweepDwell = 2, test.InterDwell = 0.5F;
    test.InitLevOffset = -12, test.LevelInc = 6;
    test.EUTCircuitImpedance = 150;
  }

  RunReadiness Prepare() { return engine.Prepare(); }
  /// Prepares and runs.
  void Run() {
    ASSERT_EQ(Prepare(), RunReadiness::Ready);
    engine.RunCdiTest();
  }
  void UsePower(LevelingMethod method) { test.LevelingMethod = method; }
  void UseAm(bool offBetween, bool constPeak) {
    test.ModType = Modulation::Am, test.AmDepth = 80, test.AmModFreq = 1;
    test.ModOffBetweenFreqs = offBetween, test.ConstPeak = constPeak;
  }
  void LogToFile() { t.shell.settings.Store().SaveSettingStr("System", "LogToFile", "1"); }
  /// Does something when the display shows this status for the n-th time.
  void AtStatus(const std::string& status, std::function<void()> action, int n = 1) {
    t.events.onYield = [this, status, action, n, done = false]() mutable {
      if (done || std::count(display.statuses.begin(), display.statuses.end(), status) < n) return;
      done = true;
      action();
    };
  }
  /// The run data below the header, one text per row.
  Strings Rows() const { return RunRowLines(engine.Data(), false); }

  RecordingDisplay display;
  RecordingManual manual;
  RunEngine engine{t.shell, instruments, documents, display, manual};
  TestDefinition& test = documents.testSetup.Definition;
};

}  // namespace hylden
