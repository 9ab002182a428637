#pragma once

#include <optional>
#include <string>

namespace hylden {

enum class MessageIcon { None, Information, Exclamation, Question, Critical };
enum class MessageButtons { Ok, OkCancel, YesNo, YesNoCancel, RetryCancel };
enum class MessageAnswer { Ok, Cancel, Yes, No, Retry };

/// A message box. Lines of the text are separated by CR LF or CR; an empty title stands for the program's own.
struct Message {
  std::string text;
  std::string title = {};
  MessageIcon icon = MessageIcon::None;
  MessageButtons buttons = MessageButtons::Ok;
};

/// A file dialog. The filter is in common-dialog form: "Definitions (*.tst)|*.tst|All Files|*.*".
struct FileRequest {
  std::string title;
  std::string filter;
  std::string directory = {};
  std::string fileName = {};
};

/// How the program speaks with its operator.
class Dialogs {
 public:
  virtual ~Dialogs() = default;
  /// Shows the box and waits for its answer; closing the box answers Cancel, or No, or Ok where that is all there is.
  virtual MessageAnswer Show(const Message& message) = 0;
  /// Asks for a line of text; nothing when cancelled.
  virtual std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                              const std::string& text = {}) = 0;
  /// The chosen path; nothing when cancelled.
  virtual std::optional<std::string> OpenFile(const FileRequest& request) = 0;
  virtual std::optional<std::string> SaveFile(const FileRequest& request) = 0;
  /// Sets the mouse pointer back to its default shape, where there is one.
  virtual void DefaultPointer() {}

  /// A plain message: OK button, no title of its own.
  void Tell(const std::string& text, MessageIcon icon = MessageIcon::None) { Show({text, {}, icon}); }
};

}  // namespace hylden
