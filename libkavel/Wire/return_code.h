#pragma once

#include <cstdint>

namespace kavel::lidar {

/// The return code of an answer: 0, or why the lidar refuses. A refusal has no payload. Other codes
/// are a device's own.
enum ReturnCode : uint8_t {
  kAccepted = 0,
  kUnknownCommand = 1,
  kBadLength = 2,
  kBadValue = 3,
  kNotAllowedNow = 4,
  kAuthenticationRequired = 5,
};

}  // namespace kavel::lidar
