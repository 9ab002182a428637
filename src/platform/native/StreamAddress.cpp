#include "platform/native/StreamAddress.h"

#include <charconv>

#include "platform/native/SerialStream.h"
#include "platform/native/TcpStream.h"

namespace hylden {

namespace {

std::optional<int> WholeNumber(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number <= 0) return std::nullopt;
  return number;
}

std::optional<HostPort> WithPort(std::string_view host, std::string_view behind, int usualPort) {
  if (host.empty()) return std::nullopt;
  if (behind.empty()) return HostPort{std::string(host), usualPort};
  const auto port = WholeNumber(behind.substr(1));
  if (behind.front() != ':' || !port || *port > 65535) return std::nullopt;
  return HostPort{std::string(host), *port};
}

ParsedStream ParseTcp(std::string_view place, int usualPort) {
  const auto found = ParseHostPort(place, usualPort);
  if (!found)
    return {nullptr, "\"tcp:" + std::string(place) +
                         "\" is no address: tcp:HOST or tcp:HOST:PORT is, with an IPv6 address in brackets."};
  return {std::make_unique<TcpStream>(found->Host, found->Port), {}};
}

ParsedStream ParseSerial(std::string_view place) {
  const std::size_t comma = place.find(',');
  const std::string device(place.substr(0, comma));
  if (device.empty()) return {nullptr, "\"serial:\" needs a device, as in serial:/dev/ttyUSB0,115200."};
  if (comma == std::string_view::npos) return {std::make_unique<SerialStream>(device), {}};
  const int baud = WholeNumber(place.substr(comma + 1)).value_or(0);
  const std::string fault = SerialStream::BaudFault(baud);
  if (!fault.empty()) return {nullptr, "\"serial:" + std::string(place) + "\": " + fault};
  return {std::make_unique<SerialStream>(device, baud), {}};
}

}  // namespace

std::optional<HostPort> ParseHostPort(std::string_view text, int usualPort) {
  if (text.starts_with('[')) {
    const std::size_t end = text.find(']');
    if (end == std::string_view::npos) return std::nullopt;
    return WithPort(text.substr(1, end - 1), text.substr(end + 1), usualPort);
  }
  const std::size_t colon = text.find(':');
  const std::string_view behind = colon == std::string_view::npos ? std::string_view() : text.substr(colon);
  return WithPort(text.substr(0, colon), behind, usualPort);
}

ParsedStream ParseStream(std::string_view address, int usualPort) {
  constexpr std::string_view kTcp = "tcp:", kSerial = "serial:";
  if (address.starts_with(kTcp)) return ParseTcp(address.substr(kTcp.size()), usualPort);
  if (address.starts_with(kSerial)) return ParseSerial(address.substr(kSerial.size()));
  return {nullptr, "\"" + std::string(address) + "\" is no stream: it begins with tcp: or serial:."};
}

}  // namespace hylden
