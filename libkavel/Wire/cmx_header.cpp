#include "Wire/cmx_header.h"

#include <algorithm>
#include <array>

#include "Wire/big_endian.h"

namespace kavel::lidar {

const CmxHeaderLayout* CmxHeaderOf(uint8_t protocol_version) {
  switch (protocol_version) {
    case 1:
      return &kCmxHeader1;
    case 2:
      return &kCmxHeader2;
    default:
      return nullptr;
  }
}

std::vector<uint8_t> BuildCmxFrame(const CmxHeaderLayout& layout, uint8_t cmd, uint8_t return_code,
                                   const std::vector<uint8_t>& payload) {
  std::vector<uint8_t> frame;
  frame.reserve(layout.size + payload.size());
  frame.resize(layout.size);
  frame[0] = layout.identifier_1;
  frame[1] = layout.identifier_2;
  frame[2] = layout.fixed_byte_2;
  frame[layout.command_at] = cmd;
  frame[layout.return_code_at] = return_code;
  WriteBigEndian32(frame.data() + layout.payload_length_at, static_cast<uint32_t>(payload.size()));
  frame.insert(frame.end(), payload.begin(), payload.end());
  return frame;
}

const uint8_t* FindCmxHeader(const CmxHeaderLayout& layout, const uint8_t* begin,
                             const uint8_t* end) {
  const std::array<uint8_t, 2> identifier = {layout.identifier_1, layout.identifier_2};
  const uint8_t* found = std::search(begin, end, identifier.begin(), identifier.end());
  const bool ends_with_half = found == end && begin != end && end[-1] == layout.identifier_1;
  return ends_with_half ? end - 1 : found;
}

}  // namespace kavel::lidar
