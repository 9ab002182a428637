// Writes the files of the demo station into the current directory: one of every kind, consistent with one another and
// with the bench's defaults. The names in them have no directory: the program runs with the station as its working
// directory. The calibration records are made by calibrating, see scripts/make-station.sh.

#include <algorithm>
#include <cmath>
#include <exception>
#include <iostream>
#include <set>
#include <string>
#include <vector>

#include "bench/BenchConfig.h"
#include "documents/CalSetupRecord.h"
#include "documents/EquipRecord.h"
#include "documents/TestDefinition.h"
#include "instruments/MeterDefinition.h"
#include "instruments/PowerMeterDefinition.h"
#include "instruments/SigGenDefinition.h"
#include "measure/ReadFreq.h"
#include "text/Numbers.h"
#include "text/Pattern.h"
#include "text/RecordFile.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

constexpr int kGeneratorAddress = 18, kMeterAddress = 13, kPowerMeterAddress = 14;
constexpr double kBandSwitchMHz = 215;

void WriteScpiGenerator() {
  SigGenDefinition d;
  d.InstrumentName = "SCPI signal generator, 0.1 to 1000 MHz";
  d.Address = kGeneratorAddress;
  d.InitString = "*CLS";
  d.FreqSetPrefix = "FREQ", d.FreqSetSuffix = "MHZ";
  d.LevSetPrefix = "POW", d.LevSetSuffix = "DBM";
  d.ModulationOff = "MOD:STAT OFF";
  d.RfOff = "OUTP OFF", d.RfOn = "OUTP ON";
  d.AmFreqPrefix = "AM:INT:FREQ", d.AmFreqSuffix = "KHZ", d.AmDepthPrefix = "AM:DEPT", d.AmDepthSuffix = "PCT";
  d.AmModOn = "AM:STAT ON";
  d.FmFreqPrefix = "FM:INT:FREQ", d.FmFreqSuffix = "KHZ", d.FmDevPrefix = "FM:DEV", d.FmDevSuffix = "KHZ";
  d.FmModOn = "FM:STAT ON";
  d.PulseFreqPrefix = "PULM:INT:FREQ", d.PulseFreqSuffix = "KHZ";
  d.PulseWidthPrefix = "PULM:INT:PWID", d.PulseWidthSuffix = "MS";
  d.PulseModOn = "PULM:STAT ON";
  d.MaximumLevel = 13, d.MinimumLevel = -140, d.MaximumFreq = 1000, d.MinimumFreq = 0.1;
  d.EndOfString = 2;
  d.AmCapable = d.FmCapable = d.PulseCapable = 1;
  SaveRecord("scpi.sg", d);
}

/// Two-letter codes, no command that switches RF off, no pulses.
void WriteOlderGenerator() {
  SigGenDefinition d;
  d.InstrumentName = "Older signal generator, two-letter codes";
  d.Address = kGeneratorAddress;
  d.FreqSetPrefix = "FR", d.FreqSetSuffix = "MZ";
  d.LevSetPrefix = "AP", d.LevSetSuffix = "DM";
  d.ModulationOff = "MO";
  d.RfOn = "R3";
  d.AmFreqPrefix = "MF", d.AmFreqSuffix = "KZ", d.AmDepthPrefix = "AM", d.AmDepthSuffix = "PC", d.AmModOn = "MA";
  d.FmFreqPrefix = "MF", d.FmFreqSuffix = "KZ", d.FmDevPrefix = "FM", d.FmDevSuffix = "KZ", d.FmModOn = "MM";
  d.MaximumLevel = 13, d.MinimumLevel = -140, d.MaximumFreq = 1000, d.MinimumFreq = 0.1;
  d.EndOfString = 1;
  d.AmCapable = d.FmCapable = 1;
  SaveRecord("two-letter.sg", d);
}

void WriteAnalyser() {
  MeterDefinition d;
  d.InstrumentName = "Spectrum analyser, 9 kHz to 1500 MHz";
  d.Address = kMeterAddress;
  d.InitString = "IP";
  d.FreqSetPrefix = "CF", d.FreqSetSuffix = "MZ";
  d.LevSetPrefix = "RL", d.LevSetSuffix = "DBUV";
  d.Read = "MKA?", d.Trigger = "TS", d.Shutdown = "CONTS";
  d.Units = 1, d.Type = static_cast<std::int32_t>(MeterType::SpecAn);
  d.MaximumLevel = 130, d.MinimumLevel = -20, d.MaximumFreq = 1500, d.MinimumFreq = 0.009;
  d.SettlingTime = 0.2F;
  d.EndOfString = 2;
  d.ParseCmd = "Mid(x, 5)";
  SaveRecord("analyser.mtr", d);
}

