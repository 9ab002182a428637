#pragma once

#include <string>
#include <tl/expected.hpp>
#include <utility>
#include <vector>

#include "platform/Dialogs.h"

namespace hylden {

/// Why something was not done: a value that goes up to whoever ran the operation. A run makes safe before it tells it.
class Failure {
 public:
  /// There is nothing to tell: the operation does not exist, or a halt ended it.
  Failure() = default;
  /// @param text  empty: nothing to tell
  explicit Failure(const std::string& text, MessageIcon icon = MessageIcon::None);
  /// A call on the bus failed.
  /// @param status  its status words, as lines
  static Failure OnBus(const std::string& text, const std::string& status);

  /// What failed besides, or what it means to the caller.
  Failure& Add(const Failure& further);

  bool IsSilent() const { return lines_.empty(); }
  bool IsOnBus() const;
  /// The boxes in which it is told, in order. What follows a failure on the bus is a line of its box, without status
  /// words of its own.
  std::vector<Message> Boxes() const;

 private:
  struct Line {
    std::string Text, Status;
    MessageIcon Icon;
  };
  std::vector<Line> lines_;
};

/// A value, or why there is none.
template <class T>
using Result = tl::expected<T, Failure>;
/// It was done, or why not.
using Done = Result<void>;

/// `return Because("...")` from a function that returns a Result.
inline tl::unexpected<Failure> Because(Failure failure = {}) {
  return tl::unexpected<Failure>(std::move(failure));
}
inline tl::unexpected<Failure> Because(const std::string& text) {
  return Because(Failure(text));
}

/// Done when both are; else what failed, in this order.
Done Both(const Done& first, const Done& second);

}  // namespace hylden
