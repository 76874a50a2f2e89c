#include "CmxClient/firmware_stream_client.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "CmxClient/command_sender.h"
#include "CmxClient/stream_window.h"
#include "Log/logger.h"
#include "Wire/ota_stream.h"
#include "Wire/return_code.h"

namespace kavel::lidar {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr uint64_t kBitTimesPerByte = 10;
constexpr uint64_t kAnswerBytes = kOtaUncounted + 8;
constexpr size_t kBytesPerKib = 1024;

class FirmwareStreamer {
 public:
  FirmwareStreamer(SerialClient& line, const std::vector<uint8_t>& image, uint8_t component,
                   std::atomic<int>* progress, milliseconds answer_time)
      : line_(line),
        image_(image),
        description_(DescribeImage(component, image)),
        progress_(progress),
        progress_before_(progress != nullptr ? progress->load() : 0),
        answer_time_(answer_time) {}

  int32_t Run(AfterImage then) {
    int32_t code = Ask(kCmdStreamBegin, BuildStreamBegin(description_));
    if (code == 0) {
      code = SendPieces();
    }
    return code == 0 ? End(then) : code;
  }

 private:
  int32_t Ask(uint8_t cmd, const std::vector<uint8_t>& payload);
  int32_t End(AfterImage then);
  int32_t SendPieces();
  int32_t SendPiece(StreamWindow& window, uint32_t number);
  int32_t TakeAnswer(StreamWindow& window, const OtaAnswer& answer);
  void Expire(StreamWindow& window, Clock::time_point now);
  void CountAcknowledged(uint32_t number);

  bool Send(uint8_t cmd, const std::vector<uint8_t>& payload, uint8_t* frame);
  void Settle(uint8_t frame);
  milliseconds LineTime() const;
  int32_t Broken() const;

