#pragma once

#include <cstdint>
#include <string>

namespace kavel::lidar {

/// Reads four decimal numbers of 0 to 255 between dots, without leading zeros, signs or blanks,
/// into four bytes in network order. False, with the bytes untouched, for any other text.
bool ParseDottedIpv4(const std::string& text, uint8_t* octets);

/// The dotted text of four bytes in network order.
std::string DottedIpv4(const uint8_t* octets);

}  // namespace kavel::lidar
