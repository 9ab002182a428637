#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace hylden {

/// What hylden-run was asked for.
struct RunOptions {
  std::string EquipmentFile, TestFile, OutputFile;
  bool UseBench = false;
  std::string BenchFile;  ///< empty: the bench's ordinary values
  bool VirtualTime = false;
  bool Yes = false;
  std::optional<std::int32_t> Seed = {};  ///< of the bench's reading noise
};

/// The program's exit status.
enum class ExitState : int { Finished = 0, Failed = 1, Usage = 2, Halted = 3 };

/// Runs a test from its files to saved run data, on a terminal or without one.
ExitState RunOnConsole(const RunOptions& options);

}  // namespace hylden
