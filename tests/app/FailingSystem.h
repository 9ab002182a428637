#pragma once

#include <string>

namespace hylden {

/// Has one call of the system fail, it and all that follow, as when a share is gone, or be the last of this process:
/// fopen, fwrite (after half of its bytes), fflush, fsync, fclose or rename, counted from the moment when it is armed.
/// This program's own definitions of them stand in front of the system's.
struct FailingSystem {
  enum class How { Fail, Vanish, Kill };
  /// @param call  which one, from 1
  static void Arm(int call, How kind);
  /// @return whether the call came
  static bool Disarm();
  /// What has been synced and renamed since the last look, in order: "sync rename folder ", the folder synced last.
  static std::string Took();
};

}  // namespace hylden
