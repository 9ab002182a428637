#include "run/JournalText.h"

#include <array>
#include <cstdio>

namespace hylden {

namespace {

constexpr std::size_t kSealLength = 10;

constexpr std::array<std::uint32_t, 256> CrcTable() {
  constexpr std::uint32_t kPolynomial = 0xEDB88320;
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
    std::uint32_t rest = byte;
    for (int bit = 0; bit < 8; ++bit) rest = (rest & 1) != 0 ? (rest >> 1) ^ kPolynomial : rest >> 1;
    table[byte] = rest;
  }
  return table;
}

std::string SealOf(std::string_view text) {
  std::array<char, kSealLength + 1> seal{};
  std::snprintf(seal.data(), seal.size(), " *%08X", static_cast<unsigned>(Crc32(text)));
  return seal.data();
}

}  // namespace

std::uint32_t Crc32(std::string_view bytes) {
  static constexpr std::array<std::uint32_t, 256> kTable = CrcTable();
  std::uint32_t rest = 0xFFFFFFFF;
  for (const char c : bytes) rest = kTable[(rest ^ static_cast<unsigned char>(c)) & 0xFF] ^ (rest >> 8);
  return ~rest;
}

std::string SealedLine(std::string_view text) {
  return std::string(text).append(SealOf(text)).append("\r\n");
}

std::optional<std::string> UnsealedLine(std::string_view line) {
  if (line.size() < kSealLength) return std::nullopt;
  const std::string_view text = line.substr(0, line.size() - kSealLength);
  if (line.substr(text.size()) != SealOf(text)) return std::nullopt;
  return std::string(text);
}

}  // namespace hylden
