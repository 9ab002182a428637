#include "platform/BusEvent.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "platform/GpibStatus.h"

namespace hylden {

namespace {

std::string TimeText(double secondsSinceMidnight) {
  const auto milliseconds = static_cast<std::int64_t>(std::floor(secondsSinceMidnight * 1000));
  const auto part = [&](std::int64_t unit, std::int64_t count) {
    return static_cast<int>(milliseconds / unit % count);
  };
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%02d:%02d:%02d.%03d", part(3'600'000, 24), part(60'000, 60), part(1000, 60),
                part(1, 1000));
  return text.data();
}

const char* Direction(BusCall call) {
  if (call == BusCall::Send) return "->";
  return call == BusCall::Receive ? "<-" : "--";
}

std::string AddressText(int address) {
  if (address == BusEvent::kNoAddress) return "  ";
  const std::string text = std::to_string(address);
  return text.size() < 2 ? " " + text : text;
}

/// The time limits that a driver knows by number.
std::string TimeLimitText(int code) {
  constexpr const char* kLimits[] = {"none", "10 us", "30 us", "100 us", "300 us", "1 ms",
                                     "3 ms", "10 ms", "30 ms", "100 ms", "300 ms", "1 s",
                                     "3 s",  "10 s",  "30 s",  "100 s",  "300 s",  "1000 s"};
  const bool known = code >= 0 && code < static_cast<int>(std::size(kLimits));
  return known ? kLimits[code] : "code " + std::to_string(code);
}

std::string With(const std::string& verb, const std::string& addresses) {
  return addresses.empty() ? verb : verb + " " + addresses;
}

std::string Words(const BusEvent& event) {
  switch (event.Call) {
    case BusCall::Register:
      return "register: " + std::to_string(event.Argument);
    case BusCall::Unregister:
      return "unregister: " + std::to_string(event.Argument);
    case BusCall::Clear:
      return "interface clear";
    case BusCall::Find:
      return With("find", event.Bytes) + (event.Failed() ? "" : ": " + (event.Found.empty() ? "none" : event.Found));
    case BusCall::Remote:
      return With("remote", event.Bytes);
    case BusCall::Local:
      return With("local", event.Bytes);
    case BusCall::TimeLimit:
      return "time limit " + TimeLimitText(event.Argument);
    case BusCall::Note:
      return "note: " + event.Bytes;
    default:
      return TransferText(event);
  }
}

}  // namespace

std::string QuotedBytes(std::string_view bytes) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string text = "\"";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\r') {
      text += "\\r";
    } else if (c == '\n') {
      text += "\\n";
    } else if (c == '\t') {
      text += "\\t";
    } else if (c == '\\' || c == '"') {
      text += {'\\', c};
    } else if (byte < 32 || byte > 126) {
      text += {'\\', 'x', kHex[byte >> 4], kHex[byte & 15]};
    } else {
      text += c;
    }
  }
  return text + '"';
}

std::string TransferText(const BusEvent& event) {
  std::string text = QuotedBytes(event.Bytes) + (event.Bytes.size() < event.Count ? "... " : " ");
  text += std::to_string(event.Count);
  if (event.Call == BusCall::Send && event.Argument == gpib::kDabEnd && !event.Failed()) text += " EOI";
  // A read that ends at a byte can't tell whether EOI came with it.
  if (event.Call == BusCall::Receive && (event.Status.status & gpib::kEnd) != 0)
    text += event.Argument == gpib::kStopEnd ? " EOI" : " END";
  return text;
}

std::string LineOf(const BusEvent& event) {
  std::string line = TimeText(event.SecondsSinceMidnight) + " " + Direction(event.Call) + " " +
                     AddressText(event.Address) + " " + Words(event);
  if (event.Call == BusCall::Note) return line;
  if (event.Failed()) line += " " + GpibMnemonics(event.Status);
  return line + ", " + std::to_string(event.DurationMs) + " ms";
}

}  // namespace hylden
