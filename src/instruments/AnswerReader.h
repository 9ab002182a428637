#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "instruments/Gpib.h"

namespace hylden {

class ResponseParser;
class Shell;

/// What a read came to, for those who judge whether it is a reading.
struct LastReading {
  std::string Answer;      ///< the raw answer
  double Value = 0;        ///< the number in it, in the instrument's units
  bool HasNumber = false;  ///< without a number the value is 0, which nobody has measured
  bool Failed = false;     ///< there is none; the driver has told why
};

/// How meter and power meter get a number out of an instrument: trigger, settle, ask, receive, parse. A pending trigger
/// lets the caller trigger early and read later, waiting only for what is left of the settling time.
/// Nothing is reported here but scripting errors and bad units.
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
  /// unless it is empty. The leading number of the outcome; nothing when the bus failed, or when the outcome is empty
  /// or no finite number.
  std::optional<double> Read(int address, const std::string& readCommand, const std::string& parseCommand);
  const LastReading& Last() const { return last_; }
  /// The read has come to nothing, and that is told.
  void MarkFailed() { last_.Failed = true; }

  using UnitConversion = std::optional<double> (*)(std::int32_t units, double value);
  /// The converted value; nothing when it has no finite result, or for a bad units code, which is told.
  std::optional<double> Converted(UnitConversion convert, std::int32_t units, double value);

 private:
  Shell& shell_;
  Gpib& gpib_;
  ResponseParser& parser_;
  const Terminator& terminator_;
  bool pending_ = false;
  std::int64_t deadlineMs_ = 0;
  LastReading last_;
};

}  // namespace hylden
