#include "app/BusChoice.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "bench/Bench.h"
#include "platform/AbsentGpib.h"
#include "platform/BusRouter.h"
#include "platform/Directories.h"
#include "platform/native/GpibAdapter.h"
#include "platform/native/NativeGpib.h"
#include "platform/native/PortMappedStream.h"
#include "platform/native/SocketInstrument.h"
#include "platform/native/StreamAddress.h"
#include "platform/native/ThreadedGpib.h"
#include "platform/native/Vxi11Instrument.h"
#include "shell/INISettings.h"
#include "text/Case.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

constexpr const char *kSection = "Gpib", *kDevices = "Devices";
constexpr double kMostBoards = 16;
constexpr int kHighestAddress = 30;

using Kind = BusWay::Kind;

/// Reads the ways of the settings, and collects what is wrong with them.
class WayReader {
 public:
  explicit WayReader(std::vector<std::string>& faults) : faults_(faults) {}

  BusWay Driver(INISettings& settings) {
    const std::string driver = settings.Get(kSection, "Driver", "native");
    if (SameIgnoringCase(driver, "native")) return {};
    if (SameIgnoringCase(driver, "bench")) return {Kind::Bench};
    if (!SameIgnoringCase(driver, "adapter"))
      return Fault(kSection, "Driver", driver, "the drivers are native, bench and adapter.");
    const std::string place = settings.Get(kSection, "Adapter", "");
    const ParsedStream adapter = ParseStream(place);
    if (!adapter.Stream) return Fault(kSection, "Adapter", place, adapter.Fault);
    return Own("Driver", driver, {Kind::Adapter, place});
  }

  void Device(const std::string& key, const std::string& value, std::map<int, BusWay>& devices) {
    int address = -1;
    const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), address);
    if (error != std::errc() || end != key.data() + key.size() || address < 0 || address > kHighestAddress) {
      Fault(kDevices, key, value, "an address is a number from 0 to 30.");
    } else if (devices.contains(address)) {
      devices[address] = Fault(kDevices, key, value, "the address is there twice.");
    } else {
      devices[address] = DeviceWay(key, value);
    }
  }

 private:
  BusWay DeviceWay(const std::string& key, const std::string& value) {
    constexpr std::string_view kSocket = "socket:", kVxi11 = "vxi11:";
    if (SameIgnoringCase(value, "bench")) return {Kind::Bench};
    if (value.starts_with(kVxi11)) return Vxi11Way(key, value, value.substr(kVxi11.size()));
    if (!value.starts_with(kSocket))
      return Fault(kDevices, key, value, "a device is socket:HOST:PORT, vxi11:HOST, vxi11:HOST,NAME or bench.");
    const auto place = ParseHostPort(std::string_view(value).substr(kSocket.size()), 0);
    if (!place || place->Port == 0)
      return Fault(kDevices, key, value,
                   "a socket is socket:HOST:PORT, with an IPv6 address in brackets and a port from 1 to 65535.");
    const bool isBracketed = place->Host.find(':') != std::string::npos;
    return Own(key, value,
               {Kind::Socket,
                "tcp:" + (isBracketed ? "[" + place->Host + "]" : place->Host) + ":" + std::to_string(place->Port)});
  }

  BusWay Vxi11Way(const std::string& key, const std::string& value, const std::string& place) {
    const std::string_view host = Trim(std::string_view(place).substr(0, place.find(',')));
    const std::string_view name =
        place.find(',') == std::string::npos ? "inst0" : Trim(std::string_view(place).substr(place.find(',') + 1));
    if (host.empty() || name.empty() || host.find_first_of(" ,") != std::string_view::npos)
      return Fault(kDevices, key, value, "it is vxi11:HOST or vxi11:HOST,NAME.");
    return Own(key, value, {Kind::Vxi11, std::string(host) + "," + std::string(name)});
  }

  /// Two addresses on one connection would be one instrument.
  BusWay Own(const std::string& key, const std::string& value, BusWay way) {
    if (taken_.insert(LowerCase(way.Place)).second) return way;
    return Fault(kDevices, key, value, "another address has this connection.");
  }

  BusWay Fault(const char* section, const std::string& key, const std::string& value, const std::string& why) {
    faults_.push_back("Hylden.ini, section " + std::string(section) + ", " + key + "=" + value + ": " + why);
    return {Kind::Absent, faults_.back()};
  }

  std::vector<std::string>& faults_;
  std::set<std::string> taken_;
};

