#include "CmxClient/hex_text.h"

namespace kavel::lidar {

std::string HexText(const uint8_t* data, size_t size) {
  static constexpr char kDigits[] = "0123456789abcdef";
  if (size == 0) {
    return {};
  }
  std::string text(3 * size - 1, ' ');
  for (size_t i = 0; i < size; ++i) {
    text[3 * i] = kDigits[data[i] >> 4];
    text[3 * i + 1] = kDigits[data[i] & 0x0F];
  }
  return text;
}

std::string HexText(const std::vector<uint8_t>& bytes) {
  return HexText(bytes.data(), bytes.size());
}

}  // namespace kavel::lidar