  SerialClient::Lease line_;
  const std::vector<uint8_t>& image_;
  const StreamImage description_;
  std::atomic<int>* const progress_;
  const int progress_before_;
  const milliseconds answer_time_;
  size_t acknowledged_bytes_ = 0;
  bool is_repeated_ = false;  ///< the last request outside the window was sent more than once
  // Everything up to the last answer is through the line; the rest may still be on it.
  uint64_t sent_bytes_ = 0;
  uint64_t settled_bytes_ = 0;
  std::array<uint64_t, 256> sent_with_{};  ///< sent_bytes_ behind each frame
};

// One request outside the window. An answer to any of its sendings will do: the device takes a
// repeated one in the same way, and ahead of whatever is sent afterwards.
int32_t FirmwareStreamer::Ask(uint8_t cmd, const std::vector<uint8_t>& payload) {
  std::array<bool, 256> is_sending{};
  for (int sending = 0; sending < StreamWindow::kMaxSendings; ++sending) {
    uint8_t frame = kOtaUnnumbered;
    if (!Send(cmd, payload, &frame)) {
      return Broken();
    }
    is_sending[frame] = true;
    is_repeated_ = sending > 0;
    const Clock::time_point due = Clock::now() + LineTime() + answer_time_;
    OtaAnswer answer;
    while (Clock::now() < due && line_.Receive(&answer, due)) {
      Settle(answer.number);
      if (answer.cmd == cmd && is_sending[answer.number]) {
        return answer.return_code;
      }
    }
    if (!line_.IsOpen()) {
      return kNotConnected;
    }
    Settle(frame);
  }
  return kNoReply;
}

// A device that has restarted since the first sending knows of no image any more, which says
// nothing about what became of it.
int32_t FirmwareStreamer::End(AfterImage then) {
  const int32_t code = Ask(kCmdStreamEnd, BuildStreamEnd(description_, then));
  const bool knows_nothing = code == kNotAllowedNow || code == kOutOfOrder;
  return knows_nothing && is_repeated_ && then == AfterImage::kRestart ? kNoReply : code;
}

int32_t FirmwareStreamer::SendPieces() {
  StreamWindow window(StreamPieceCount(image_.size()));
  while (!window.Done()) {
    const uint32_t number = window.Next();
    OtaAnswer answer;
    int32_t code = 0;
    if (number != 0) {
      code = SendPiece(window, number);
    } else if (line_.Receive(&answer, window.NextDue())) {
      code = TakeAnswer(window, answer);
      Expire(window, Clock::now() - answer_time_);
    } else if (!line_.IsOpen()) {
      code = kNotConnected;
    } else {
      Expire(window, Clock::now());
    }
    if (code == 0) {
      code = window.failure();
    }
    if (code != 0) {
      return code;
    }
  }
  return 0;
}

void FirmwareStreamer::Expire(StreamWindow& window, Clock::time_point now) {
  for (const uint8_t frame : window.Expire(now)) {
    Settle(frame);
  }
}

int32_t FirmwareStreamer::SendPiece(StreamWindow& window, uint32_t number) {
  uint8_t frame = kOtaUnnumbered;
  if (!Send(kCmdStreamPiece, BuildStreamPiece(description_.component, image_, number), &frame)) {
    return Broken();
  }
  window.Sent(number, frame, Clock::now() + LineTime() + answer_time_);
  return 0;
}

int32_t FirmwareStreamer::TakeAnswer(StreamWindow& window, const OtaAnswer& answer) {
  // An answer to a transfer before this one may be on its way still.
  if (answer.cmd != kCmdStreamPiece || sent_with_[answer.number] == 0) {
    return 0;
  }
  Settle(answer.number);
  if (answer.return_code == kDamagedPiece) {
    window.Damaged(answer.number);
    return 0;
  }
  uint32_t number = 0;
  if (answer.return_code == kAccepted && ParseStreamAck(answer.payload, &number) &&
      window.Acknowledged(answer.number, number)) {
    CountAcknowledged(number);
  }
  return answer.return_code;
}

void FirmwareStreamer::CountAcknowledged(uint32_t number) {
  acknowledged_bytes_ += StreamPieceLength(image_.size(), number);
  if (progress_ != nullptr) {
    const size_t kib = (acknowledged_bytes_ + kBytesPerKib - 1) / kBytesPerKib;
    *progress_ = progress_before_ + static_cast<int>(kib);
  }
}

bool FirmwareStreamer::Send(uint8_t cmd, const std::vector<uint8_t>& payload, uint8_t* frame) {
  sent_bytes_ += payload.size() + kOtaRequestOverhead;
  const milliseconds stall = LineTime() + answer_time_;
  *frame = line_.Send(cmd, payload, static_cast<uint32_t>(stall.count()));
  if (*frame == kOtaUnnumbered) {
    return false;
  }
  sent_with_[*frame] = sent_bytes_;
  return true;
}

void FirmwareStreamer::Settle(uint8_t frame) {
  settled_bytes_ = std::max(settled_bytes_, sent_with_[frame]);
}

// How long the line needs for what may be on it, and for an answer.
milliseconds FirmwareStreamer::LineTime() const {
  constexpr uint64_t kMsPerS = 1000;
  const uint64_t there = (sent_bytes_ - settled_bytes_) * kBitTimesPerByte * kMsPerS;
  const uint64_t back = kAnswerBytes * kBitTimesPerByte * kMsPerS;
  return milliseconds(there / std::max<uint32_t>(line_.requests_bps(), 1) +
                      back / std::max<uint32_t>(line_.answers_bps(), 1));
}

int32_t FirmwareStreamer::Broken() const {
  return line_.IsOpen() ? kSendIncomplete : kNotConnected;
}

}  // namespace

int32_t StreamFirmware(SerialClient& line, const std::vector<uint8_t>& image,
                       uint8_t component_type, AfterImage then, std::atomic<int>* progress,
                       uint32_t answer_ms) {
  if (!IsStreamable(component_type, image.size())) {
    return kBadArgument;
  }
  if (!line.IsOpen()) {
    return kNotConnected;
  }
  const int32_t code =
      FirmwareStreamer(line, image, component_type, progress, milliseconds(answer_ms)).Run(then);
  if (code != 0) {
    KAVEL_LOG(kWarning, "the firmware stream ended with %d", code);
  }
  return code;
}

}  // namespace kavel::lidar
