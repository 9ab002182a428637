#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "shell/Failure.h"
#include "shell/RunAtWork.h"

namespace hylden {

class Shell;
struct Instruments;

/// What ends a command that is sent by hand; an answer is read to its last character, too.
enum class LineEnd { None, Cr, Lf, CrLf };

/// The one that an End of String code of a definition means.
LineEnd LineEndOf(std::int32_t endOfString);

/// A device of the station, by its address on the bus.
struct BusUnit {
  int Address = 0;
  std::string Name;
  LineEnd Ends = LineEnd::None;  ///< its commands
};

/// The bus by hand: what stands there and how it is reached, commands to single addresses, and the lines of the trace.
/// A command's outcome is a line to show. From the first command on it has the instruments, until it ends or a run, or
/// an editor, wants them; it ends with RF off and the devices local. A command to the generator's address may have
/// switched RF on, and whatever fails then switches it off.
class BusPanel : public RunAtWork {
 public:
  using Outcome = Result<std::string>;

  BusPanel(Shell& shell, Instruments& instruments) : shell_(shell), instruments_(instruments) {}
  BusPanel(const BusPanel&) = delete;
  BusPanel& operator=(const BusPanel&) = delete;
  /// Ends without a word.
  ~BusPanel() override;

  struct Row {
    BusUnit Unit;
    std::string Way, Status;
  };
  /// The units with their ways, and how their last calls ended.
  std::vector<Row> Rows(const std::vector<BusUnit>& units);

  /// Why nothing can be sent now: somebody else has the instruments. Empty: it can.
  std::string Obstacle() const;
  Outcome Send(int address, const std::string& command, LineEnd end);
  /// What the device says, as its bytes.
  Outcome Read(int address, LineEnd end);
  /// Sends, and reads the answer.
  Outcome Ask(int address, const std::string& command, LineEnd end);
  Outcome ClearInterface();
  Outcome FindListeners();
  Outcome Local(int address);
  Outcome EndRf();
  /// It has sent the generator something, and RF may be on since.
  bool RfMayBeOn() const;

  /// RF off, the devices local, the instruments free; tells when RF could not be switched off.
  void End();

  /// The trace from this event on, as lines.
  std::vector<std::string> Lines(std::uint64_t from) const;
  Done SaveLines(std::uint64_t from, const std::string& path) const;

  void RfOff() override;
  const char* Name() const override { return "The bus window"; }
  bool GivesWayTo(const RunAtWork& other) override;

 private:
  /// Does a command with the instruments in hand and the interface cleared.
  /// @param what  begins the sentence when it fails: "Nothing was sent"
  Outcome Do(const std::function<Outcome()>& command);
  /// The last call's failure, in words; RF goes off.
  Outcome Failed(const std::string& what);
  Outcome SendNow(int address, const std::string& command, LineEnd end);
  Outcome ReadNow(int address, LineEnd end);
  void TakeDown();
  bool IsGenerator(int address) const;

  Shell& shell_;
  Instruments& instruments_;
  std::map<int, std::string> ways_;  ///< as they were told; asking may take a call
  std::set<int> touched_;            ///< addresses that are in remote since
  bool claimed_ = false;
  bool running_ = false;
};

}  // namespace hylden
