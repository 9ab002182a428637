#pragma once

#include <array>
#include <optional>
#include <string>

#include "bench/Bench.h"

namespace hylden {

/// Who stands at an address of the virtual bus.
struct InstrumentReadout {
  bool Present = false;   ///< the station has one
  bool Listens = false;   ///< and it answers at its address
  std::string Name = {};  ///< of its definition
  int Address = 0;
};

/// A value that an instrument answered, in the units of its definition.
struct BenchReading {
  double Value = 0;
  std::string Unit = {};
  bool Linear = false;  ///< volts or watts, not decibels
};

enum class ProductState : int {
  NotConnected,  ///< the adapter closes the coupling device in its place
  WithoutRf,     ///< nothing is applied, RF being off or the amplifier without drive
  Passes,
  Disturbed,
};

/// What the product is exposed to. Levels are kNoValue without RF.
struct ProductReadout {
  ProductState State = ProductState::WithoutRf;
  double TestLevelDbuv = kNoValue, PeakTestLevelDbuv = kNoValue;  ///< carrier, and peak of its modulation
  double InducedDbua = kNoValue;                                  ///< carrier
  double ForwardDbm = kNoValue, ReverseDbm = kNoValue;            ///< average, at the directional coupler
  /// Peak test level that disturbs the product at the present frequency; kNoValue without a product or a frequency.
  double ThresholdDbuv = kNoValue;
  /// How far the peak test level is below the threshold (negative: above), dB.
  std::optional<double> MarginDb = std::nullopt;
  std::optional<Bench::Disturbance> LastDisturbance = std::nullopt;
};

/// Everything on the simulated bench that an operator would read from the instruments' front panels, at one moment.
struct BenchReadout {
  InstrumentReadout Generator;
  GeneratorState Output;

  InstrumentReadout Meter;
  bool MeterTunable = false;
  double MeterTunedMHz = 0;  ///< 0 as long as nobody tuned it
  std::optional<double> MeterRangeTopDbuv;
  std::optional<BenchReading> MeterReading;

  InstrumentReadout PowerMeter;
  PowerSensors Sensors = PowerSensors::ForwardReverse;
  std::array<std::optional<BenchReading>, 2> PowerReadings;  ///< channels 1 and 2

  InstrumentReadout IfiLow, IfiHigh;  ///< absent: the amplifier is one that is not on the bus
  hylden::Amplifier Amplifier = hylden::Amplifier::Generic;
  bool Protection = false;

  ProductReadout Product;
  MeterAt Cabling = MeterAt::Port;
};

BenchReadout ReadBench(const Bench& bench);

}  // namespace hylden
