#pragma once

#include <cstdint>

namespace hylden {

/// Who on the bench misbehaves. Bus stands for whoever a call goes to.
enum class BenchRole : int { Bus, SigGen, Meter, PowerMeter, IfiLow, IfiHigh };
/// Their names in a bench file, in that order.
inline constexpr const char* kBenchRoles[] = {"bus", "generator", "meter", "power_meter", "ifi_low", "ifi_high"};

/// How.
enum class FaultKind : int {
  Fail,        ///< the call ends with an aborted operation at the time limit; nothing gets through
  Late,        ///< the answer is ready only after a while; a call whose time limit ends before that times out, and the
               ///< answer waits for the next one
  Garbage,     ///< the answer holds no number
  Silent,      ///< the answer never comes
  Absent,      ///< from this call on nobody listens at the address
  Protection,  ///< from this call on the amplifier is in protection
};

/// One misbehaviour to come.
struct BenchFault {
  FaultKind Kind = FaultKind::Fail;
  BenchRole Who = BenchRole::Bus;
  /// Which one from now on, 1 being the next: the next answer for Late, Garbage and Silent, the next call for the
  /// others (a send or a receive; for Bus, interface clear, finding and remote control too).
  int Call = 1;
  /// Delay of a late answer.
  std::int64_t LateMs = 0;
};

}  // namespace hylden
