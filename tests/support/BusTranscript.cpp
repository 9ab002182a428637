#include "support/BusTranscript.h"

#include <utility>

namespace hylden {

std::string Escaped(std::string_view bytes) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\r') {
      text += "\\r";
    } else if (c == '\n') {
      text += "\\n";
    } else if (c == '\t') {
      text += "\\t";
    } else if (byte < 32 || byte > 126) {
      text += {'\\', 'x', kHex[byte >> 4], kHex[byte & 15]};
    } else {
      text += c;
    }
  }
  return text;
}

std::vector<std::int16_t> ListedAddresses(std::span<const std::int16_t> addresses) {
  std::vector<std::int16_t> listed;
  for (const std::int16_t address : addresses) {
    if (address == gpib::kNoAddr) break;
    listed.push_back(address);
  }
  if (listed.size() > 1 && listed.front() == 0) listed.erase(listed.begin());
  return listed;
}

std::string AddressLine(std::string_view verb, std::span<const std::int16_t> addresses) {
  std::string line(verb);
  for (const std::int16_t address : ListedAddresses(addresses)) line.append(" ").append(std::to_string(address));
  return line;
}

void BusTranscript::Add(std::string line, const GpibStatusCells* cells) {
  if (cells && (cells->status & gpib::kErr)) line += " !" + std::to_string(cells->error);
  lines_.push_back(std::move(line));
  if (onLine) onLine(std::string(lines_.back()));
}

std::vector<std::string> BusTranscript::SentTo(int address) const {
  const std::string head = "> " + std::to_string(address) + " ";
  std::vector<std::string> sent;
  for (const std::string& line : lines_) {
    if (line.starts_with(head)) sent.push_back(line.substr(head.size()));
  }
  return sent;
}

std::vector<std::string> BusTranscript::Take() {
  return std::exchange(lines_, {});
}

void SetSuccess(GpibStatusCells* cells, std::size_t count, int extraBits) {
  if (!cells) return;
  cells->status = gpib::kCmpl | gpib::kCic | extraBits;
  cells->error = 0;
  cells->count = cells->longCount = static_cast<std::int32_t>(count);
}

void SetFailure(GpibStatusCells* cells, int error, int extraBits) {
  if (!cells) return;
  cells->status = gpib::kErr | gpib::kCmpl | gpib::kCic | extraBits;
  cells->error = error;
  cells->count = cells->longCount = 0;
}

}  // namespace hylden
