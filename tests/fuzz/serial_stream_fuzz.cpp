#include "Wire/ota_stream.h"
#include "Wire/serial_frame.h"
#include "Wire/serial_stream.h"
#include "fuzz/fuzz_targets.h"
#include "fuzz/serial_bytes.h"

using namespace kavel::lidar;

namespace {

using Kind = SerialStreamFrame::Kind;

constexpr size_t kMostBytes = 65536;  // of more than fits at once, some may be given up

/// Everything that a stream says of some bytes.
struct Account {
  std::vector<SerialStreamFrame> frames;
  size_t framed_bytes = 0;
  uint64_t skipped = 0;
  size_t held = 0;
};

Account Search(SerialListener listener, const Bytes& bytes, size_t portion) {
  SerialStream stream(listener);
  Account account;
  for (size_t at = 0; at < bytes.size(); at += portion) {
    stream.Append(bytes.data() + at, std::min(portion, bytes.size() - at));
    while (auto frame = stream.Next()) {
      account.framed_bytes += frame->bytes.size();
      account.frames.push_back(std::move(*frame));
    }
    Require(stream.held() <= SerialStream::kMaxHeld, "what is held is bounded");
    Require(stream.Rest().size() <= stream.held() + SerialStream::kMaxSkippedKept,
            "what is kept of the rest is bounded");
    Require(stream.PendingLongFrame() <= kOtaMaxPayload + kOtaRequestOverhead + 1,
            "a long frame that is awaited is bounded");
  }
  account.skipped = stream.skipped_bytes();
  account.held = stream.held();
  while (stream.GiveUp()) {  // as when the line has gone silent
    stream.Next();
  }
  return account;
}

template <typename Message>
void CheckLong(const Bytes& frame, bool sound) {
  Message message;
  Require(ParseOtaFrame(frame, &message) || !sound, "a sound long frame is one");
  if (ParseOtaFrame(frame, &message)) {
    Require(BuildOtaFrame(message) == frame, "a long frame is built as it was read");
  }
}

void CheckShortAnswer(const Bytes& frame, bool sound) {
  Bytes inner;
  Require(ParseSerialResponse(frame, inner) == sound, "a sound answer can be read");
  if (sound) {
    Bytes again;
    Require(ParseSerialResponse(BuildSerialResponse(inner), again) && again == inner,
            "an answer is built as it was read");
  }
}

void CheckShortRequest(const Bytes& frame, bool sound) {
  uint8_t cmd = 0;
  Bytes payload;
  Require(ParseSerialRequest(frame, &cmd, &payload) == sound, "a sound request can be read");
  if (sound) {
    uint8_t cmd_again = 0;
    Bytes again;
    Require(ParseSerialRequest(BuildSerialFrame(cmd, payload), &cmd_again, &again) &&
                cmd_again == cmd && again == payload,
            "a request is built as it was read");
  }
}

void CheckFrame(SerialListener listener, const SerialStreamFrame& frame) {
  const bool for_tool = listener == SerialListener::kTool;
  if (frame.kind == Kind::kLong) {
    for_tool ? CheckLong<OtaAnswer>(frame.bytes, false) : CheckLong<OtaRequest>(frame.bytes, false);
  } else if (frame.kind == Kind::kCommand) {
    for_tool ? CheckShortAnswer(frame.bytes, frame.sound)
             : CheckShortRequest(frame.bytes, frame.sound);
  } else {
    Require(frame.sound && frame.bytes.size() <=
                               kPointCloudDataOffset + kPointCloudMaxData + kPointCloudTailSize,
            "a point-cloud frame is sound and bounded");
  }
}

}  // namespace

void FuzzSerialStream(FuzzInput input) {
  const auto listener = (input.Byte() & 1) != 0 ? SerialListener::kDevice : SerialListener::kTool;
  const size_t portion = input.Byte() + size_t{1};
  const Bytes bytes = SerialBytes(&input, kMostBytes);
  const Account whole = Search(listener, bytes, bytes.size());
  const Account cut = Search(listener, bytes, portion);
  for (const SerialStreamFrame& frame : whole.frames) {
    CheckFrame(listener, frame);
  }
  Require(whole.framed_bytes + whole.skipped + whole.held == bytes.size(),
          "every byte is in a frame, skipped or held");
  Require(cut.skipped == whole.skipped && cut.held == whole.held &&
              cut.framed_bytes == whole.framed_bytes && cut.frames.size() == whole.frames.size(),
          "a cut stream holds the same frames");
  Bytes inner;
  if (ParseSerialResponse(bytes, inner, kSerialTailFirmware)) {
    Bytes again;
    Require(ParseSerialResponse(BuildSerialResponse(inner, kSerialTailFirmware), again,
                                kSerialTailFirmware) &&
                again == inner,
            "an answer of the other tail is built as it was read");
  }
}
