#pragma once

#include "Wire/serial_stream.h"
#include "wire/wire_codec.h"

/// The frames of a serial line: "$LDCMD," with a one-byte length and "$LDOTA," with a 16-bit one.
/// A request whose checksum or terminator is wrong is no request: a device stays silent then.
class SerialCodec : public WireCodec {
 public:
  /// Uses a long frame when the request came in one or the payload does not fit a short one.
  std::vector<uint8_t> Encode(const DeviceReply& reply) const override;
  /// A point-cloud frame of a version to come: the only frame that names its version.
  std::vector<uint8_t> EncodeForeign(const DeviceReply& reply) const override;
  size_t HeaderSize(const std::vector<uint8_t>& frame) const override;
  void Damage(std::vector<uint8_t>* frame) const override;
  /// The checksum stays right, so that only the length gives the lie away.
  void OverstateLength(std::vector<uint8_t>* frame) const override;

 protected:
  std::vector<DeviceRequest> Collect(const uint8_t* data, size_t size) override;
  void Forget() override { stream_.Clear(); }

 private:
  kavel::lidar::SerialStream stream_{kavel::lidar::SerialListener::kDevice};
};
