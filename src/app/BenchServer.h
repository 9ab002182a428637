#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "bench/BenchConfig.h"
#include "bench/ServedBus.h"

namespace hylden {

/// What hylden-bench was asked for.
struct BenchServerOptions {
  std::string EquipmentFile;
  std::string BenchFile;                  ///< empty: the bench's ordinary values
  std::optional<std::int32_t> Seed = {};  ///< of the reading noise
  std::optional<MeterAt> Meter = {};      ///< in place of the bench file's
  std::string Address = "127.0.0.1";      ///< where clients are let in
  int Port = 0;                           ///< of the first socket; 0: ports that are free
  std::optional<ConnectionBreak> Break = {};
};

/// Serves the simulated bench with a station's instruments, in real time, until the program is asked to stop. The ways
/// to it are printed, a line each, as Hylden.ini names them, and "ready" behind them.
/// @return false after a message: what is needed for it was not there
/// @throws std::exception  where the system has no socket for it
bool ServeBench(const BenchServerOptions& options);

}  // namespace hylden
