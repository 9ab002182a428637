#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Dialogs.h"

namespace hylden {

/// An operator who answers from a script and remembers everything shown.
/// Without a scripted answer a message is confirmed (Ok, Yes; Cancel for Retry/Cancel, so that no retry goes on for
/// ever), an input box returns the text it offers, and a file dialog is cancelled.
/// A scripted answer that the box has no button for fails the test.
class FakeDialogs : public Dialogs {
 public:
  struct InputShown {
    std::string prompt, title, text;
  };

  void Answer(MessageAnswer answer) { answers_.push_back(answer); }
  void AnswerInput(std::optional<std::string> text) { inputAnswers_.push_back(std::move(text)); }
  void AnswerOpen(std::optional<std::string> path) { openAnswers_.push_back(std::move(path)); }
  void AnswerSave(std::optional<std::string> path) { saveAnswers_.push_back(std::move(path)); }

  /// Called while a message is on the screen, before it is answered.
  std::function<void(const Message&)> onShow;

  std::vector<Message> messages;
  std::vector<InputShown> inputs;
  std::vector<FileRequest> openRequests;
  std::vector<FileRequest> saveRequests;
  int pointerResets = 0;

  /// The texts of all messages, in order.
  std::vector<std::string> Texts() const;
  /// The text of the last message; empty when none was shown.
  std::string LastText() const;
  /// Whether a message with exactly this text was shown.
  bool WasShown(const std::string& text) const;
  /// Whether a message whose text contains the part was shown.
  bool WasShownContaining(const std::string& part) const;
  /// Scripted answers that no box has asked for yet.
  std::size_t UnusedAnswers() const;
  /// Forgets what was shown; scripted answers stay.
  void Clear();

  MessageAnswer Show(const Message& message) override;
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                      const std::string& text = {}) override;
  std::optional<std::string> OpenFile(const FileRequest& request) override;
  std::optional<std::string> SaveFile(const FileRequest& request) override;
  void DefaultPointer() override { ++pointerResets; }

 private:
  std::deque<MessageAnswer> answers_;
  std::deque<std::optional<std::string>> inputAnswers_, openAnswers_, saveAnswers_;
};

}  // namespace hylden
