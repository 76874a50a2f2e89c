#pragma once

#include <cstdint>

#include "Wire/cmx_header.h"
#include "wire/wire_codec.h"

/// CMX frames as they travel over TCP, version 1.0 (header of 8 bytes) or 2.0 (12 bytes).
class CmxCodec : public WireCodec {
 public:
  /// The longest request payload that the device takes, in bytes. A frame that announces more
  /// comes out as an oversized request, and reading goes on behind its header.
  static constexpr uint32_t kMaxRequestPayload = 64 * 1024;

  /// `version` is 1 or 2.
  explicit CmxCodec(int version)
      : layout_(version == 2 ? kavel::lidar::kCmxHeader2 : kavel::lidar::kCmxHeader1) {}

  std::vector<uint8_t> Encode(const DeviceReply& reply) const override;
  std::vector<uint8_t> EncodeForeign(const DeviceReply& reply) const override;
  size_t HeaderSize(const std::vector<uint8_t>&) const override { return layout_.size; }
  void Damage(std::vector<uint8_t>* frame) const override;
  void OverstateLength(std::vector<uint8_t>* frame) const override;

 protected:
  std::vector<DeviceRequest> Collect(const uint8_t* data, size_t size) override;
  void Forget() override { waiting_.clear(); }

 private:
  /// Takes one request, or skips what can be none, at the head of the bytes.
  /// Returns how many bytes are done with; 0 when more bytes have to come first.
  size_t Take(const uint8_t* data, size_t size, std::vector<DeviceRequest>* requests) const;

  const kavel::lidar::CmxHeaderLayout& layout_;
  std::vector<uint8_t> waiting_;
};
