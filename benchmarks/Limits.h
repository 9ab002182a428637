#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <string>

namespace hylden {

/// The benchmark's time per iteration must stay within the limit. scripts/benchmark.sh checks it.
inline void LimitTime(benchmark::State& state, std::chrono::duration<double, std::nano> limit) {
  state.counters["time_limit_ns"] = limit.count();
}

/// A figure of another kind, its unit in its name, and the limit that it must stay within.
inline void LimitFigure(benchmark::State& state, const std::string& name, double value, double limit) {
  state.counters[name] = value;
  state.counters[name + "_limit"] = limit;
}

}  // namespace hylden
