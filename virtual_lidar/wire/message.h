#pragma once

#include <cstdint>
#include <vector>

#include "Wire/return_code.h"

using kavel::lidar::kAccepted;
using kavel::lidar::kAuthenticationRequired;
using kavel::lidar::kBadImage;
using kavel::lidar::kBadLength;
using kavel::lidar::kBadValue;
using kavel::lidar::kDamagedPiece;
using kavel::lidar::kForeignImage;
using kavel::lidar::kNotAllowedNow;
using kavel::lidar::kOutOfOrder;
using kavel::lidar::kUnknownCommand;

/// One command as it arrived, whatever frame carried it.
struct DeviceRequest {
  uint8_t code = 0;
  std::vector<uint8_t> payload;
  /// The bytes on the wire, for a line that echoes.
  std::vector<uint8_t> frame;
  bool serial_line = false;
  /// It came in a frame with a 16-bit length (serial lines only); the answer travels the same way.
  bool long_frame = false;
  /// The number of a long frame, which its answer repeats.
  uint8_t number = 0;
  /// The frame announced more bytes than the device takes; the payload is empty.
  bool oversized = false;
  /// Tells one client from another, and from the one that had the port before it.
  uint32_t client = 0;
};

/// What happens to the link once a request has been dealt with.
enum class Aftermath {
  kNone,
  kHangUpUnanswered,  ///< the link drops before the answer leaves
  kRestart,           ///< the answer leaves, then every link drops and the device comes back later
  kNoAnswer,          ///< nothing leaves
  kPowerCycle,        ///< as kRestart, at once and without an answer
};

struct DeviceReply {
  uint8_t code = 0;
  uint8_t return_code = kAccepted;
  std::vector<uint8_t> payload;
  Aftermath aftermath = Aftermath::kNone;
  bool long_frame = false;
  uint8_t number = 0;
};
