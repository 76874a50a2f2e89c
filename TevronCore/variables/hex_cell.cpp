#include "variables/hex_cell.h"

#include <algorithm>
#include <charconv>

std::string_view WithoutHexPrefix(std::string_view text) {
  const bool prefixed = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
  return prefixed ? text.substr(2) : text;
}

std::optional<std::vector<uint8_t>> HexPairs(std::string_view text) {
  std::vector<uint8_t> bytes;
  bytes.reserve((text.size() + 1) / 2);
  for (size_t i = 0; i < text.size(); i += 2) {
    const char* end = text.data() + std::min(i + 2, text.size());
    uint8_t byte = 0;
    const auto [stop, error] = std::from_chars(text.data() + i, end, byte, 16);
    if (error != std::errc() || stop != end) {
      return std::nullopt;
    }
    bytes.push_back(byte);
  }
  return bytes;
}

std::optional<std::vector<uint8_t>> PayloadOfCell(std::string_view cell) {
  return HexPairs(cell.size() >= 4 ? WithoutHexPrefix(cell) : cell);
}
