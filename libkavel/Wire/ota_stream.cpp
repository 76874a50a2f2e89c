#include "Wire/ota_stream.h"

#include <algorithm>
#include <initializer_list>

#include "Wire/big_endian.h"
#include "Wire/serial_frame.h"

namespace kavel::lidar {
namespace {

constexpr size_t kDirectionAt = kOtaPrefixSize + 2;
constexpr size_t kNumberAt = kDirectionAt + 1;
constexpr size_t kCommandAt = kNumberAt + 1;
constexpr size_t kReturnCodeAt = kCommandAt + 1;  // in an answer
constexpr size_t kTailSize = kSerialChecksumSize + kSerialTerminatorSize;

std::vector<uint8_t> Build(std::initializer_list<uint8_t> head,
                           const std::vector<uint8_t>& payload) {
  if (payload.size() > kOtaMaxPayload) {
    return {};
  }
  const size_t counted = head.size() + payload.size();
  std::vector<uint8_t> frame(std::begin(kOtaPrefix), std::end(kOtaPrefix));
  frame.reserve(counted + kOtaUncounted);
  AppendBigEndian16(frame, static_cast<uint16_t>(counted));
  frame.insert(frame.end(), head);
  frame.insert(frame.end(), payload.begin(), payload.end());
  AppendSerialTail(frame, kSerialTailFirmware);
  return frame;
}

bool IsWhole(const std::vector<uint8_t>& block) {
  if (block.size() <= kOtaUncounted || !IsOtaFrame(block)) {
    return false;
  }
  const size_t counted = ReadBigEndian16(block.data() + kOtaPrefixSize);
  if (block.size() != counted + kOtaUncounted) {
    return false;
  }
  const uint8_t* tail = block.data() + block.size() - kTailSize;
  return tail[4] == kSerialTerminator1 && tail[5] == kSerialTerminator2 &&
         ReadBigEndian32(tail) == SerialChecksum(block.data() + kOtaPrefixSize, counted + 2);
}

std::vector<uint8_t> PayloadFrom(const std::vector<uint8_t>& block, size_t from) {
  const auto begin = block.begin() + static_cast<std::ptrdiff_t>(from);
  return {begin, block.end() - static_cast<std::ptrdiff_t>(kTailSize)};
}

}  // namespace

bool IsOtaFrame(const std::vector<uint8_t>& block) {
  return block.size() >= kOtaPrefixSize &&
         std::equal(std::begin(kOtaPrefix), std::end(kOtaPrefix), block.begin());
}

std::optional<OtaDirection> OtaDirectionOf(const std::vector<uint8_t>& block) {
  if (!IsWhole(block)) {
    return std::nullopt;
  }
  const auto direction = static_cast<OtaDirection>(block[kDirectionAt]);
  const size_t head_end = direction == OtaDirection::kAnswer ? kReturnCodeAt + 1 : kCommandAt + 1;
  const bool is_known = direction == OtaDirection::kRequest || direction == OtaDirection::kAnswer;
  if (!is_known || block.size() < head_end + kTailSize) {
    return std::nullopt;
  }
  return direction;
}

std::vector<uint8_t> BuildOtaFrame(const OtaRequest& request) {
  return Build({static_cast<uint8_t>(OtaDirection::kRequest), request.number, request.cmd},
               request.payload);
}

std::vector<uint8_t> BuildOtaFrame(const OtaAnswer& answer) {
  return Build(
      {static_cast<uint8_t>(OtaDirection::kAnswer), answer.number, answer.cmd, answer.return_code},
      answer.payload);
}

bool ParseOtaFrame(const std::vector<uint8_t>& block, OtaRequest* request) {
  if (OtaDirectionOf(block) != OtaDirection::kRequest) {
    return false;
  }
  *request = {block[kNumberAt], block[kCommandAt], PayloadFrom(block, kCommandAt + 1)};
  return true;
}

bool ParseOtaFrame(const std::vector<uint8_t>& block, OtaAnswer* answer) {
  if (OtaDirectionOf(block) != OtaDirection::kAnswer) {
    return false;
  }
  *answer = {block[kNumberAt], block[kCommandAt], block[kReturnCodeAt],
             PayloadFrom(block, kReturnCodeAt + 1)};
  return true;
}

}  // namespace kavel::lidar
