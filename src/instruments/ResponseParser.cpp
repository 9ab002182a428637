#include "instruments/ResponseParser.h"

#include <cmath>

#include "instruments/AnswerReader.h"
#include "shell/Shell.h"
#include "text/Characters.h"
#include "text/Numbers.h"

namespace hylden {
namespace {

/// What a driver makes of the text that an expression gives.
std::string ReadFrom(const std::string& value) {
  if (value.empty()) return "Nothing can be read from it, so a reading fails.";
  if (!AnswerReader::StartsWithNumber(value)) return "No number stands at its start, so a reading fails.";
  const double number = LeadingNumber(value);
  if (!AnswerReader::IsMeasured(number)) return "Instruments answer such a number for no value, so a reading fails.";
  return "The number " + ShortestText(number) + " is read from it.";
}

/// The characters before an error, where it has a place.
std::optional<std::size_t> PlaceOf(const RuntimeError& error, const std::string& expression) {
  const auto* const placed = dynamic_cast<const ScriptError*>(&error);
  if (!placed || !placed->At) return std::nullopt;
  return CharacterCount(std::string_view(expression).substr(0, *placed->At));
}

}  // namespace

ResponseParser::ResponseParser(Shell& shell) : engine_(shell.clock) {
  engine_.AddObject(library_);
}

ScriptEngine::Evaluated ResponseParser::Evaluate(const std::string& answer, const std::string& expression) {
  library_.RetString = answer;
  engine_.ExecuteStatement("x= RetString");
  return engine_.Evaluate(expression);
}

Result<std::string> ResponseParser::ParseAnswer(const std::string& answer, const std::string& expression) {
  try {
    return Evaluate(answer, expression).Text;
  } catch (const RuntimeError& error) {
    return Because(ErrorText(error));
  }
}

std::string ResponseParser::ErrorText(const RuntimeError& error) {
  return "Scripting error\r\nError number " + std::to_string(error.Number()) + "\r\n" + error.Description();
}

ParseExplanation ResponseParser::Explain(const std::string& answer, const std::string& expression) {
  try {
    const ScriptEngine::Evaluated value = Evaluate(answer, expression);
    return {value.Text, "The result is " + std::string(value.Kind) + ". " + ReadFrom(value.Text)};
  } catch (const RuntimeError& error) {
    ParseExplanation failed{Because(ErrorText(error)), error.Description(), PlaceOf(error, expression)};
    if (failed.At)
      failed.Text += " at column " + std::to_string(*failed.At + 1) + "\n" + expression + "\n" +
                     std::string(*failed.At, ' ') + "^";
    return failed;
  }
}

}  // namespace hylden
