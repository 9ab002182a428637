#pragma once

namespace hylden {

/// The run that has the instruments, as those know it who interrupt it.
class RunAtWork {
 public:
  virtual ~RunAtWork() = default;
  /// RF off, as far as that can be done, without a word: a box is about to stand, perhaps for hours.
  virtual void RfOff() = 0;
  /// Begins the sentence "... is using the instruments".
  virtual const char* Name() const { return "Another run"; }
  /// Whether it has given the instruments back for another to have them; a run keeps them to its end.
  virtual bool GivesWayTo(const RunAtWork& /*other*/) { return false; }
};

}  // namespace hylden
