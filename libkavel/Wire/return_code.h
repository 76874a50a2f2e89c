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
  kOutOfOrder = 6,    ///< a piece that does not follow, or of a transfer that was not begun
  kDamagedPiece = 7,  ///< the checksum of a piece is wrong
  kForeignImage = 8,  ///< an image for another model, or no image at all
  kBadImage = 9,      ///< the length or the checksum of the whole image is wrong
};

/// What the code says, in a few words; "" for a device's own.
const char* ReturnCodeMeaning(int32_t code);

}  // namespace kavel::lidar
