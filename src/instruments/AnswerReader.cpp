#include "instruments/AnswerReader.h"

#include <cmath>

#include "instruments/ResponseParser.h"
#include "instruments/ShownAnswer.h"
#include "shell/Shell.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

// Instruments answer 9.9E37, of either sign, for a value beyond their range, and 9.91E37 for none.
constexpr double kNoMeasurement = 9.9e37;

}  // namespace

bool AnswerReader::StartsWithNumber(const std::string& value) {
  if (LeadingNumber(value) != 0) return true;
  auto at = value.find_first_not_of(" \t\r\n");
  for (const std::string_view skipped : {"+-", "."})
    if (at < value.size() && skipped.find(value[at]) != std::string_view::npos) ++at;
  return at < value.size() && value[at] >= '0' && value[at] <= '9';
}

bool AnswerReader::IsMeasured(double number) {
  return std::abs(number) < kNoMeasurement;
}

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

Result<double> AnswerReader::Read(int address, const std::string& readCommand, const std::string& parseCommand) {
  pending_ = false;
  answer_.clear();
  if (!readCommand.empty() && !gpib_.Send(address, readCommand + terminator_.Text)) return Because();
  if (!gpib_.Receive(address, answer_, terminator_.ReadTermination)) return Because();
  const Result<std::string> parsed = parseCommand.empty() ? answer_ : parser_.ParseAnswer(answer_, parseCommand);
  if (!parsed) return Because(parsed.error());
  value_ = LeadingNumber(*parsed);
  hasNumber_ = StartsWithNumber(*parsed);
  if (parsed->empty() || !std::isfinite(value_)) return Because();
  return value_;
}

Done AnswerReader::HoldsNumber(const std::string& instrument, const std::string& quantity) const {
  if (!hasNumber_) return Because("The " + instrument + "'s answer holds no number:\r\n" + ShownAnswer(answer_));
  if (!IsMeasured(value_)) return Because(NoQuantity(instrument, quantity));
  return {};
}

Failure AnswerReader::NoQuantity(const std::string& instrument, const std::string& quantity) const {
  return Failure("The " + instrument + "'s answer is no " + quantity + ":\r\n" + ShownAnswer(answer_));
}

Result<double> AnswerReader::Converted(UnitConversion convert, std::int32_t units, double value) {
  try {
    const std::optional<double> converted = convert(units, value);
    if (!converted) return Because("Error, bad units value in meter config file");
    return *converted;
  } catch (const RuntimeError&) {
    return Because();  // beyond what the units can express
  }
}

}  // namespace hylden
