#include "Platform/ipv4_text.h"

#include <cstring>

#include "Platform/socket.h"

namespace kavel::lidar {

bool ParseDottedIpv4(const std::string& text, uint8_t* octets) {
  sockaddr_in address{};
  // A text with a zero byte inside would be read up to it.
  if (text.find('\0') != std::string::npos || !MakeAddress(text, 0, &address)) {
    return false;
  }
  std::memcpy(octets, &address.sin_addr, 4);
  return true;
}

std::string DottedIpv4(const uint8_t* octets) {
  std::string text = std::to_string(octets[0]);
  for (int i = 1; i < 4; ++i) {
    text += '.' + std::to_string(octets[i]);
  }
  return text;
}

}  // namespace kavel::lidar
