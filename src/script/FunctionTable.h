#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "script/Budget.h"
#include "script/Random.h"
#include "script/Value.h"

namespace hylden {
class Clock;
}

namespace hylden::script {

/// What the functions of one engine share.
struct Session {
  explicit Session(const Clock& machineClock) : clock(machineClock) {}
  const Clock& clock;
  Random random;
  Budget budget;
};

/// One call: the arguments as given, those left out as Missing.
class Call {
 public:
  Call(std::span<const Value> arguments, Session& session) : arguments_(arguments), session_(session) {}

  std::size_t Count() const { return arguments_.size(); }
  bool Has(std::size_t index) const { return index < arguments_.size() && !arguments_[index].Is(Kind::Missing); }
  const Value& operator[](std::size_t index) const { return arguments_[index]; }

  /// The argument converted; the default stands for one that was left out. @throws ScriptError
  Value Text(std::size_t index) const;
  std::int32_t Long(std::size_t index) const;
  std::int32_t LongOr(std::size_t index, std::int32_t otherwise) const;
  double Number(std::size_t index) const;
  bool FlagOr(std::size_t index, bool otherwise) const;
  /// A date's serial; a date without a year is of this year.
  double Date(std::size_t index) const;
  /// A count or a length: not negative. @throws ScriptError InvalidProcedureCall
  std::size_t Length(std::size_t index) const;
  /// Whether texts compare without regard to case: vbBinaryCompare (default) or vbTextCompare.
  /// @throws ScriptError InvalidProcedureCall
  bool IgnoresCase(std::size_t index) const;

  Session& Shared() const { return session_; }
  Budget& Work() const { return session_.budget; }

 private:
  std::span<const Value> arguments_;
  Session& session_;
};

enum class OnNull : std::uint8_t { Fail, GiveNull };

struct FunctionEntry {
  std::string_view name;
  std::uint8_t fewest, most;
  /// GiveNull: the result is Null whenever the first argument is.
  OnNull onNull;
  Value (*body)(const Call& call);
};

/// For functions that take any number of arguments.
inline constexpr std::uint8_t kAnyNumber = 255;

/// The function of the lower-case name, or null.
const FunctionEntry* FindFunction(std::string_view lowerName);

/// The value of a named constant (lower-case name), or null.
const Value* FindConstant(std::string_view lowerName);

std::span<const FunctionEntry> StringFunctions();
std::span<const FunctionEntry> SearchFunctions();
std::span<const FunctionEntry> MathFunctions();
std::span<const FunctionEntry> DateFunctions();
std::span<const FunctionEntry> ArrayFunctions();
std::span<const FunctionEntry> FormatFunctions();
std::span<const FunctionEntry> TypeFunctions();

}  // namespace hylden::script
