#include "instruments/ResponseParser.h"

#include "shell/Shell.h"

namespace hylden {

ResponseParser::ResponseParser(Shell& shell) : engine_(shell.clock) {
  engine_.AddObject(library_);
}

Result<std::string> ResponseParser::ParseAnswer(const std::string& answer, const std::string& expression) {
  library_.RetString = answer;
  try {
    engine_.ExecuteStatement("x= RetString");
    return engine_.Eval(expression);
  } catch (const RuntimeError& error) {
    return Because("Scripting error\r\nError number " + std::to_string(error.Number()) + "\r\n" + error.Description());
  }
}

}  // namespace hylden
