#include "bench/VirtualInstrument.h"

#include <charconv>

namespace hylden {
namespace {

std::string Number(double value, std::chars_format format, int digits) {
  char buffer[400];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, format, digits).ptr;
  std::string text(buffer, end);
  for (char& c : text)
    if (c == 'e') c = 'E';
  return text;
}

std::string Exponent(double value) {
  return (value < 0 ? "" : "+") + Number(value, std::chars_format::scientific, 5);
}

std::string Fixed(double value) {
  return Number(value, std::chars_format::fixed, 3);
}

void Replace(std::string& text, std::string_view mark, const std::string& by) {
  for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + by.size()))
    text.replace(at, mark.size(), by);
}

}  // namespace

VirtualInstrument::VirtualInstrument(BenchRole role, std::int32_t endOfString, bool endsAnswers)
    : role_(role),
      terminator_(endOfString == 1   ? "\r"
                  : endOfString == 2 ? "\r\n"
                                     : ""),
      endsAnswers_(endsAnswers) {}

Heard VirtualInstrument::Hear(std::string_view message) {
  if (!message.ends_with(terminator_)) return {};
  message.remove_suffix(terminator_.size());
  if (message.empty()) return {.Understood = true};
  Heard heard = Listen(message);
  heard.Answer = Ended(std::move(heard.Answer));
  return heard;
}

std::optional<std::string> VirtualInstrument::Talk() {
  return Ended(Speak());
}

std::optional<std::string> VirtualInstrument::Ended(std::optional<std::string> answer) const {
  if (answer && endsAnswers_) *answer += terminator_;
  return answer;
}

std::string AnswerText(const std::string& pattern, const AnswerValues& values) {
  std::string level = values.Linear ? Exponent(values.Level) : Fixed(values.Level);
  if (pattern.empty()) return level;
  std::string text = pattern;
  Replace(text, "{level}", level);
  Replace(text, "{level:e}", Exponent(values.Level));
  Replace(text, "{freq}", Fixed(values.FreqMHz));
  Replace(text, "{channel}", values.Channel == 1 ? "A" : "B");
  return text;
}

std::int64_t CaptureTimeMs(double configuredMs, float settlingSeconds) {
  if (configuredMs >= 0) return static_cast<std::int64_t>(configuredMs);
  return static_cast<std::int64_t>(static_cast<double>(settlingSeconds) * 800);
}

}  // namespace hylden
