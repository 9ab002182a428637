#pragma once

#include <memory>
#include <string>

#include "bench/BenchConfig.h"

namespace hylden {

class Bench;
class Clock;
class GpibDriver;
class INISettings;

/// What is said of everything that runs on the simulated bench.
inline constexpr const char* kSimulatedBenchText = "SIMULATED BENCH: no instrument is driven";

/// Which bus the program drives.
struct BusChoice {
  bool UseBench = false;
  std::string BenchFile;  ///< empty: the bench with its ordinary values
  std::string Library;    ///< of the machine's own bus, by name or path; empty: the first that is installed
  int Board = 0;          ///< of the machine's own bus
};

/// The choice of the settings file: section Gpib, keys Driver ("native" or "bench"), Bench, Library and Board.
BusChoice ChosenBus(INISettings& settings);

/// The bus as chosen: the machine's own, or the simulated bench.
class Bus {
 public:
  /// The machine's own bus.
  explicit Bus(const BusChoice& choice);
  /// The simulated bench. The clock must outlive it.
  Bus(const Clock& clock, const BenchConfig& config);
  ~Bus();

  GpibDriver& Driver();
  /// The bench; null when the machine's own bus is driven.
  Bench* SimulatedBench() { return bench_.get(); }

 private:
  std::unique_ptr<GpibDriver> native_;
  std::unique_ptr<Bench> bench_;
};

}  // namespace hylden
