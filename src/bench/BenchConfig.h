#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "bench/BenchFault.h"
#include "bench/FrequencyTable.h"

namespace hylden {

/// What the meter is connected to. At the calibration port the coupling device is closed by its adapter, everywhere
/// else by the product; straight at the generator, or behind the cable under test, the amplifier gets no drive.
enum class MeterAt : int { Port, Probe, Generator, Cable };

/// What a meter makes of a modulated signal: the carrier without its modulation, the peak of the envelope, or the
/// average power. ByType: carrier for an analyser, peak for an oscilloscope, average for an RF voltmeter.
enum class Detector : int { ByType, Carrier, Peak, Average };

/// Everything about the bench that is not in the station's own files: the RF path over frequency, noise, settling and
/// misbehaviour. The defaults make a plausible 20 W station with a coupling device for 10 V. Losses and factors are
/// positive dB.
struct BenchConfig {
  double NoiseDb = 0.05;
  std::int32_t Seed = 1;
  MeterAt Meter = MeterAt::Port;
  double GeneratorSettlingMs = 20;

  double SaturationDbm = 43;
  bool Protection = false;
  double IfiLowSaturationDbm = 44, IfiHighSaturationDbm = 43;
  double IfiLeakageDb = 50;

  double CouplerLossDb = 0.2;
  double DirectivityDb = 25;
  double PadDb = 6;
  double CouplingFactorDb = 15.5;
  double SourceOhm = 150;

  std::string MeterAnswer;
  hylden::Detector Detector = hylden::Detector::ByType;
  double MeterFloorDbuv = 0;
  double MeterRangeDb = 80;
  double MeterBandwidthKHz = 10;
  double MeterCaptureMs = -1;
  std::string PowerMeterAnswer;
  double PowerMeterFloorDbm = -75;
  double PowerMeterCaptureMs = -1;

  FrequencyTable DriveCable, AmplifierGain, IfiLowGain, IfiHighGain;
  FrequencyTable ForwardCoupling, ReverseCoupling, CouplingLoss;
  FrequencyTable Cable, CableUnderTest, Probe;
  FrequencyTable ProductOhm, Susceptibility;

  std::vector<BenchFault> Faults;

  BenchConfig();
};

/// The outcome of reading a bench file.
struct BenchFile {
  BenchConfig Config;
  /// What is wrong, with the number of the line; empty when nothing is.
  std::string Error;
  bool Ok() const { return Error.empty(); }
};

/// A bench file's text over the defaults; see docs/formats/bench.md.
BenchFile ParseBenchFile(std::string_view text);
/// The file's configuration; a file that can't be read is an error too.
BenchFile LoadBenchFile(const std::string& path);
/// The whole configuration as a commented bench file, lines ended by CR LF.
std::string BenchFileText(BenchConfig config);

}  // namespace hylden
