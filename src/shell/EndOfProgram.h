#pragma once

namespace hylden {

/// How far the end of the program has come. It is asked of the windows one after the other, and each of them may refuse
/// it; a refused end leaves nothing behind.
class EndOfProgram {
 public:
  enum class State {
    Running,
    Asked,    ///< nothing is started any more
    Refused,  ///< a window stays open: the program runs as before
    Over
  };

  State Now() const { return state_; }
  bool IsAsked() const { return state_ == State::Asked; }
  /// Commands, runs and windows may be begun.
  bool MayStart() const { return state_ == State::Running || state_ == State::Refused; }

  /// @return false when it has been asked already, or is over
  bool Ask() { return MayStart() && Enter(State::Asked); }
  /// @return false when it is not asked
  bool Refuse() { return IsAsked() && Enter(State::Refused); }
  void Finish() { Enter(State::Over); }

 private:
  bool Enter(State state) {
    state_ = state;
    return true;
  }

  State state_ = State::Running;
};

}  // namespace hylden
