#include "instruments/AnswerReader.h"

#include <cmath>

#include "instruments/ResponseParser.h"
#include "shell/Shell.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

/// Whether a number that reads as this value stands at the start of the text.
bool StartsWithNumber(std::string_view text, double value) {
  if (value != 0) return true;
  auto at = text.find_first_not_of(" \t\r\n");
  for (const std::string_view skipped : {"+-", "."})
    if (at < text.size() && skipped.find(text[at]) != std::string_view::npos) ++at;
  return at < text.size() && text[at] >= '0' && text[at] <= '9';
}

}  // namespace

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
  last_ = {};
  if (!readCommand.empty() && !gpib_.Send(address, readCommand + terminator_.Text)) return std::nullopt;
  std::string answer;
  if (!gpib_.Receive(address, answer, terminator_.ReadTermination)) return std::nullopt;
  last_.Answer = answer;
  const std::string valueText = parseCommand.empty() ? answer : parser_.ParseAnswer(answer, parseCommand);
  if (valueText.empty()) return std::nullopt;
  const double value = LeadingNumber(valueText);
  if (!std::isfinite(value)) return std::nullopt;
  last_.Value = value;
  last_.HasNumber = StartsWithNumber(valueText, value);
  return value;
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
