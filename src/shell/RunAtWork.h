#pragma once

namespace hylden {

/// The run that has the instruments, as those know it who interrupt it.
class RunAtWork {
 public:
  virtual ~RunAtWork() = default;
  /// RF off, as far as that can be done, without a word: a box is about to stand, perhaps for hours.
  virtual void RfOff() = 0;
};

}  // namespace hylden
