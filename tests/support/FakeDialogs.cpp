#include "support/FakeDialogs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace hylden {

namespace {

using enum MessageAnswer;

/// The buttons of each kind of box; the first one is pressed without a scripted answer.
const std::map<MessageButtons, std::vector<MessageAnswer>> kButtons = {{MessageButtons::Ok, {Ok}},
                                                                       {MessageButtons::OkCancel, {Ok, Cancel}},
                                                                       {MessageButtons::YesNo, {Yes, No}},
                                                                       {MessageButtons::YesNoCancel, {Yes, No, Cancel}},
                                                                       {MessageButtons::RetryCancel, {Cancel, Retry}}};

std::optional<std::string> Take(std::deque<std::optional<std::string>>& answers, std::optional<std::string> otherwise) {
  if (answers.empty()) return otherwise;
  std::optional<std::string> answer = std::move(answers.front());
  answers.pop_front();
  return answer;
}

}  // namespace

std::vector<std::string> FakeDialogs::Texts() const {
  std::vector<std::string> texts;
  for (const Message& message : messages) texts.push_back(message.text);
  return texts;
}

std::string FakeDialogs::LastText() const {
  return messages.empty() ? std::string() : messages.back().text;
}

bool FakeDialogs::WasShown(const std::string& text) const {
  return std::any_of(messages.begin(), messages.end(), [&](const Message& m) { return m.text == text; });
}

bool FakeDialogs::WasShownContaining(const std::string& part) const {
  return std::any_of(messages.begin(), messages.end(),
                     [&](const Message& m) { return m.text.find(part) != std::string::npos; });
}

std::size_t FakeDialogs::UnusedAnswers() const {
  return answers_.size() + inputAnswers_.size() + openAnswers_.size() + saveAnswers_.size();
}

void FakeDialogs::Clear() {
  messages.clear();
  inputs.clear();
  openRequests.clear();
  saveRequests.clear();
  pointerResets = 0;
}

MessageAnswer FakeDialogs::Show(const Message& message) {
  messages.push_back(message);
  if (onShow) onShow(message);
  const std::vector<MessageAnswer>& buttons = kButtons.at(message.buttons);
  if (answers_.empty()) return buttons.front();
  const MessageAnswer answer = answers_.front();
  answers_.pop_front();
  EXPECT_NE(std::find(buttons.begin(), buttons.end(), answer), buttons.end())
      << "no such button on the box: " << message.text;
  return answer;
}

std::optional<std::string> FakeDialogs::InputBox(const std::string& prompt, const std::string& title,
                                                 const std::string& text) {
  inputs.push_back({prompt, title, text});
  return Take(inputAnswers_, text);
}

std::optional<std::string> FakeDialogs::OpenFile(const FileRequest& request) {
  openRequests.push_back(request);
  return Take(openAnswers_, std::nullopt);
}

std::optional<std::string> FakeDialogs::SaveFile(const FileRequest& request) {
  saveRequests.push_back(request);
  return Take(saveAnswers_, std::nullopt);
}

}  // namespace hylden