void WritePowerMeter() {
  PowerMeterDefinition d;
  d.InstrumentName = "Power meter, two channels";
  d.Address = kPowerMeterAddress;
  d.InitString = "*CLS";
  d.FreqSetPrefix = "FREQ", d.FreqSetSuffix = "MHZ";
  d.SelectCh1 = "CHA", d.SelectCh2 = "CHB";
  d.Ch1Read = "READA?", d.Ch2Read = "READB?";
  d.Ch1Trigger = "TRGA", d.Ch2Trigger = "TRGB";
  d.Bandswitch = kBandSwitchMHz;
  d.Shutdown = "STBY";
  d.Units = 1, d.Type = 1;
  d.MaximumFreq = 1000, d.MinimumFreq = 0.01;
  d.SettlingTime = 0.1F;
  d.EndOfString = 2;
  d.ParsingCmd = "Mid(x, 4)";
  SaveRecord("two-channel.pm", d);
}

/// The bench's table as a measured one: its own points and 24 to the decade between, so that straight lines and
/// logarithmic ones meet.
void WriteTable(const std::string& name, const std::string& title, const std::string& unit,
                const FrequencyTable& table) {
  const auto& points = table.Points();
  std::set<double> frequencies;
  for (const auto& point : points) frequencies.insert(point.FreqMHz);
  const double decades = std::log10(points.back().FreqMHz / points.front().FreqMHz);
  for (int i = 1; i < static_cast<int>(24 * decades); ++i) {
    const double exact = points.front().FreqMHz * std::pow(10, i / 24.0);
    const double scale = std::pow(10, 2 - std::floor(std::log10(exact)));
    frequencies.insert(std::round(exact * scale) / scale);
  }
  std::vector<std::string> lines = {title, "Frequency (MHz), " + unit};
  for (const double f : frequencies) lines.push_back(ShortestText(f) + ", " + Format(table.At(f), "0.0##"));
  ReplaceFile(name, JoinLines(lines));
}

void WriteTables(const BenchConfig& bench) {
  WriteTable("meter-cable.los", "Cable between calibration port or monitor probe and meter", "Loss (dB)", bench.Cable);
  WriteTable("forward.fac", "Directional coupler, forward port", "Coupling (dB)", bench.ForwardCoupling);
  WriteTable("reverse.fac", "Directional coupler, reverse port", "Coupling (dB)", bench.ReverseCoupling);
  WriteTable("monitor.prb", "Current monitor probe", "Factor (dB)", bench.Probe);
  ReplaceFile("amplifier.pwr", JoinLines({"Amplifier, most power with 1 dB compression", "Frequency (MHz), Power (W)",
                                          "0.01, 8.0", "0.15, 10.0", "230, 10.0", "400, 6.0"}));
  ReplaceFile("stepped.lev", JoinLines({"Test level in steps", "Frequency (MHz), Level (V)", "0.15, 3.0", "1, 3.0",
                                        "1, 10.0", "80, 10.0", "80, 3.0", "230, 3.0"}));
  ReplaceFile("radio-services.lst", JoinLines({"0.2", "1.0", "6.78", "13.56", "27.12", "40.68", "68.0", "150.0"}));
}

void WriteEquipment() {
  EquipRecord e;
  e.SigGenFile = "scpi.sg", e.SigGenAddress = kGeneratorAddress;
  e.MeterFile = "analyser.mtr", e.MeterAddress = kMeterAddress;
  e.PwrMtrFile = "two-channel.pm", e.PwrMtrAddress = kPowerMeterAddress;
  e.AmpConfiguration = AmpConfig::DualFwdRev;
  e.PmBandSwitch = e.IfiBandSwitch = kBandSwitchMHz;
  e.CableLossFile = "meter-cable.los";
  e.FwdPortFile = "forward.fac", e.RevPortFile = "reverse.fac";
  e.MaxPowerFile = "amplifier.pwr";
  e.ProbeFile = "monitor.prb";
  SaveRecord("station.eqp", e);
  e.SigGenFile = "two-letter.sg";
  SaveRecord("older-generator.eqp", e);
  e.SigGenFile = "scpi.sg";
  e.AmplifierType = AmpType::Ifi;
  e.IfiPower = true;
  SaveRecord("ifi-station.eqp", e);
}

