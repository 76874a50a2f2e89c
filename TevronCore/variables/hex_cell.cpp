#include "variables/hex_cell.h"

#include "variables/number_text.h"

std::optional<std::vector<uint8_t>> HexPairs(std::string_view text) {
  std::vector<uint8_t> bytes;
  bytes.reserve((text.size() + 1) / 2);
  for (size_t i = 0; i < text.size(); i += 2) {
    const auto byte = WholeNumber<uint8_t>(text.substr(i, 2), 16);
    if (!byte) {
      return std::nullopt;
    }
    bytes.push_back(*byte);
  }
  return bytes;
}

std::optional<std::vector<uint8_t>> PayloadOfCell(std::string_view cell) {
  return HexPairs(cell.size() >= 4 ? WithoutHexPrefix(cell) : cell);
}
