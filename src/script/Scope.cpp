#include "script/Scope.h"

#include "script/Errors.h"

namespace hylden::script {
namespace {

constexpr std::size_t kMaxVariables = 4096;

}  // namespace

std::optional<std::uint32_t> Scope::FindVariable(const std::string& lowerName) const {
  const auto found = slots_.find(lowerName);
  if (found == slots_.end()) return std::nullopt;
  return found->second;
}

std::uint32_t Scope::DefineVariable(const std::string& lowerName) {
  if (const auto slot = FindVariable(lowerName)) return *slot;
  if (values_.size() >= kMaxVariables) Raise(Failure::OutOfMemory);
  const auto slot = static_cast<std::uint32_t>(values_.size());
  values_.emplace_back();
  slots_.emplace(lowerName, slot);
  return slot;
}

}  // namespace hylden::script
