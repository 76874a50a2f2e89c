#include "fuzz/serial_bytes.h"

#include "Wire/ota_stream.h"
#include "Wire/serial_frame.h"
#include "Wire/serial_stream.h"

using namespace kavel::lidar;

namespace {

// The low four bits of the byte in front of a piece; all others are noise.
enum Piece : uint8_t {
  kNoise,
  kShortAnswer,
  kShortRequest,
  kLongAnswer,
  kLongRequest,
  kPointCloud,
  kInnerOfTheDevice,
};
// What becomes of it.
constexpr uint8_t kCut = 0x40;
constexpr uint8_t kDamaged = 0x80;

Bytes Frame(uint8_t piece, uint8_t a, uint8_t b, const Bytes& payload) {
  switch (piece) {
    case kShortAnswer:
      return BuildSerialAnswer(a, b, payload);
    case kShortRequest:
      return BuildSerialFrame(a, payload);
    case kLongAnswer:
      return BuildOtaFrame(OtaAnswer{a, b, 0, payload});
    case kLongRequest:
      return BuildOtaFrame(OtaRequest{a, b, payload});
    case kPointCloud:
      return BuildPointCloudFrame(payload);
    default:
      return BuildSerialResponse(payload);
  }
}

}  // namespace

Bytes SerialBytes(FuzzInput* input, size_t most) {
  Bytes bytes;
  while (!input->empty() && bytes.size() < most) {
    const uint8_t how = input->Byte();
    const uint8_t piece = how & 0x0F;
    Bytes next;
    if (piece == kNoise || piece > kInnerOfTheDevice) {
      next = input->Block(input->Byte());
    } else {
      const uint8_t a = input->Byte();
      const uint8_t b = input->Byte();
      next = Frame(piece, a, b, input->Block(input->Byte()));
    }
    if ((how & kCut) != 0) {
      next.resize(next.size() - std::min<size_t>(next.size(), input->Byte()));
    }
    if ((how & kDamaged) != 0 && !next.empty()) {
      next[input->Byte() % next.size()] ^= 0xFF;
    }
    bytes.insert(bytes.end(), next.begin(), next.end());
  }
  bytes.resize(std::min(bytes.size(), most));
  return bytes;
}
