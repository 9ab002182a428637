#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "shell/Failure.h"
#include "shell/RunAtWork.h"

namespace hylden {

class Shell;
struct Instruments;

/// Tries an instrument out, entry by entry of its editor's Test menu. From Init on it has the instruments, as a run
/// has them, until the instrument is taken offline; RF goes off before anything is told, and however the trial ends,
/// the instrument is left local, the generator with RF off.
class InstrumentTrial : public RunAtWork {
 public:
  /// An entry of the Test menu. All but the first, Init, want the instrument to be up.
  struct Entry {
    std::string Control;             ///< its object name
    std::function<Done()> Run = {};  ///< none where the form does it by itself
  };

  InstrumentTrial(const InstrumentTrial&) = delete;
  InstrumentTrial& operator=(const InstrumentTrial&) = delete;
  ~InstrumentTrial() override;

  const std::vector<Entry>& Entries() const { return entries_; }
  /// Whether the entry can be chosen now. None can while one is at work: its waits let the windows live.
  bool Offers(const Entry& entry) const;
  /// Does what the entry says and shows in one box what fails. An exception ends the trial and is thrown on.
  /// @return whether it was done; it may also be left without a word, as by a prompt that is cancelled
  bool Run(const Entry& entry);
  /// Ends the entry that waits, or else RF.
  void Halt();
  bool IsUp() const { return up_; }
  bool IsRunning() const { return running_; }

  /// RF off, the instrument offline; what fails is told, unless something has been.
  void End();
  /// The definition is about to change: RF goes off as long as the command for it is known.
  /// @param anotherAddress  the instrument that is up is left, and the trial ends
  /// @return false after a message: a run has the instruments, and nothing may change
  bool MayChangeDefinition(bool anotherAddress);
  /// What the instrument answered last, raw; kept when a later read brings nothing.
  const std::string& LastAnswer() const { return lastAnswer_; }

  void RfOff() final;
  const char* Name() const override { return "The editor of an instrument"; }
  bool GivesWayTo(const RunAtWork& other) override;

 protected:
  /// @param takeDown        takes the instrument offline, as far as that can be done
  /// @param endsOnBusFailure  the trial ends with the first failure on the bus
  InstrumentTrial(Shell& shell, Instruments& instruments, std::function<Done()> takeDown, bool endsOnBusFailure);

  void Offer(const char* control, std::function<Done()> run = {}) { entries_.push_back({control, std::move(run)}); }
  /// Clears the interface and brings the instrument up.
  Done BringUp(const std::function<Done()>& init);
  /// Takes it offline, as an entry: what fails there is tried again at the end.
  Done TakeOffline(const std::function<Done()>& shutdown);
  /// Asks for a number, until it is one; silent when the operator cancels or leaves it empty.
  Result<double> Ask(const std::string& prompt);
  /// Shows a reading and the answer that it was read from.
  Done ShowReading(const Result<double>& reading, const char* unit, const std::string& answer);

  Shell& shell_;
  Instruments& instruments_;

 private:
  bool Claim();
  void Release();
  void Conclude(const Done& done);
  /// RF off and offline, without a word. @return what failed
  Done TakeDown();
  void Tell(const Failure& failure);

  std::vector<Entry> entries_;
  std::function<Done()> takeDown_;
  std::map<std::string, std::string> entered_;  ///< by prompt: offered the next time
  std::string lastAnswer_;
  const bool endsOnBusFailure_;
  bool claimed_ = false;
  bool touched_ = false;  ///< it has been sent something, and has to be taken down
  bool up_ = false;
  bool running_ = false;
};

}  // namespace hylden
