#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "script/ScriptEngine.h"
#include "script/Value.h"

namespace hylden::script {

/// The global names of an engine: its variables, and the library object once published. Only an assignment makes a
/// variable; reading a name that has none gives Empty and leaves no trace.
class Scope {
 public:
  /// @param lowerName  the name in lower case
  std::optional<std::uint32_t> FindVariable(const std::string& lowerName) const;
  /// The slot of the variable, made when there is none. @throws ScriptError OutOfMemory
  std::uint32_t DefineVariable(const std::string& lowerName);

  const Value& Variable(std::uint32_t slot) const { return values_[slot]; }
  void SetVariable(std::uint32_t slot, Value value) { values_[slot] = std::move(value); }
  std::size_t VariableCount() const { return values_.size(); }

  clsHyLib* Library() const { return library_; }
  void SetLibrary(clsHyLib& library) { library_ = &library; }

 private:
  std::unordered_map<std::string, std::uint32_t> slots_;
  std::vector<Value> values_;
  clsHyLib* library_ = nullptr;
};

}  // namespace hylden::script
