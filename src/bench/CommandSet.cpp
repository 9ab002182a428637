#include "bench/CommandSet.h"

#include <charconv>

#include "text/Encoding.h"
#include "text/Numbers.h"

namespace hylden {

void CommandSet::AddText(const std::string& text, int code) {
  if (!text.empty()) commands_.push_back({EncodeWindows1252(text), "", false, code});
}

void CommandSet::AddValue(const std::string& prefix, const std::string& suffix, int code) {
  if (!prefix.empty() || !suffix.empty())
    commands_.push_back({EncodeWindows1252(prefix), EncodeWindows1252(suffix), true, code});
}

bool CommandSet::Matches(const Command& command, std::string_view text, double& value) {
  if (!command.hasValue) return text == command.prefix;
  if (text.size() < command.prefix.size() + command.suffix.size()) return false;
  if (!text.starts_with(command.prefix) || !text.ends_with(command.suffix)) return false;
  text.remove_prefix(command.prefix.size());
  text.remove_suffix(command.suffix.size());
  text = Trim(text);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

}  // namespace hylden
