#include "platform/console/ConsoleDialogs.h"

#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <ostream>
#include <string_view>
#include <utility>

#include "platform/console/ConsoleEventLoop.h"
#include "text/Case.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

struct Button {
  char letter;
  std::string_view caption;
  MessageAnswer answer;
};

constexpr Button kOk{'o', "OK", MessageAnswer::Ok}, kCancel{'c', "Cancel", MessageAnswer::Cancel},
    kYes{'y', "Yes", MessageAnswer::Yes}, kNo{'n', "No", MessageAnswer::No}, kRetry{'r', "Retry", MessageAnswer::Retry};

/// The first button confirms, the last one declines.
std::vector<Button> ButtonsOf(MessageButtons buttons) {
  switch (buttons) {
    case MessageButtons::OkCancel:
      return {kOk, kCancel};
    case MessageButtons::YesNo:
      return {kYes, kNo};
    case MessageButtons::YesNoCancel:
      return {kYes, kNo, kCancel};
    case MessageButtons::RetryCancel:
      return {kRetry, kCancel};
    case MessageButtons::Ok:
      break;
  }
  return {kOk};
}

std::string Choices(const std::vector<Button>& buttons) {
  std::string text;
  for (const Button& button : buttons) {
    text += text.empty() ? "[" : "/";
    text += button.caption;
  }
  return text + "] ";
}

std::optional<MessageAnswer> Chosen(const std::vector<Button>& buttons, std::string_view line) {
  const std::string_view word = Trim(line);
  if (word.empty()) {
    if (buttons.front().answer == MessageAnswer::Ok) return MessageAnswer::Ok;
    return std::nullopt;
  }
  if (word.front() == '\x1b') return buttons.back().answer;
  const char letter = LowerCase(word.front());
  const auto button = std::find_if(buttons.begin(), buttons.end(), [&](const Button& b) { return b.letter == letter; });
  if (button == buttons.end()) return std::nullopt;
  return button->answer;
}

}  // namespace

std::string ForTerminal(std::string_view text) {
  std::string lines;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (text[i] == '\r') {
      if (i + 1 == text.size() || text[i + 1] != '\n') lines += '\n';
    } else if (text[i] == '\n' || text[i] == '\t' || (byte >= 32 && byte != 127)) {
      lines += text[i];
    }
  }
  while (lines.ends_with('\n')) lines.pop_back();
  return lines;
}

ConsoleDialogs::ConsoleDialogs(int input, std::ostream& out, ConsoleEventLoop& events, ConsoleDialogsOptions options)
    : input_(input), out_(out), events_(events), options_(std::move(options)) {}

MessageAnswer ConsoleDialogs::Show(const Message& message) {
  if (options_.beforeText) options_.beforeText();
  if (!message.title.empty()) Print(message.title + ":\n");
  Print(message.text + "\n");
  const auto& confirmed = options_.confirmedTitles;
  const bool isConfirmed = std::find(confirmed.begin(), confirmed.end(), message.title) != confirmed.end();
  if (message.buttons == MessageButtons::Ok || (options_.terminal && !isConfirmed)) return Ask(message.buttons);
  const std::vector<Button> buttons = ButtonsOf(message.buttons);
  const Button& taken = isConfirmed ? buttons.front() : buttons.back();
  Print("[" + std::string(taken.caption) + (isConfirmed ? "]\n" : "] Nobody is at a terminal to answer.\n"));
  return taken.answer;
}

MessageAnswer ConsoleDialogs::Ask(MessageButtons kind) {
  const std::vector<Button> buttons = ButtonsOf(kind);
  if (!options_.terminal) return buttons.back().answer;
  // What was typed before the question was on the screen is no answer to it.
  tcflush(input_, TCIFLUSH);
  for (;;) {
    out_ << (kind == MessageButtons::Ok ? "[Enter] " : Choices(buttons)) << std::flush;
    const auto line = ReadLine();
    if (!line) Print("\n");
    if (!line || kind == MessageButtons::Ok) return buttons.back().answer;
    if (const auto answer = Chosen(buttons, *line)) return *answer;
  }
}

std::optional<std::string> ConsoleDialogs::InputBox(const std::string& prompt, const std::string& title,
                                                    const std::string& text) {
  if (options_.beforeText) options_.beforeText();
  if (!title.empty()) Print(title + ":\n");
  Print(prompt + "\n");
  if (!options_.terminal) return std::nullopt;
  out_ << "[" << ForTerminal(text) << "] " << std::flush;
  auto line = ReadLine();
  if (line && line->empty()) return text;
  return line;
}

std::optional<std::string> ConsoleDialogs::OpenFile(const FileRequest& request) {
  return AskPath(request);
}

std::optional<std::string> ConsoleDialogs::SaveFile(const FileRequest& request) {
  if (const auto savePath = std::exchange(options_.savePath, nullptr)) return savePath();
  return AskPath(request);
}

std::optional<std::string> ConsoleDialogs::AskPath(const FileRequest& request) {
  if (!options_.terminal) return std::nullopt;
  if (options_.beforeText) options_.beforeText();
  Print(request.title);
  out_ << " (path, Enter alone to cancel): " << std::flush;
  const auto line = ReadLine();
  if (!line || Trim(*line).empty()) return std::nullopt;
  return std::string(Trim(*line));
}

std::optional<std::string> ConsoleDialogs::ReadLine() {
  for (;;) {
    if (const std::size_t end = unread_.find('\n'); end != std::string::npos) {
      std::string line = unread_.substr(0, end);
      unread_.erase(0, end + 1);
      if (line.ends_with('\r')) line.pop_back();
      return line;
    }
    char bytes[256];
    if (!events_.AwaitInput(input_)) return std::nullopt;
    const auto count = read(input_, bytes, sizeof bytes);
    if (count <= 0) return std::nullopt;
    unread_.append(bytes, static_cast<std::size_t>(count));
  }
}

void ConsoleDialogs::Print(const std::string& text) {
  out_ << ForTerminal(text);
  if (text.ends_with('\n')) out_ << '\n';
  out_ << std::flush;
}

}  // namespace hylden
