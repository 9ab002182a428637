#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "instruments/Gpib.h"

namespace hylden {

class ResponseParser;
class Shell;

/// How meter and power meter get a number out of an instrument: trigger, settle, ask, receive, parse. A pending trigger
/// lets the caller trigger early and read later, waiting only for what is left of the settling time. A failure that
/// only the bus can explain is silent: the caller knows what to say of it.
class AnswerReader {
 public:
  /// @param terminator  of the instrument, as its definition asks for it now; must outlive the reader
  AnswerReader(Shell& shell, Gpib& gpib, ResponseParser& parser, const Terminator& terminator)
      : shell_(shell), gpib_(gpib), parser_(parser), terminator_(terminator) {}

  /// Marks a trigger pending, reads stale output away and sends the command (which may be empty). False when the send
  /// failed; the mark stays.
  bool Trigger(int address, const std::string& command, double settlingSeconds);
  bool TriggerPending() const { return pending_; }
  void ForgetTrigger() { pending_ = false; }
  /// Waits for what is left of the pending trigger's settling time, or until a halt.
  void AwaitPending();

  /// Takes up the pending trigger: sends the read command unless it is empty, receives, evaluates the parse command
  /// unless it is empty. The leading number of the outcome; none when the bus or the script failed, or when the outcome
  /// is empty or no finite number.
  Result<double> Read(int address, const std::string& readCommand, const std::string& parseCommand);
  /// The last raw answer.
  const std::string& LastAnswer() const { return answer_; }
  /// Whether the last answer holds a measured number; why not shows the answer.
  /// @param instrument, quantity  as the text names them: "meter", "level"
  Done HoldsNumber(const std::string& instrument, const std::string& quantity) const;
  /// Why the last answer is none of its quantity.
  Failure NoQuantity(const std::string& instrument, const std::string& quantity) const;

  /// Whether a number stands at the start of the text that is read: without one its value is 0.
  static bool StartsWithNumber(const std::string& value);
  /// Whether a number is one that was measured: instruments have numbers that mean none.
  static bool IsMeasured(double number);

  using UnitConversion = std::optional<double> (*)(std::int32_t units, double value);
  /// The converted value; none for a bad units code, and, silently, when it has no finite result.
  static Result<double> Converted(UnitConversion convert, std::int32_t units, double value);

 private:
  Shell& shell_;
  Gpib& gpib_;
  ResponseParser& parser_;
  const Terminator& terminator_;
  bool pending_ = false;
  std::int64_t deadlineMs_ = 0;
  std::string answer_;      ///< the last one, raw
  double value_ = 0;        ///< the number in it, in the instrument's units
  bool hasNumber_ = false;  ///< without a number the value is 0, which nobody has measured
};

}  // namespace hylden
