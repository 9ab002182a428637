#include "instruments/ShownAnswer.h"

#include "text/Numbers.h"

namespace hylden {

std::string ShownAnswer(const std::string& answer) {
  constexpr unsigned char kFirstShown = 0x20, kDelete = 0x7F;
  std::string text;
  for (const char c : answer) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\r' || c == '\n' || c == '\t') {
      text += ' ';
    } else {
      text += byte < kFirstShown || byte == kDelete ? '?' : c;
    }
  }
  return "\"" + std::string(Trim(text)) + "\"";
}

}  // namespace hylden