/// "addresses 13, 18", of the devices of some kinds; empty without any.
template <class Is>
std::string Addresses(const std::map<int, BusWay>& devices, Is is) {
  std::string list;
  int count = 0;
  for (const auto& [address, way] : devices)
    if (is(way.Is)) list += (count++ ? ", " : " ") + std::to_string(address);
  return count == 0 ? std::string() : (count == 1 ? "address" : "addresses") + list;
}

}  // namespace

bool BusChoice::UsesBench() const {
  return Others.Is == Kind::Bench || std::any_of(Devices.begin(), Devices.end(),
                                                 [](const auto& device) { return device.second.Is == Kind::Bench; });
}

std::string BusChoice::BenchNotice() const {
  if (!UsesBench()) return {};
  if (Others.Is != Kind::Bench)
    return "SIMULATED BENCH: " + Addresses(Devices, [](Kind kind) { return kind == Kind::Bench; }) +
           " only; all other instruments are driven";
  const std::string driven = Addresses(Devices, [](Kind kind) { return kind != Kind::Bench && kind != Kind::Absent; });
  return driven.empty() ? kSimulatedBenchText
                        : "SIMULATED BENCH: all but " + driven + ", where an instrument is driven";
}

std::string BusChoice::FaultText() const {
  std::string text;
  for (const std::string& fault : Faults) text += fault + "\r\n";
  return text.empty() ? text : text + "What is reached by it can't be used until that is put right.";
}

BusChoice ChosenBus(INISettings& settings) {
  BusChoice choice{
      .BenchFile = settings.Get(kSection, "Bench", ""),
      .Library = settings.Get(kSection, "Library", ""),
      .Board = static_cast<int>(std::clamp(LeadingNumber(settings.Get(kSection, "Board", "0")), 0.0, kMostBoards - 1))};
  WayReader reader(choice.Faults);
  choice.Others = reader.Driver(settings);
  for (const auto& [key, value] : settings.GetAll(kDevices)) reader.Device(key, value, choice.Devices);
  return choice;
}

std::string BenchPath(const std::string& file, const Directories& directories) {
  const std::filesystem::path common = std::filesystem::path(directories.Common) / file;
  const std::filesystem::path own = std::filesystem::path(directories.Program) / file;
  std::error_code ignored;
  const bool useCommon =
      !directories.Common.empty() && !std::filesystem::exists(own, ignored) && std::filesystem::exists(common, ignored);
  return useCommon ? common.string() : own.string();
}

Bus::Bus(const BusChoice& choice, EventLoop& events, const Clock& clock, const BenchConfig& bench)
    : choice_(choice), events_(events) {
  if (choice.UsesBench()) bench_ = std::make_unique<Bench>(clock, bench);
  GpibDriver& others = Open(choice.Others);
  std::map<int, GpibDriver*> ways;
  for (const auto& [address, way] : choice.Devices) ways[address] = &Open(way);
  driver_ = &others;
  if (ways.empty()) return;
  drivers_.push_back(std::make_unique<BusRouter>(others, std::move(ways)));
  driver_ = drivers_.back().get();
}

Bus::~Bus() = default;

GpibDriver& Bus::Open(const BusWay& way) {
  const auto keep = [this](std::unique_ptr<GpibDriver> driver) -> GpibDriver& {
    drivers_.push_back(std::move(driver));
    return *drivers_.back();
  };
  const auto keepThreaded = [&](std::unique_ptr<GpibDriver> driver) -> GpibDriver& {
    return keep(std::make_unique<ThreadedGpib>(std::move(driver), events_));
  };
  switch (way.Is) {
    case Kind::Bench:
      return bench_->Driver();
    case Kind::Adapter:
      return keepThreaded(std::make_unique<GpibAdapter>(ParseStream(way.Place).Stream));
    case Kind::Socket:
      return keepThreaded(std::make_unique<SocketInstrument>(ParseStream(way.Place).Stream));
    case Kind::Vxi11: {
      const std::size_t comma = way.Place.find(',');
      return keepThreaded(std::make_unique<Vxi11Instrument>(
          std::make_unique<PortMappedStream>(way.Place.substr(0, comma), Vxi11Instrument::kProgram,
                                             Vxi11Instrument::kVersion),
          way.Place.substr(comma + 1)));
    }
    case Kind::Absent:
      return keep(std::make_unique<AbsentGpib>(way.Place));
    case Kind::Native:  // no default: a way that is forgotten here would drive another one's instruments
      break;
  }
  return keepThreaded(std::make_unique<NativeGpib>(OpenGpibLibrary(choice_.Library), choice_.Board));
}

}  // namespace hylden
