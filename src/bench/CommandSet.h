#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hylden {

/// The commands that an instrument's definition file lists, as the instrument hears them: plain texts, and values
/// between a prefix and a suffix. Blanks around a value are free, everything else counts to the byte.
class CommandSet {
 public:
  /// A text or prefix and suffix that are empty are no command.
  void AddText(const std::string& text, int code);
  void AddValue(const std::string& prefix, const std::string& suffix, int code);

  /// Calls action(code, value) for every command that the text is, in the order of adding.
  /// @return false when it is none
  template <class Action>
  bool ForEach(std::string_view text, Action action) const {
    bool understood = false;
    double value = 0;
    for (const Command& command : commands_) {
      if (!Matches(command, text, value)) continue;
      understood = true;
      action(command.code, value);
    }
    return understood;
  }

 private:
  struct Command {
    std::string prefix, suffix;
    bool hasValue;
    int code;
  };
  static bool Matches(const Command& command, std::string_view text, double& value);

  std::vector<Command> commands_;
};

}  // namespace hylden
