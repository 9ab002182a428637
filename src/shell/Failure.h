#pragma once

#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <tl/expected.hpp>
#include <type_traits>
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
  /// The standard report of something thrown: critical icon, title "Error", "Error # " + number, CR, description, CR,
  /// context, CR and, where a file is involved, its path. What carries no number is number 51, "Internal error".
  static Failure Report(const std::exception& error, std::string_view context, std::string_view path = {});

  /// What failed besides, or what it means to the caller.
  Failure& Add(const Failure& further);

  bool IsSilent() const { return lines_.empty(); }
  bool IsOnBus() const;
  /// The boxes in which it is told, in order. What follows a failure on the bus is a line of its box, without status
  /// words of its own; a standard report has a box of its own.
  std::vector<Message> Boxes() const;

 private:
  struct Line {
    std::string Text, Status, Title;
    MessageIcon Icon;
  };
  std::vector<Line> lines_;
};

/// A value, or why there is none. One that is dropped is a warning: what fails has to be told, or kept from being.
template <class T>
class [[nodiscard]] Result : public tl::expected<T, Failure> {
  using Base = tl::expected<T, Failure>;

 public:
  using Base::Base;
  Result() = default;
  Result(Base result) : Base(std::move(result)) {}

  /// What the next one comes to, where this one is no failure.
  template <class Next>
  auto and_then(Next next) const {
    if constexpr (std::is_void_v<T>) {
      return *this ? next() : std::invoke_result_t<Next>(tl::unexpected(this->error()));
    } else {
      return *this ? next(**this) : std::invoke_result_t<Next, T>(tl::unexpected(this->error()));
    }
  }
};
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

/// Does what works on a file or the printer: what it throws becomes the standard report.
/// @param operation  returns nothing, or a result of its own
template <class Operation, class Outcome = std::invoke_result_t<Operation>>
std::conditional_t<std::is_void_v<Outcome>, Done, Outcome> Trapped(std::string_view context, std::string_view path,
                                                                   Operation operation) {
  try {
    if constexpr (std::is_void_v<Outcome>) {
      operation();
      return {};
    } else {
      return operation();
    }
  } catch (const std::exception& error) {
    return Because(Failure::Report(error, context, path));
  }
}

}  // namespace hylden
