#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/BenchConfig.h"

namespace hylden {

class Bench;
class Clock;
class EventLoop;
class GpibDriver;
struct Directories;
class INISettings;

/// What is said of everything that runs on the simulated bench alone.
inline constexpr const char* kSimulatedBenchText = "SIMULATED BENCH: no instrument is driven";

/// How instruments are reached.
struct BusWay {
  enum class Kind {
    Native,   ///< by the machine's GPIB library
    Bench,    ///< they are simulated
    Adapter,  ///< by a GPIB adapter behind the stream `Place`
    Socket,   ///< one instrument, by the stream `Place`
    Vxi11,    ///< one instrument: `Place` is "HOST,NAME"
    Absent,   ///< not at all: `Place` says why
  };
  Kind Is = Kind::Native;
  std::string Place = {};
};

/// Which bus the program drives: a way of their own for some addresses, and the one of all others.
struct BusChoice {
  BusWay Others = {};
  std::map<int, BusWay> Devices = {};
  std::string BenchFile = {};  ///< empty: the bench with its ordinary values
  std::string Library = {};    ///< of the machine's own bus, by name or path; empty: the first that is installed
  int Board = 0;               ///< of the machine's own bus
  std::vector<std::string> Faults = {};  ///< what of the settings can't be understood, and why

  /// Whether any address is simulated.
  bool UsesBench() const;
  /// What windows and run log say of the simulated bench; empty without one.
  std::string BenchNotice() const;
  /// What there is to tell of faults in the settings; empty without any.
  std::string FaultText() const;
};

/// The choice of the settings file: section Gpib, keys Driver, Adapter, Bench, Library and Board; section Devices, keys
/// 0 to 30. What can't be understood there leads nowhere: never another way than the one that was meant.
BusChoice ChosenBus(INISettings& settings);

/// The file of the bench that the settings name: a relative path starts at the program directory, or beside the
/// settings of all users.
std::string BenchPath(const std::string& file, const Directories& directories);

/// The bus as chosen. What may hang has a thread of its own: the machine's library, and each connection.
class Bus {
 public:
  /// @param events  gets a turn while a bus call takes long
  /// @param bench   what the simulated bench is like, if it is chosen. Clock and events must outlive the bus.
  Bus(const BusChoice& choice, EventLoop& events, const Clock& clock, const BenchConfig& bench = {});
  ~Bus();
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;

  GpibDriver& Driver() { return *driver_; }
  /// The bench; null where nothing is simulated.
  Bench* SimulatedBench() { return bench_.get(); }

 private:
  GpibDriver& Open(const BusWay& way);

  const BusChoice choice_;
  EventLoop& events_;
  std::unique_ptr<Bench> bench_;
  std::vector<std::unique_ptr<GpibDriver>> drivers_;
  GpibDriver* driver_ = nullptr;
};

}  // namespace hylden
