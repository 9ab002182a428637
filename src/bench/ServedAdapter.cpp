#include "bench/ServedAdapter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <sstream>

#include "text/Case.h"

namespace hylden {

namespace {

constexpr char kEsc = '\x1b';
constexpr const char* kUnrecognized = "Unrecognized command\r\n";

std::string Line(int value) {
  return std::to_string(value) + "\r\n";
}

std::vector<std::string> WordsOf(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> words;
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

/// A whole number within the limits, nothing else.
std::optional<int> NumberIn(const std::string& text, int least, int most) {
  int value = 0;
  const char* const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, value);
  if (error != std::errc() || end != last || value < least || value > most) return std::nullopt;
  return value;
}

std::string Unescaped(const std::string& message) {
  std::string bytes;
  for (std::size_t at = 0; at < message.size(); ++at) {
    if (message[at] == kEsc && ++at == message.size()) break;
    bytes += message[at];
  }
  return bytes;
}

}  // namespace

const ServedAdapter::Setting ServedAdapter::kSettings[] = {
    {"mode", &Settings::Mode, 0, 1},
    {"auto", &Settings::Auto, 0, 1},
    {"addr", &Settings::Address, 0, 30},
    {"eoi", &Settings::Eoi, 0, 1},
    {"eos", &Settings::Eos, 0, 3},
    {"eot_enable", &Settings::EotEnable, 0, 1},
    {"eot_char", &Settings::EotChar, 0, 255},
    {"read_tmo_ms", &Settings::ReadLimitMs, 1, 32000},
    {"lon", &Settings::ListenOnly, 0, 1},
    {"savecfg", &Settings::Save, 0, 1},
};

const ServedAdapter::Action ServedAdapter::kActions[] = {
    {"read", &ServedAdapter::Read},        {"ifc", &ServedAdapter::ClearInterface}, {"loc", &ServedAdapter::Local},
    {"llo", &ServedAdapter::Lockout},      {"clr", &ServedAdapter::Clear},          {"trg", &ServedAdapter::Trigger},
    {"spoll", &ServedAdapter::SerialPoll}, {"srq", &ServedAdapter::ServiceRequest}, {"ver", &ServedAdapter::Version},
    {"rst", &ServedAdapter::Reset},
};

std::string ServedAdapter::Obey(const std::string& message) {
  if (message.starts_with("++")) return Command(WordsOf(message.substr(2)));
  return Message(Unescaped(message));
}

std::string ServedAdapter::Command(Words words) {
  if (words.empty()) return kUnrecognized;
  const auto named = [&](const auto& entry) { return SameIgnoringCase(words.front(), entry.Name); };
  const Words values = words.subspan(1);
  if (const auto* setting = std::ranges::find_if(kSettings, named); setting != std::end(kSettings))
    return Set(*setting, values);
  const auto* const action = std::ranges::find_if(kActions, named);
  return action == std::end(kActions) ? kUnrecognized : (this->*action->Do)(values);
}

std::string ServedAdapter::Set(const Setting& setting, Words values) {
  if (values.empty()) return Line(settings_.*setting.Value);
  const auto value = NumberIn(values.front(), setting.Least, setting.Most);
  if (!value || values.size() > 1) return kUnrecognized;
  settings_.*setting.Value = *value;
  return {};
}

std::string ServedAdapter::Message(const std::string& bytes) {
  static constexpr std::array<const char*, 4> kEnds = {"\r\n", "\r", "\n", ""};
  if (settings_.Mode == 0) return {};
  const char* const end = kEnds[static_cast<std::size_t>(settings_.Eos)];
  if (!bus_.Send(settings_.Address, bytes + end, settings_.ReadLimitMs) || settings_.Auto == 0) return {};
  return Read({});
}

/// Up to the end of the answer, where nothing or "eoi" is given, or to the character with the number.
std::string ServedAdapter::Read(Words words) {
  int termination = gpib::kStopEnd;
  if (!words.empty() && !SameIgnoringCase(words.front(), "eoi")) {
    const auto character = NumberIn(words.front(), 0, 255);
    if (!character) return kUnrecognized;
    termination = *character;
  }
  if (settings_.Mode == 0) return {};
  const auto answer = bus_.Receive(settings_.Address, termination, settings_.ReadLimitMs);
  if (!answer) return {};
  const bool marked = answer->Ended && settings_.EotEnable == 1;
  return marked ? answer->Text + static_cast<char>(settings_.EotChar) : answer->Text;
}

std::string ServedAdapter::ClearInterface(Words) {
  bus_.ClearInterface();
  return {};
}

std::string ServedAdapter::Local(Words) {
  bus_.SetRemote(settings_.Address, false);
  return {};
}

std::string ServedAdapter::Lockout(Words) {
  bus_.SetRemote(settings_.Address, true);
  return {};
}

std::string ServedAdapter::Clear(Words) {
  bus_.ClearDevice(settings_.Address);
  return {};
}

/// The bench's instruments are triggered by their definitions' commands.
std::string ServedAdapter::Trigger(Words) {
  return {};
}

/// No instrument of the bench asks for service; one that is not there says nothing.
std::string ServedAdapter::SerialPoll(Words words) {
  const auto address = words.empty() ? settings_.Address : NumberIn(words.front(), 0, 30);
  if (!address || words.size() > 1) return kUnrecognized;
  return bus_.Bus().Listens(*address) ? Line(0) : std::string();
}

std::string ServedAdapter::ServiceRequest(Words) {
  return Line(0);
}

std::string ServedAdapter::Version(Words) {
  return "GPIB adapter of the simulated bench, version 1.0\r\n";
}

std::string ServedAdapter::Reset(Words) {
  settings_ = {};
  return {};
}

}  // namespace hylden
