#include "CmxClient/cmx_parser.h"
#include "Wire/cmx_header.h"
#include "Wire/file_piece.h"
#include "fuzz/fuzz_targets.h"
#include "wire/cmx_codec.h"

using namespace kavel::lidar;

namespace {

void CheckEncoding(uint8_t version, uint8_t cmd, const Bytes& payload) {
  CmxParser parser(version);
  Bytes frame;
  Require(parser.CmxEncode(payload, frame, cmd), "a payload is encoded");
  const CmxHeaderLayout& layout = *CmxHeaderOf(version);
  Require(frame.size() == layout.size + payload.size(), "header and payload make the frame");
  Require(parser.GetCmd() == cmd && parser.GetReturnCode() == 0 &&
              parser.GetPayloadLen() == payload.size(),
          "the header tells what was encoded");

  CmxCodec device(version);
  const auto requests = device.Feed(frame.data(), frame.size(), {});
  Require(requests.size() == 1 && requests[0].code == cmd && requests[0].payload == payload &&
              requests[0].frame == frame,
          "the device reads what was encoded");
}

// Any bytes, as a device receives them: whatever it takes for a request stands in them.
void CheckDecoding(uint8_t version, size_t portion, const Bytes& bytes) {
  CmxCodec whole(version);
  CmxCodec cut(version);
  const auto requests = whole.Feed(bytes.data(), bytes.size(), {});
  size_t found = 0;
  for (size_t at = 0; at < bytes.size(); at += portion) {
    const size_t size = std::min(portion, bytes.size() - at);
    for (const DeviceRequest& request : cut.Feed(bytes.data() + at, size, {})) {
      Require(found < requests.size() && request.code == requests[found].code &&
                  request.payload == requests[found].payload,
              "a cut stream holds the same requests");
      ++found;
    }
  }
  Require(found == requests.size(), "a cut stream holds all requests");
  for (const DeviceRequest& request : requests) {
    Require(request.payload.size() <= CmxCodec::kMaxRequestPayload, "a request is bounded");
    Require(std::search(bytes.begin(), bytes.end(), request.frame.begin(), request.frame.end()) !=
                bytes.end(),
            "a request was received");
  }
}

void CheckPieces(uint8_t cmd, const Bytes& file) {
  std::vector<Bytes> frames;
  Require(CmxParser(1).CmxFilestreamSend(file, frames, cmd), "a file is cut into pieces");
  Bytes joined;
  for (const Bytes& frame : frames) {
    FilePiece piece;
    const Bytes payload(frame.begin() + kCmxHeader1.size, frame.end());
    Require(ParseFilePiece(payload, &piece) == kAccepted, "a piece is one");
    joined.insert(joined.end(), piece.data, piece.data + piece.size);
    Require(piece.count == frames.size(), "a piece knows how many there are");
  }
  Require(joined == file, "the pieces make the file");
}

void CheckSlice(uint8_t version, uint8_t cmd, const Bytes& data, int32_t start, int32_t length) {
  Bytes slice = {0xAB};
  if (CmxParser(version).CmxStreamDecode(cmd, 0, data, start, length, slice) && version == 1) {
    Require(start >= 0 && slice.size() == static_cast<size_t>(length) &&
                std::equal(slice.begin(), slice.end(), data.begin() + start),
            "a slice is what it was cut from");
  }
}

}  // namespace

void FuzzCmxCodec(FuzzInput input) {
  const uint8_t version = input.Byte() % 2 + 1;
  const uint8_t cmd = input.Byte();
  const size_t portion = input.Byte() + size_t{1};
  const auto start = static_cast<int16_t>(input.Number16());
  const auto length = static_cast<int16_t>(input.Number16());
  const Bytes bytes = input.Rest();
  CheckEncoding(version, cmd, bytes);
  CheckDecoding(version, portion, bytes);
  CheckPieces(cmd, bytes);
  CheckSlice(version, cmd, bytes, start * (cmd == 0xFE ? 0x10000 : 1), length);
  FilePiece piece;
  if (ParseFilePiece(bytes, &piece) == kAccepted) {
    Require(piece.data >= bytes.data() && piece.data + piece.size <= bytes.data() + bytes.size(),
            "a piece lies in its payload");
  }
}
