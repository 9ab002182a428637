#include "testrun/RunRig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "text/Numbers.h"

namespace hylden {

namespace {

std::string Plain(double value) {
  return ShortestText(value);
}

}  // namespace

RunRig::RunRig() {
  bus.transcript.onLine = [this](const std::string& line) { Follow(line); };
  bus.fallback = [this](int address, const std::string& command) { return AnswerOf(address, command); };
  WriteFiles();
  DefineInstruments();
  DefineTest();
}

void RunRig::Run() {
  ASSERT_EQ(engine.Prepare(), RunReadiness::Ready);
  engine.RunCdiTest();
}

void RunRig::AtStatus(const std::string& status, std::function<void()> action, int n) {
  t.events.onYield = [this, status, action, n, done = false]() mutable {
    if (done || std::count(display.statuses.begin(), display.statuses.end(), status) < n) return;
    done = true;
    action();
  };
}

std::vector<std::string> RunRig::Generator() const {
  std::vector<std::string> sent = bus.transcript.SentTo(18);
  for (std::string& command : sent) command.resize(command.find("\\r\\n"));
  return sent;
}

int RunRig::Shown(const std::string& text) const {
  const auto texts = t.dialogs.Texts();
  return static_cast<int>(std::count(texts.begin(), texts.end(), text));
}

void RunRig::Follow(const std::string& line) {
  if (!line.starts_with("> 18 ") || line.find(" !") != std::string::npos) return;
  const std::string command = line.substr(5);
  if (command.starts_with("POW ")) generatorDbm = LeadingNumber(command.substr(4));
  if (command.starts_with("FREQ ")) frequencyMHz = LeadingNumber(command.substr(5));
  if (command.starts_with("OUTP ON")) rfOn = true;
  if (command.starts_with("OUTP OFF")) rfOn = false;
  if (!rfOn) return;
  highestDbm = std::max(highestDbm, generatorDbm);
  auto [at, isNew] = highestAt.try_emplace(frequencyMHz, generatorDbm);
  at->second = std::max(at->second, generatorDbm);
}

std::optional<std::string> RunRig::AnswerOf(int address, const std::string& command) const {
  const double level = rfOn ? generatorDbm : -140;
  const auto error = gainErrorDb.find(frequencyMHz);
  const double forward = level + gainDb + (error == gainErrorDb.end() ? 0 : error->second);
  if (address == 13) return Plain(command.starts_with("RD2") ? forward - returnLossDb : forward) + "\r\n";
  if (address == 17) return Plain(level + probeDb) + "\r\n";
  return std::nullopt;
}

void RunRig::WriteFiles() {
  const TempDir& files = t.directory;
  test.CalInfoFile = files.Write("bench.hyinfo", "");
  files.Write("bench.cal", "1,-10,120,40,30,\r\n2,-8,120,42,32,\r\n4,-6,120,44,34,\r\n");
  equipment.CableLossFile = files.Write("cable.los", "0.1 1\r\n1000 1.5\r\n");
  equipment.ProbeFile = files.Write("probe.prb", "0.1 0\r\n1000 0\r\n1001 1\r\n");
  equipment.FwdPortFile = files.Write("forward.fac", "0.1 0\r\n1000 0\r\n1001 1\r\n");
  equipment.RevPortFile = files.Write("reverse.fac", "0.1 0\r\n1000 0\r\n1001 1\r\n");
  equipment.AmpConfiguration = static_cast<int>(AmpConfig::DualFwdRev);
}

void RunRig::DefineInstruments() {
  SigGenDefinition generator;
  generator.Address = 18;
  generator.FreqSetPrefix = "FREQ";
  generator.FreqSetSuffix = "MHZ";
  generator.LevSetPrefix = "POW";
  generator.LevSetSuffix = "DBM";
  generator.ModulationOff = "MOD OFF";
  generator.RfOff = "OUTP OFF";
  generator.RfOn = "OUTP ON";
  generator.AmFreqPrefix = "AMF";
  generator.AmDepthPrefix = "AMD";
  generator.AmModOn = "AM ON";
  generator.MaximumLevel = 13;
  generator.MinimumLevel = -140;
  generator.MaximumFreq = 1000;
  generator.MinimumFreq = 0.1;
  generator.EndOfString = 2;
  generator.AmCapable = 1;
  instruments.sigGen.PutDefinition(generator);

  PowerMeterDefinition power;
  power.Address = 13;
  power.Ch1Read = "RD1";
  power.Ch2Read = "RD2";
  power.Shutdown = "BYE";
  power.Units = 1;
  power.MaximumFreq = 1000;
  power.SettlingTime = 0.1F;
  power.EndOfString = 2;
  instruments.pm.PutDefinition(power);

  MeterDefinition meter;
  meter.Address = 17;
  meter.FreqSetPrefix = "CF";
  meter.LevSetPrefix = "RL";
  meter.Read = "MKA";
  meter.Shutdown = "BYE";
  meter.Units = 1;
  meter.MaximumLevel = 140;
  meter.MinimumLevel = -200;
  meter.MaximumFreq = 1000;
  meter.SettlingTime = 0.1F;
  meter.EndOfString = 2;
  instruments.meter.PutDefinition(meter);
}

void RunRig::DefineTest() {
  test.StartFreq = 1;
  test.StopFreq = 4;
  test.FreqSweep = true;
  test.StepType = 1;
  test.LogStep = 100;
  test.SweepDwell = 2;
  test.InitLevOffset = -12;
  test.LevelInc = 6;
  test.InterDwell = 0.5F;
  test.EUTCircuitImpedance = 150;
}

}  // namespace hylden
