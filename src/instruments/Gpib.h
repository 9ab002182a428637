#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/GpibDriver.h"
#include "shell/Failure.h"
#include "shell/ProgramEnd.h"

namespace hylden {

class Shell;

/// What an End of String code (0 none, 1 cr, 2 cr/lf) means on the bus; other codes leave the present one unchanged.
struct Terminator {
  std::string Text;                      ///< appended to every command
  int ReadTermination = gpib::kStopEnd;  ///< Receive argument
  void Derive(std::int32_t endOfString);
  /// A message that is nothing but an end; an instrument without a terminator takes a line feed for one.
  std::string Bare() const { return Text.empty() ? "\n" : Text; }
};

/// The only place that talks to the bus driver: board 0, primary addresses, no retries. Commands are UTF-8 in memory
/// and 8-bit characters on the bus.
class Gpib {
 public:
  explicit Gpib(Shell& shell);
  /// Leaves no device in remote.
  ~Gpib();
  Gpib(const Gpib&) = delete;
  Gpib& operator=(const Gpib&) = delete;

  /// Whether the bus has a byte for each character of a text; a command's other characters would go out as "?".
  static bool Carries(std::string_view utf8);

  /// Clears the interface once per program run, again after the board was lost, and sets the board's time limit: a
  /// driver may come without one. Bus work starts here: whatever timed out before is waited for in full again.
  Done GpibIfc();
  /// Clears the interface in any case.
  Done ClearInterface();
  /// Those of these addresses at which somebody listens; the board's own may be among them.
  Result<std::vector<int>> Listeners(const std::vector<int>& among);
  /// Finds the device, puts it in remote with lockout, sends the init command (terminator already appended, may be
  /// empty) and waits 2 s. Failures give the name. Where the board can't tell who listens, the device is found by the
  /// first command that it takes.
  /// @param bare  stands for that command where there is no init command: a message that is nothing but an end
  Done GpibOpen(int address, const std::string& initCommand, const std::string& name, const std::string& bare = "\n");
  /// The board, or the adapter that stands for it, has shown that it can't tell who listens.
  bool LacksLineStatus() const { return lacksLineStatus_; }
  /// Back to local.
  Done GpibClose(int address, const std::string& name);
  /// A device that gets commands without being opened: they put it in remote, too, once another one is.
  void Adopt(int address, const std::string& name) { devices_[address].Name = name; }
  /// Back to local, whatever was put in remote and is not local yet; each is tried, whatever the others do.
  Done CloseAll();
  /// Sends with EOI on the last byte; false when the status has ERR.
  bool Send(int address, const std::string& command);
  /// The same. @param failure  the first line of why not
  Done Send(int address, const std::string& command, const std::string& failure);
  /// Whether the last command for the device did not get through: it may hold the beginning of it, and take the next
  /// one onto that.
  bool LastSendFailed(int address) const;
  /// Receives at most `size` bytes and reads the rest of a longer answer away; false when the status has ERR.
  bool Receive(int address, std::string& answer, int termination, std::size_t size = 64);
  /// Reads away whatever a device still has to say, with a 30 ms limit.
  void Drain(int address);
  /// How the last driver call ended.
  GpibStatusCells Status() const { return {ibsta, iberr, ibcnt, ibcntl}; }
  /// The failure of the last driver call: the message, and the decoded status.
  Failure GpibError(const std::string& message) const;

  std::string IbstaText() const;
  std::string IberrText() const;
  std::string IbcntText() const;

  // Status words of the last driver call.
  std::int16_t ibsta = 0, iberr = 0, ibcnt = 0;
  std::int32_t ibcntl = 0;

 private:
  void RegisterOnce();
  /// @return whether the board can't tell whether anybody listens there
  Result<bool> Find(int address, const std::string& name);
  void Refresh();
  /// How a device has behaved since bus work started.
  struct Device {
    int SendTimeOuts = 0;  ///< until it answers: one that takes a command now and then hangs all the same
    int ReadTimeOuts = 0;  ///< in a row
    bool LastSendFailed = false;
    std::string Name = {};  ///< under which it was put in remote
    bool Remote = false;
  };

  /// Does a call to a device. Where it, or the bus, has timed out it is waited for less and less: RF off is tried again
  /// and again, and the windows must not freeze for minutes.
  template <class Call>
  void Impatiently(int address, int Device::*timeOuts, Call call);
  void SetTimeLimit(int code);
  void DiscardRest(int address, int termination);
  /// Reads one message to its end. @return whether there was one
  bool ReadAway(int address, int termination);
  bool Failed() const { return (ibsta & gpib::kErr) != 0; }

  Shell& shell_;
  GpibStatusCells cells_;
  std::map<int, Device> devices_;  ///< by address
  int busTimeOuts_ = 0;            ///< of calls to any device in a row
  bool registered_ = false;
  bool interfaceCleared_ = false;
  bool lacksLineStatus_ = false;
};

}  // namespace hylden
