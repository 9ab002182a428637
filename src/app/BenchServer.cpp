#include "app/BenchServer.h"

#include <unistd.h>

#include <iostream>
#include <memory>

#include "app/BusChoice.h"
#include "app/Station.h"
#include "bench/Bench.h"
#include "bench/ServedAdapter.h"
#include "bench/ServedInstrument.h"
#include "platform/console/ConsoleClock.h"
#include "platform/console/ConsoleDialogs.h"
#include "platform/console/ConsoleEventLoop.h"
#include "platform/console/ConsolePrinter.h"
#include "platform/console/ConsoleSpeaker.h"
#include "platform/native/ProgramDirectory.h"
#include "platform/native/StreamServer.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

constexpr int kAddresses = 31;

/// The bench with the station's instruments on it; what goes wrong is told on standard error.
class ServedStation {
 public:
  explicit ServedStation(const BenchConfig& config) : bench_(clock_, config) {}

  bool Load(const std::string& equipmentFile) { return station_.LoadEquipment(equipmentFile) && station_.Apply(); }
  Bench& TheBench() { return bench_; }
  const Clock& TheClock() const { return clock_; }
  /// Readable when the program is asked to stop.
  int StopDescriptor() const { return events_.Descriptor(); }

 private:
  ConsoleClock clock_;
  ConsoleEventLoop events_{clock_, {}};
  ConsoleDialogs dialogs_{STDIN_FILENO, std::cerr, events_, {}};
  ConsoleSpeaker speaker_;
  ConsolePrinter printer_{std::cerr};
  Bench bench_;
  Shell shell_{Platform{dialogs_, clock_, events_, speaker_, printer_, bench_.Driver()}, ProgramDirectories()};
  Station station_{shell_, &bench_};
};

/// Opens the ways to the bench, and prints them. The server's clients outlive it.
class Ways {
 public:
  Ways(StreamServer& server, ServedBus& bus, const BenchServerOptions& options)
      : server_(server), bus_(bus), address_(options.Address), port_(options.Port) {}

  void Open() {
    for (int address = 0; address < kAddresses; ++address)
      if (bus_.Bus().Listens(address)) OpenInstrument(address);
    std::cout << "Adapter=tcp:" << Listen([&bus = bus_] { return std::make_unique<ServedAdapter>(bus); }) << '\n';
    OpenTerminal();
    std::cout << "ready\n" << std::flush;
  }

 private:
  void OpenInstrument(int address) {
    const std::string place =
        Listen([&bus = bus_, address] { return std::make_unique<ServedInstrument>(bus, address); });
    std::cout << address << "=socket:" << place << '\n';
  }

  std::string Listen(StreamServer::MakeSession make) {
    const StreamServer::Place place = server_.Listen(address_, port_, std::move(make));
    if (port_ > 0) ++port_;
    if (!place.Loopback && !warned_) {
      std::cerr << "hylden-bench: everybody who reaches this computer can use the bench\n";
      warned_ = true;
    }
    const bool colons = place.Host.find(':') != std::string::npos;
    return (colons ? '[' + place.Host + ']' : place.Host) + ':' + std::to_string(place.Port);
  }

  void OpenTerminal() {
    try {
      const std::string device = server_.OpenTerminal([&bus = bus_] { return std::make_unique<ServedAdapter>(bus); });
      std::cout << "Adapter=serial:" << device << '\n';
    } catch (const std::runtime_error& error) {
      std::cerr << "hylden-bench: " << error.what() << '\n';
    }
  }

  StreamServer& server_;
  ServedBus& bus_;
  const std::string& address_;
  int port_;
  bool warned_ = false;
};

std::string RfText(const GeneratorState& generator) {
  if (!generator.RfOn) return "RF is off";
  return "RF is ON, " + ShortestText(generator.FreqMHz) + " MHz at " + ShortestText(generator.LevelDbm) + " dBm";
}

std::optional<BenchConfig> ConfigOf(const BenchServerOptions& options) {
  BenchConfig config;
  if (!options.BenchFile.empty()) {
    BenchFile file = LoadBenchFile(options.BenchFile);
    if (!file.Ok()) {
      std::cerr << file.Error << '\n';
      return std::nullopt;
    }
    config = std::move(file.Config);
  }
  if (options.Seed) config.Seed = *options.Seed;
  if (options.Meter) config.Meter = *options.Meter;
  return config;
}

}  // namespace

bool ServeBench(const BenchServerOptions& options) {
  const auto config = ConfigOf(options);
  if (!config) return false;
  ServedStation station(*config);
  if (!station.Load(options.EquipmentFile)) return false;
  Bench& bench = station.TheBench();
  ServedBus bus(bench.Bus(), station.TheClock());
  if (options.Break) bus.Break(*options.Break);
  StreamServer server;
  std::cerr << kSimulatedBenchText << '\n';
  Ways(server, bus, options).Open();
  server.Run(station.StopDescriptor());
  std::cout << "stopped: " << RfText(bench.State().Generator) << '\n' << std::flush;
  return true;
}

}  // namespace hylden
