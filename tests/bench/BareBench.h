#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "bench/Bench.h"
#include "platform/VirtualTime.h"

namespace hylden {

/// A generator, an analyser and a two-channel power meter in short commands, as few as the tests need.
inline BenchEquipment SmallStation() {
  SigGenDefinition g;
  g.InstrumentName = "Source";
  g.FreqSetPrefix = "FR", g.FreqSetSuffix = "MZ", g.LevSetPrefix = "AP", g.LevSetSuffix = "DM";
  g.RfOff = "R0", g.RfOn = "R1", g.ModulationOff = "M0";
  g.AmDepthPrefix = "AM", g.AmDepthSuffix = "PC", g.AmFreqPrefix = "AF", g.AmFreqSuffix = "KZ", g.AmModOn = "M1";
  g.FmDevPrefix = "FM", g.FmDevSuffix = "KZ", g.FmModOn = "M2";
  g.PulseFreqPrefix = "PF", g.PulseFreqSuffix = "KZ", g.PulseWidthPrefix = "PW", g.PulseWidthSuffix = "MS";
  g.PulseModOn = "M3";
  g.MaximumLevel = 13, g.MinimumLevel = -140, g.MaximumFreq = 1000, g.MinimumFreq = 0.1;
  MeterDefinition m;
  m.InstrumentName = "Analyser";
  m.FreqSetPrefix = "CF", m.FreqSetSuffix = "MZ", m.LevSetPrefix = "RL", m.LevSetSuffix = "DB";
  m.Read = "MK", m.Trigger = "TS";
  m.Units = 1, m.MaximumLevel = 130, m.SettlingTime = 0.5F;
  PowerMeterDefinition p;
  p.InstrumentName = "Two heads";
  p.SelectCh1 = "CA", p.SelectCh2 = "CB", p.Ch1Read = "RA", p.Ch2Read = "RB", p.Ch1Trigger = "TA", p.Ch2Trigger = "TB";
  p.Units = 1, p.SettlingTime = 0.1F;
  BenchEquipment e;
  e.SigGen = g, e.SigGenAddress = 18;
  e.Meter = m, e.MeterAddress = 13;
  e.PowerMeter = p, e.PowerMeterAddress = 14;
  return e;
}

inline BenchConfig Noiseless() {
  BenchConfig config;
  config.NoiseDb = 0;
  return config;
}

/// The bench alone, without a program: the test has its hands on the bus.
struct BareBench {
  explicit BareBench(const BenchEquipment& equipment = SmallStation(), const BenchConfig& config = Noiseless())
      : bench(clock, config) {
    bench.Driver().RegisterGpibGlobalsForThread(cells);
    bench.Equip(equipment);
  }

  bool Ok() const { return (cells.status & gpib::kErr) == 0; }
  bool Send(int address, std::string_view bytes) {
    bench.Driver().Send(0, address, bytes, gpib::kDabEnd);
    return Ok();
  }
  /// What a read gives; empty after a failure.
  std::string Read(int address, int termination = gpib::kStopEnd, std::size_t size = 64) {
    std::vector<char> buffer(size);
    bench.Driver().Receive(0, address, buffer, termination);
    return Ok() ? std::string(buffer.data(), static_cast<std::size_t>(cells.longCount)) : "";
  }
  /// RF on at a frequency and level, settled.
  void Drive(double freqMHz, double levelDbm) {
    Send(18, "FR" + std::to_string(freqMHz) + "MZ");
    Send(18, "AP" + std::to_string(levelDbm) + "DM");
    Send(18, "R1");
    clock.Advance(50);
  }
  /// A triggered reading of the meter, in its units.
  double MeterReading() {
    Send(13, "TS");
    clock.Advance(500);
    Send(13, "MK");
    return std::stod(Read(13));
  }
  double PowerReading(char channel) {
    Send(14, std::string("T") + channel);
    clock.Advance(100);
    Send(14, std::string("R") + channel);
    return std::stod(Read(14));
  }

  VirtualClock clock;
  Bench bench;
  GpibStatusCells cells;
};

}  // namespace hylden
