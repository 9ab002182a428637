#pragma once

#include <cstddef>

#include "script/Errors.h"

namespace hylden::script {

/// Longest text that an expression may build, in UTF-16 units.
inline constexpr std::size_t kMaxTextLength = std::size_t{1} << 20;
/// Most elements of one array.
inline constexpr std::size_t kMaxElements = std::size_t{1} << 17;
/// Deepest nesting of arrays in arrays.
inline constexpr int kMaxArrayNesting = 60;
/// Deepest nesting of parentheses, arguments and prefix operators.
inline constexpr int kMaxNesting = 200;
/// Longest expression or statement, in bytes.
inline constexpr std::size_t kMaxSourceLength = std::size_t{1} << 20;

/// The work that one evaluation may still do, counted in characters touched. It depends on the expression and its
/// values only, so an expression that ends on one machine ends on every machine.
class Budget {
 public:
  void Refill() { left_ = kWork; }

  /// @throws ScriptError OutOfMemory when the budget is spent
  void Charge(std::size_t characters) {
    if (characters > left_) Raise(Failure::OutOfMemory);
    left_ -= characters;
  }
  /// Charges for a text about to be built. @throws ScriptError OutOfStringSpace, OutOfMemory
  void ChargeText(std::size_t length) {
    if (length > kMaxTextLength) Raise(Failure::OutOfStringSpace);
    Charge(length);
  }
  /// Charges for elements about to be built. @throws ScriptError OutOfMemory
  void ChargeElements(std::size_t count) {
    if (count > kMaxElements) Raise(Failure::OutOfMemory);
    Charge(count * kElementCost);
  }

 private:
  static constexpr std::size_t kWork = std::size_t{1} << 25;
  static constexpr std::size_t kElementCost = 64;
  std::size_t left_ = kWork;
};

}  // namespace hylden::script
