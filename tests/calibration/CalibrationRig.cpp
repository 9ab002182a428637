#include "calibration/CalibrationRig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "text/Numbers.h"

namespace hylden {

CalibrationRig::CalibrationRig() {
  bus.transcript.onLine = [this](const std::string& line) { Follow(line); };
  bus.fallback = [this](int address, const std::string& command) { return AnswerOf(address, command); };
  t.dialogs.onShow = [this](const Message&) { rfOnAtMessage = rfOnAtMessage || rfOn; };
  const TempDir& files = t.directory;
  equipment.CableLossFile = files.Write("cable.los", "0.1 1\r\n1000 1\r\n1001 2\r\n");
  equipment.FwdPortFile = files.Write("forward.fac", "0.1 0\r\n1000 0\r\n1001 1\r\n");
  equipment.RevPortFile = files.Write("reverse.fac", "0.1 0\r\n1000 0\r\n1001 1\r\n");
  equipment.AmpConfiguration = static_cast<int>(AmpConfig::DualFwdRev);
  setup.StartFreq = 1;
  setup.StopFreq = 4;
  setup.StepType = 1;
  setup.LogStep = 100;
  setup.CalLevel = 1;
  setup.MaxLevel = 10;
  setup.MaxStep = 20;
  setup.InitLevel = -10;
  setup.Dwell = 0.5;
  setup.CouplingMethod = 2;
  setup.SetupDescription = "1 V";
  DefineInstruments();
}

void CalibrationRig::Run() {
  ASSERT_TRUE(level.Prepare()) << t.dialogs.LastText();
  level.Run();
}

void CalibrationRig::RunWithLevels(std::deque<double> scripted) {
  levels = std::move(scripted);
  Run();
}

std::vector<std::string> CalibrationRig::Sent(int address) const {
  std::vector<std::string> sent = bus.transcript.SentTo(address);
  for (std::string& command : sent) command.resize(command.find("\\r\\n"));
  return sent;
}

std::vector<std::string> CalibrationRig::LevelsSent() const {
  std::vector<std::string> sent = Sent(18);
  std::erase_if(sent, [](const std::string& command) { return !command.starts_with("POW"); });
  return sent;
}

int CalibrationRig::Shown(const std::string& text) const {
  const auto texts = t.dialogs.Texts();
  return static_cast<int>(std::count(texts.begin(), texts.end(), text));
}

std::vector<std::string> CalibrationRig::Rows() const {
  std::vector<std::string> rows;
  for (const CalRow& row : level.Rows()) {
    std::string& text = rows.emplace_back();
    for (const std::string& cell : row) text += cell + ",";
  }
  return rows;
}

void CalibrationRig::UseIfi() {
  equipment.AmplifierType = static_cast<int>(AmpType::Ifi);
  equipment.IfiBandSwitch = 2;
}

void CalibrationRig::Follow(const std::string& line) {
  if (!line.starts_with("> 18 ") || line.find(" !") != std::string::npos) return;
  const std::string command = line.substr(5);
  if (command.starts_with("POW ")) generatorDbm = LeadingNumber(command.substr(4));
  if (stepDbm > 0) generatorDbm = std::floor(generatorDbm / stepDbm) * stepDbm;
  if (command.starts_with("FREQ ")) frequencyMHz = LeadingNumber(command.substr(5));
  if (command.starts_with("OUTP ON")) rfOn = true;
  if (command.starts_with("OUTP OFF")) rfOn = false;
}

std::optional<std::string> CalibrationRig::AnswerOf(int address, const std::string& command) {
  const double forward = (rfOn ? generatorDbm : -140) + powerDb;
  if (address == 13) return ShortestText(command.starts_with("RD2") ? forward - 10 : forward) + "\r\n";
  if (address == 17) return MeterAnswer();
  if (command.starts_with("RP")) return std::string("0100 0200\r\n");
  return std::nullopt;
}

std::string CalibrationRig::MeterAnswer() {
  double reading = (rfOn ? generatorDbm : -140) + portDb;
  if (!levels.empty()) {
    reading = levels.front() - 1;  // what the cable loses
    levels.pop_front();
  }
  if (onMeterRead) onMeterRead(reading);
  return ShortestText(reading) + "\r\n";
}

void CalibrationRig::DefineInstruments() {
  SigGenDefinition generator;
  generator.Address = 18;
  generator.FreqSetPrefix = "FREQ";
  generator.LevSetPrefix = "POW";
  generator.ModulationOff = "MOD OFF";
  generator.RfOff = "OUTP OFF";
  generator.RfOn = "OUTP ON";
  generator.MaximumLevel = 13;
  generator.MinimumLevel = -140;
  generator.MaximumFreq = 1000;
  generator.MinimumFreq = 0.1;
  generator.EndOfString = 2;
  instruments.sigGen.PutDefinition(generator);

  PowerMeterDefinition power;
  power.Address = 13;
  power.Ch1Read = "RD1";
  power.Ch2Read = "RD2";
  power.Shutdown = "BYE";
  power.Bandswitch = 2;
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
  meter.Trigger = "TS";
  meter.Shutdown = "BYE";
  meter.Units = 1;
  meter.MaximumLevel = 140;
  meter.MinimumLevel = -200;
  meter.MaximumFreq = 1000;
  meter.SettlingTime = 0.1F;
  meter.EndOfString = 2;
  instruments.meter.PutDefinition(meter);
}

}  // namespace hylden
