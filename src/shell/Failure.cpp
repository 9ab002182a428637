#include "shell/Failure.h"

#include <algorithm>

#include "text/RuntimeError.h"

namespace hylden {

Failure::Failure(const std::string& text, MessageIcon icon) {
  if (!text.empty()) lines_.push_back({text, {}, {}, icon});
}

Failure Failure::OnBus(const std::string& text, const std::string& status) {
  Failure failure;
  failure.lines_.push_back({text, status, {}, MessageIcon::Exclamation});
  return failure;
}

Failure Failure::Report(const std::exception& error, std::string_view context, std::string_view path) {
  constexpr int kInternalError = 51;
  const auto* const known = dynamic_cast<const RuntimeError*>(&error);
  const RuntimeError numbered = known ? *known : RuntimeError(kInternalError, "Internal error");
  std::string text = "Error # " + std::to_string(numbered.Number()) + "\r" + numbered.Description() + "\r";
  text.append(context).append("\r").append(path);
  Failure failure;
  failure.lines_.push_back({text, {}, "Error", MessageIcon::Critical});
  return failure;
}

Failure& Failure::Add(const Failure& further) {
  lines_.insert(lines_.end(), further.lines_.begin(), further.lines_.end());
  return *this;
}

bool Failure::IsOnBus() const {
  return std::any_of(lines_.begin(), lines_.end(), [](const Line& line) { return !line.Status.empty(); });
}

std::vector<Message> Failure::Boxes() const {
  std::vector<Message> boxes;
  bool onBus = false;
  for (const Line& line : lines_) {
    if (!onBus || !line.Title.empty()) {
      boxes.push_back({line.Text + line.Status, line.Title, line.Icon});
      onBus = !line.Status.empty();
      continue;
    }
    boxes.back().text += "\r\n" + line.Text;
    if (line.Icon != MessageIcon::None) boxes.back().icon = line.Icon;
  }
  return boxes;
}

Done Both(const Done& first, const Done& second) {
  if (first) return second;
  if (second) return first;
  return Because(Failure(first.error()).Add(second.error()));
}

}  // namespace hylden
