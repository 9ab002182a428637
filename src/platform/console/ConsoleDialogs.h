#pragma once

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Dialogs.h"

namespace hylden {

class ConsoleEventLoop;

/// Lines ended by LF, without control characters: an instrument's answer must not steer the terminal.
std::string ForTerminal(std::string_view text);

/// How the console answers what it is asked.
struct ConsoleDialogsOptions {
  /// An operator sits at the terminal. Without one every question is answered Cancel or No, so that nothing is switched
  /// on unasked, and plain messages are printed and passed. An answer that nobody typed is printed, too.
  bool terminal = false;
  /// Questions with one of these titles are confirmed without asking: what "--yes" stands for.
  std::vector<std::string> confirmedTitles = {};
  /// Answers the first question for a file to save; later ones are asked like any other.
  std::function<std::optional<std::string>()> savePath = {};
  /// Called before anything is printed: ends a progress line that is still open.
  std::function<void()> beforeText = {};
};

/// Messages and questions as lines on a terminal. A request to stop, or the end of the input, answers the open question
/// and all that follow with Cancel or No: whoever has stopped the program may not be there any more.
/// A question takes its button's first letter; Enter alone is OK where there is OK, and Escape is Cancel. A terminal's
/// typed-ahead input answers no question.
class ConsoleDialogs : public Dialogs {
 public:
  /// @param input   file descriptor of the answers; stays open
  /// @param events  ends a wait for an answer when the program is asked to stop
  ConsoleDialogs(int input, std::ostream& out, ConsoleEventLoop& events, ConsoleDialogsOptions options);

  MessageAnswer Show(const Message& message) override;
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                      const std::string& text = {}) override;
  std::optional<std::string> OpenFile(const FileRequest& request) override;
  std::optional<std::string> SaveFile(const FileRequest& request) override;

 private:
  MessageAnswer Ask(MessageButtons buttons);
  std::optional<std::string> AskPath(const FileRequest& request);
  /// A line without its end; nothing at the end of the input or when asked to stop.
  std::optional<std::string> ReadLine();
  void Print(const std::string& text);

  int input_;
  std::ostream& out_;
  ConsoleEventLoop& events_;
  ConsoleDialogsOptions options_;
  std::string unread_;
};

}  // namespace hylden
