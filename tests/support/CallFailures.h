#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace hylden {

/// Which calls on a bus fail, and with which error code; a base of the buses that can fail.
class CallFailures {
 public:
  /// Fails the n-th call from now (1 is the next one); registrations don't count.
  void FailCall(int n, int error) { atCall_[calls_ + n] = error; }
  /// Throws at the n-th call from now, as when the driver's library breaks.
  void ThrowAtCall(int n) { throwAt_ = calls_ + n; }
  /// Fails the next call whose transcript line begins with this text ("> 18 RF", "FIND 13", "< 13").
  void FailLine(const std::string& beginning, int error) { atLine_.emplace_back(beginning, error); }
  /// From the n-th call on a device is dead: whatever is sent to it or asked of it times out.
  void Kill(int address, int n = 1) { dead_[address] = calls_ + n; }
  /// From the n-th call on every other send to a device times out.
  void LetStutter(int address, int n) { stuttering_[address] = {calls_ + n, false}; }
  /// From the n-th call on the bus hangs: every call that waits for a device times out.
  void KillBus(int n = 1) { deadBus_ = calls_ + n; }
  /// Fails every call from now on, as when the cable is pulled; nothing mends it.
  void FailAlways(int error) { always_ = error; }

  int Calls() const { return calls_; }
  /// Called at the beginning of every call that counts, with its number from the first one on.
  std::function<void(int call)> onCall;

 protected:
  /// Counts a call; its error when it is to fail.
  std::optional<int> FailureOf(const std::string& line);
  bool IsToDeadDevice(const std::string& line) const;
  bool IsStuttered(const std::string& line);
  bool IsOnDeadBus(const std::string& line) const;

 private:
  int calls_ = 0;
  int throwAt_ = 0;
  std::map<int, int> atCall_;
  std::vector<std::pair<std::string, int>> atLine_;
  std::map<int, int> dead_;  ///< by address: the first call that fails
  struct Stutter {
    int From;
    bool Last;  ///< the last send timed out
  };
  std::map<int, Stutter> stuttering_;  ///< by address
  std::optional<int> deadBus_;
  std::optional<int> always_;
};

}  // namespace hylden
