#include <CLI/CLI.hpp>
#include <cstdio>
#include <map>

#include "app/BenchServer.h"
#include "platform/native/StandardStreams.h"
#include "shell/Version.h"

namespace {

using hylden::ConnectionBreak;
using hylden::MeterAt;

enum class ExitState : int { Stopped = 0, Failed = 1, Usage = 2 };

const std::map<std::string, MeterAt> kPlaces = {
    {"port", MeterAt::Port}, {"probe", MeterAt::Probe}, {"generator", MeterAt::Generator}, {"cable", MeterAt::Cable}};
const std::map<std::string, ConnectionBreak::Kind> kBreaks = {{"close", ConnectionBreak::Kind::Close},
                                                              {"hang", ConnectionBreak::Kind::Hang},
                                                              {"garble", ConnectionBreak::Kind::Garble}};

/// @throws CLI::ValidationError
MeterAt PlaceOf(const std::string& text) {
  const auto place = kPlaces.find(text);
  if (place == kPlaces.end()) throw CLI::ValidationError("--meter-at", "port, probe, generator or cable");
  return place->second;
}

/// "close@12". @throws CLI::ValidationError
ConnectionBreak BreakOf(const std::string& text) {
  const std::size_t at = text.find('@');
  const auto kind = kBreaks.find(text.substr(0, at));
  ConnectionBreak result;
  if (kind == kBreaks.end() || at == text.npos || !CLI::detail::lexical_cast(text.substr(at + 1), result.Message) ||
      result.Message < 1)
    throw CLI::ValidationError("--break", "close, hang or garble, and at which message: close@12");
  result.What = kind->second;
  return result;
}

int Main(int argc, char** argv) {
  hylden::BenchServerOptions options;
  CLI::App app{
      "Serves the simulated bench with a station's instruments, in real time, on a socket for each instrument, and\n"
      "through a GPIB adapter (\"++\" commands) on a socket and on a pseudo-terminal. Prints the ways to it as\n"
      "Hylden.ini names them, then \"ready\"; Ctrl-C stops it.\n"
      "Exit status: 0 stopped, 1 failed, 2 usage."};
  app.set_version_flag("--version", hylden::VersionTitle());
  app.add_option("--equipment", options.EquipmentFile, "Equipment file of the station (.eqp)")->required();
  app.add_option("--bench", options.BenchFile, "Bench file: the RF path, the noise, and what goes wrong");
  app.add_option("--seed", options.Seed, "Seed of the reading noise")->type_name("N");
  app.add_option_function<std::string>(
         "--meter-at", [&options](const std::string& text) { options.Meter = PlaceOf(text); },
         "What the meter is connected to, in place of the bench file's meter_at")
      ->type_name("port|probe|generator|cable");
  app.add_option("--listen", options.Address, "Address to listen on (default 127.0.0.1: this computer only)")
      ->type_name("ADDRESS");
  app.add_option("--port", options.Port, "Port of the first socket, the others follow (default: ports that are free)")
      ->check(CLI::Range(1, 65535 - 31))
      ->type_name("N");
  app.add_option_function<std::string>(
         "--break", [&options](const std::string& text) { options.Break = BreakOf(text); },
         "Trouble with the connection: at the Nth message it closes, hangs, or garbles an answer")
      ->type_name("close|hang|garble@N");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : static_cast<int>(ExitState::Usage);
  }
  return static_cast<int>(hylden::ServeBench(options) ? ExitState::Stopped : ExitState::Failed);
}

}  // namespace

int main(int argc, char** argv) {
  hylden::KeepStandardStreams();
  try {
    return Main(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "hylden-bench: %s\n", error.what());
    return static_cast<int>(ExitState::Failed);
  }
}
