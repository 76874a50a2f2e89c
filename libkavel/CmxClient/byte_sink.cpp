#include "CmxClient/byte_sink.h"

#include "CmxClient/hex_text.h"

namespace kavel::lidar {

std::string SentLine(const std::vector<uint8_t>& frame) { return "SEND: " + HexText(frame); }

std::string ReceivedLine(const std::vector<uint8_t>& bytes) { return "RECV: " + HexText(bytes); }

std::string FailedLine(int32_t error) { return "RECV: ret_code is " + std::to_string(error); }

}  // namespace kavel::lidar
