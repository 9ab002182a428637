#include "testrun/RunRig.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace hylden {

RunRig::RunRig() {
  const TempDir& files = t.directory;
  test.CalInfoFile = files.Write("bench.hyinfo", "");
  files.Write("bench.cal", "1,-10,120,40,30,\r\n2,-8,120,42,32,\r\n4,-6,120,44,34,\r\n");
  equipment.ProbeFile = files.Write("probe.prb", "0.1 0\r\n1000 0\r\n1001 1\r\n");
  DefineTest();
}

void RunRig::Run() {
  ASSERT_EQ(engine.Prepare(), RunReadiness::Ready);
  engine.RunCdiTest();
}

void RunRig::UseAm(bool offBetween, bool constPeak) {
  test.ModType = Modulation::Am;
  test.AmDepth = 80;
  test.AmModFreq = 1;
  test.ModOffBetweenFreqs = offBetween;
  test.ConstPeak = constPeak;
}

void RunRig::AtStatus(const std::string& status, std::function<void()> action, int n) {
  t.events.onYield = [this, status, action, n, done = false]() mutable {
    if (done || std::count(display.statuses.begin(), display.statuses.end(), status) < n) return;
    done = true;
    action();
  };
}

void RunRig::DefineTest() {
  test.StartFreq = 1;
  test.StopFreq = 4;
  test.FreqSweep = true;
  test.StepType = StepType::Log;
  test.LogStep = 100;
  test.SweepDwell = 2;
  test.InitLevOffset = -12;
  test.LevelInc = 6;
  test.InterDwell = 0.5F;
  test.EUTCircuitImpedance = 150;
}

}  // namespace hylden
