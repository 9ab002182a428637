#include "support/CallFailures.h"

#include <algorithm>
#include <stdexcept>

#include "platform/GpibDriver.h"

namespace hylden {

std::optional<int> CallFailures::FailureOf(const std::string& line) {
  ++calls_;
  if (onCall) onCall(calls_);
  if (calls_ == throwAt_) throw std::runtime_error("the driver's library broke");
  if (always_) return always_;
  if (IsToDeadDevice(line) || IsOnDeadBus(line) || IsStuttered(line)) return gpib::kEabo;
  if (const auto failure = atCall_.find(calls_); failure != atCall_.end()) return failure->second;
  const auto match = std::find_if(atLine_.begin(), atLine_.end(),
                                  [&](const auto& failure) { return line.starts_with(failure.first); });
  if (match == atLine_.end()) return std::nullopt;
  const int error = match->second;
  atLine_.erase(match);
  return error;
}

bool CallFailures::IsToDeadDevice(const std::string& line) const {
  if (!line.starts_with("> ") && !line.starts_with("< ")) return false;
  const auto device = dead_.find(std::atoi(line.c_str() + 2));
  return device != dead_.end() && calls_ >= device->second;
}

bool CallFailures::IsStuttered(const std::string& line) {
  const auto device = stuttering_.find(std::atoi(line.c_str() + std::min<std::size_t>(2, line.size())));
  if (!line.starts_with("> ") || device == stuttering_.end() || calls_ < device->second.From) return false;
  return device->second.Last = !device->second.Last;
}

bool CallFailures::IsOnDeadBus(const std::string& line) const {
  const bool ofTheBoard = line == "IFC" || line.starts_with("TMO ");
  return !ofTheBoard && deadBus_ && calls_ >= *deadBus_;
}

}  // namespace hylden
