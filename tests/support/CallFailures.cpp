#include "support/CallFailures.h"

#include <algorithm>

namespace hylden {

std::optional<int> CallFailures::FailureOf(const std::string& line) {
  ++calls_;
  if (always_) return always_;
  if (const auto failure = atCall_.find(calls_); failure != atCall_.end()) return failure->second;
  const auto match = std::find_if(atLine_.begin(), atLine_.end(),
                                  [&](const auto& failure) { return line.starts_with(failure.first); });
  if (match == atLine_.end()) return std::nullopt;
  const int error = match->second;
  atLine_.erase(match);
  return error;
}

}  // namespace hylden
