#include "instruments/AnswerReader.h"

#include <cmath>

#include "instruments/ResponseParser.h"
#include "shell/Shell.h"
#include "text/Numbers.h"

namespace hylden {

bool AnswerReader::Trigger(int address, const std::string& command, double settlingSeconds) {
  pending_ = true;
  // The drain costs up to 30 ms, but a late answer would be read as the next one.
  gpib_.Drain(address);
  if (command.empty()) return true;
  if (!gpib_.Send(address, command + terminator_.Text)) return false;
  deadlineMs_ = shell_.delay.TickAfter(settlingSeconds);
  return true;
}

void AnswerReader::AwaitPending() {
  shell_.delay.WaitUntil(deadlineMs_);
}

std::optional<double> AnswerReader::Read(int address, const std::string& readCommand, const std::string& parseCommand) {
  pending_ = false;
  if (!readCommand.empty() && !gpib_.Send(address, readCommand + terminator_.Text)) return std::nullopt;
  std::string answer;
  if (!gpib_.Receive(address, answer, terminator_.ReadTermination)) return std::nullopt;
  lastAnswer_ = answer;
  const std::string valueText = parseCommand.empty() ? answer : parser_.ParseAnswer(answer, parseCommand);
  if (valueText.empty()) return std::nullopt;
  const double value = LeadingNumber(valueText);
  return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<double> AnswerReader::Converted(UnitConversion convert, std::int32_t units, double value) {
  try {
    const std::optional<double> converted = convert(units, value);
    if (!converted) shell_.TellFailure("Error, bad units value in meter config file");
    return converted;
  } catch (const RuntimeError&) {
    return std::nullopt;  // beyond what the units can express
  }
}

}  // namespace hylden
