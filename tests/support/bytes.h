#pragma once

#include <cstdint>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

inline Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

/// "47742a" or "47 74 2a" as bytes.
inline Bytes FromHex(const std::string& text) {
  Bytes bytes;
  std::string pair;
  for (const char digit : text) {
    if (digit != ' ') {
      pair += digit;
    }
    if (pair.size() == 2) {
      bytes.push_back(static_cast<uint8_t>(std::stoul(pair, nullptr, 16)));
      pair.clear();
    }
  }
  return bytes;
}
