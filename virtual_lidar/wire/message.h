#pragma once

#include <cstdint>
#include <vector>

/// One command as it arrived, whatever frame carried it.
struct DeviceRequest {
  uint8_t code = 0;
  std::vector<uint8_t> payload;
  /// It came in a frame with a 16-bit length (serial lines only); the answer travels the same way.
  bool long_frame = false;
  /// The frame announced more bytes than the device takes; the payload is empty.
  bool oversized = false;
};

/// Return codes of a refusal; 0 is success.
enum ReturnCode : uint8_t {
  kAccepted = 0,
  kUnknownCommand = 1,
  kBadLength = 2,
  kBadValue = 3,
  kNotAllowedNow = 4,
  kAuthenticationRequired = 5,
};

/// What happens to the link once a request has been dealt with.
enum class Aftermath {
  kNone,
  kHangUpUnanswered,  ///< the link drops before the answer leaves
  kRestart,           ///< the answer leaves, then every link drops and the device comes back later
};

struct DeviceReply {
  uint8_t code = 0;
  uint8_t return_code = kAccepted;
  std::vector<uint8_t> payload;
  Aftermath aftermath = Aftermath::kNone;
  bool long_frame = false;
};
