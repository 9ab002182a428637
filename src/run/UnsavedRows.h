#pragma once

#include <functional>
#include <string>

namespace hylden {

class Dialogs;

/// What a run recorded, as long as it is in no file: whether the operator wants it saved, and the questions about it.
/// Nothing is dropped before the operator has been asked.
class UnsavedRows {
 public:
  struct Questions {
    std::string Title;
    std::string AtTheEnd;  ///< of a run
    std::string BeforeDropping;
  };
  /// @param exist  whether there is something that a file could hold
  /// @param write  asks for a file and writes it; false when it was not written
  UnsavedRows(Dialogs& dialogs, Questions questions, std::function<bool()> exist, std::function<bool()> write);

  /// Called when the rows have come into a file, or the operator does not want them.
  std::function<void()> onSettled;

  /// The rows are new: nobody has been asked about them.
  void Reset() { state_ = State::New; }
  /// The rows are those of a journal that was left behind, and stay there unless they are saved or dropped.
  void Keep() { state_ = State::Kept; }
  bool AreKept() const { return state_ == State::Kept; }
  void AskAtTheEnd();
  /// The save command. What is in a file stays there when another save fails. @return whether it was written now
  bool Save();
  /// Asks, once, before the rows are dropped. @return false when they have to stay: cancelled, or not saved
  bool MayDrop();
  /// The same before the window closes; what was not wanted at the end of its run goes without a question, and what is
  /// kept stays without one.
  bool MayLeave();

  bool AreSaved() const { return state_ == State::Saved; }
  /// There are rows, in no file, that the operator has not let go.
  bool Any() const { return !AreSaved() && state_ != State::LetGo && exist_(); }
  /// The operator wanted them saved, and the file dialog was cancelled or the file not written.
  bool AreMissed() const { return state_ == State::Wanted && exist_(); }
  /// A question whether, or where, to save them waits for an answer.
  bool IsAsking() const { return asking_; }

 private:
  enum class State { New, Kept, Wanted, NotWanted, LetGo, Saved };

  void Settle(State state);

  Dialogs& dialogs_;
  Questions questions_;
  std::function<bool()> exist_, write_;
  State state_ = State::New;
  bool asking_ = false;
};

}  // namespace hylden
