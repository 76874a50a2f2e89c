#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kavel::lidar {

/// Bytes as people read them: lower-case pairs with one blank between ("47 74 2a"), "" for none.
std::string HexText(const uint8_t* data, size_t size);
std::string HexText(const std::vector<uint8_t>& bytes);

}  // namespace kavel::lidar