/// 10 V at the coupling device, in steps of 1 %.
CalSetupRecord CalibrationSetup() {
  CalSetupRecord s;
  s.StartFreq = 0.15, s.StopFreq = 230;
  s.StepType = StepType::Log, s.LinearStep = 1, s.LogStep = 1;
  s.CalLevel = 10, s.LimitFile = "stepped.lev";
  s.MaxLevel = 0, s.MaxStep = 6, s.InitLevel = -30;
  s.RecordFwdPwr = s.RecordRevPwr = s.LimitFwdPwr = 1, s.FwdPwrLimit = 10;
  s.Dwell = 0.3;
  s.DeviceDescription = "150-ohm coupling device behind 6 dB";
  s.AmpUsed = "Simulated 20 W amplifier";
  s.SetupDescription = "10 V, 0.15 to 230 MHz";
  return s;
}

/// The same with either amplifier.
void WriteCalibrationSetups() {
  CalSetupRecord setup = CalibrationSetup();
  SaveRecord("cdn-10v.csu", setup, true);
  setup.AmpUsed = "Simulated IFI amplifier pair";
  SaveRecord("ifi-10v.csu", setup, true);
}

/// What the demo's tests share: a sweep in 10 % steps, AM of 80 %, a short ramp.
TestDefinition DemoTest() {
  TestDefinition t;
  t.CalInfoFile = "cdn-10v.hyinfo";
  t.StartFreq = 0.15, t.StopFreq = 80;
  t.FreqSweep = true;
  t.StepType = StepType::Log, t.LinearStep = 5, t.LogStep = 10;
  t.SweepDwell = 0.5, t.DiscreteDwell = 1;
  t.ModType = Modulation::Am, t.AmDepth = 80, t.AmModFreq = 1;
  t.FmDev = 10, t.FmModFreq = 1;
  t.PulseWidth = 2.5, t.PulsePeriod = 5;
  t.InitLevOffset = -10, t.LevelInc = 3, t.InterDwell = 0.1F;
  t.EUTCircuitImpedance = 150;
  t.ModOffBetweenFreqs = true;
  return t;
}

void WriteTests() {
  TestDefinition t = DemoTest();
  SaveRecord("substitution-am.tst", t);

  t.LevelingMethod = LevelingMethod::ForwardPower;
  t.ConstPeak = true;
  SaveRecord("forward-power-constant-peak.tst", t);

  t = DemoTest();
  t.LevelingMethod = LevelingMethod::NetPower;
  t.ModType = Modulation::Fm;
  t.ModOffBetweenFreqs = false;
  SaveRecord("net-power-fm.tst", t);

  t = DemoTest();
  t.StartFreq = 5;
  t.ModType = Modulation::Pulse;
  t.MonitorProbe = t.LimitCurrent = true;
  t.LimitMargin = -6;
  SaveRecord("probe-limited-pulse.tst", t);

  t = DemoTest();
  t.StopFreq = 230;
  t.LogStep = 20;
  t.FreqList = true, t.ListFile = "radio-services.lst";
  t.ModType = Modulation::None;
  t.ModOffBetweenFreqs = false;
  SaveRecord("sweep-and-list.tst", t);

  t = DemoTest();
  t.CalInfoFile = "ifi-10v.hyinfo";
  t.StartFreq = 180, t.StopFreq = 230, t.StepType = StepType::Linear;
  SaveRecord("ifi-band-change.tst", t);
}

/// The bench's defaults, with the answers that the station's meters give.
BenchConfig StationBench() {
  BenchConfig bench;
  bench.MeterAnswer = "MKA {level} DBUV";
  bench.PowerMeterAnswer = "{channel}: {level} dBm";
  return bench;
}

void WriteBenchFiles(const BenchConfig& bench) {
  ReplaceFile("bench.txt", BenchFileText(bench));
  ReplaceFile(
      "bench-product.txt",
      JoinLines({"# The same bench with the product in place of the calibration adapter, the monitor probe on its",
                 "# cable and the meter at the probe. Everything else is as the defaults have it.", "",
                 "meter_at = probe", "meter.answer = " + bench.MeterAnswer,
                 "power_meter.answer = " + bench.PowerMeterAnswer}));
}

void WriteStation() {
  const BenchConfig bench = StationBench();
  WriteScpiGenerator();
  WriteOlderGenerator();
  WriteAnalyser();
  WritePowerMeter();
  WriteTables(bench);
  WriteEquipment();
  WriteCalibrationSetups();
  WriteTests();
  WriteBenchFiles(bench);
}

}  // namespace
}  // namespace hylden

int main() {
  try {
    hylden::WriteStation();
  } catch (const std::exception& error) {
    std::cerr << "hylden-make-station: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
