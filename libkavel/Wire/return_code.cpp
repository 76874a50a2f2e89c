#include "Wire/return_code.h"

namespace kavel::lidar {

const char* ReturnCodeMeaning(int32_t code) {
  switch (code) {
    case kUnknownCommand:
      return "unknown command";
    case kBadLength:
      return "wrong length";
    case kBadValue:
      return "value out of range";
    case kNotAllowedNow:
      return "not allowed now";
    case kAuthenticationRequired:
      return "authentication required";
    case kOutOfOrder:
      return "a piece of the firmware does not follow, or none was expected";
    case kDamagedPiece:
      return "a piece of the firmware arrived damaged";
    case kForeignImage:
      return "this is no firmware for this lidar";
    case kBadImage:
      return "the firmware did not arrive whole";
    default:
      return "";
  }
}

}  // namespace kavel::lidar
