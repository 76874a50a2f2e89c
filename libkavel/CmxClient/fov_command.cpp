#include "CmxClient/fov_command.h"

#include <algorithm>

#include "Wire/big_endian.h"

namespace kavel::lidar {
namespace {

constexpr size_t kFirstAngleAt = 2;

}  // namespace

std::vector<uint8_t> BuildFovTable(const std::array<float, 10>& degrees, uint8_t count,
                                   uint8_t mode) {
  std::vector<uint8_t> payload{mode, count};
  payload.reserve(kFovPayloadSize);
  for (const float angle : degrees) {
    AppendBigEndian32(payload, BitsOf(angle));
  }
  return payload;
}

int32_t SendFovTable(CommandSender& sender, const std::array<float, 10>& degrees, uint8_t count,
                     uint8_t mode, int32_t* error) {
  std::vector<uint8_t> unused_answer;
  return sender.QueryCommand(BuildFovTable(degrees, count, mode), unused_answer, kFovCommand, false,
                             error);
}

bool ParseFovTable(const std::vector<uint8_t>& payload, std::array<float, 10>* degrees,
                   uint8_t* mode) {
  if (payload.size() != kFovPayloadSize || payload[1] != kFovPairs) {
    return false;
  }
  *mode = payload[0];
  const uint8_t* angle_bytes = payload.data() + kFirstAngleAt;
  for (float& angle : *degrees) {
    angle = FloatOf(ReadBigEndian32(angle_bytes));
    angle_bytes += sizeof(uint32_t);
  }
  return true;
}

bool IsValidFovTable(const std::vector<uint8_t>& payload) {
  std::array<float, 10> degrees = {};
  uint8_t mode = 0;
  return ParseFovTable(payload, &degrees, &mode) &&
         std::all_of(degrees.begin(), degrees.end(),
                     [](float angle) { return angle >= 0 && angle <= 360; });
}

}  // namespace kavel::lidar
