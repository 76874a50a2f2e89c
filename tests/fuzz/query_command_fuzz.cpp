#include <memory>

#include "CmxClient/cmx_client.h"
#include "Wire/big_endian.h"
#include "Wire/cmx_header.h"
#include "fuzz/fuzz_targets.h"
#include "libkavel/scripted_transport.h"

using namespace kavel::lidar;

namespace {

constexpr uint8_t kLiveness = 0x07;
constexpr int kMostCommands = 12;

/// A line whose every receive is decided by the input: a byte N from 1 to 0xFB brings the next N
/// bytes, 0xFC a header for `asked` with payload length and return code, 0xFD sixteen times the
/// next byte of zeros, 0xFE the end of the line, 0 silence. A command that leaves ends no block.
class FuzzedLine : public testing::ScriptedTransport {
 public:
  FuzzedLine(FuzzInput& input, const CmxHeaderLayout& layout) : input_(input), layout_(layout) {}

  uint8_t asked = 0;
  Bytes received;
  bool unsent = false;  ///< the next send leaves a byte behind

  int32_t Send(uint8_t* /*data*/, uint16_t length, int32_t /*flags*/) override {
    return unsent ? length - 1 : length;
  }

  int32_t Receive(uint8_t* buffer, uint32_t length, int32_t /*flags*/) override {
    Require(length > 0 && length <= 65536, "memory grows with what arrives");
    if (block_.empty() && !NextBlock()) {
      return ended_ ? 0 : -1;
    }
    const size_t count = std::min<size_t>(block_.size(), length);
    std::copy_n(block_.begin(), count, buffer);
    received.insert(received.end(), buffer, buffer + count);
    block_.erase(block_.begin(), block_.begin() + static_cast<std::ptrdiff_t>(count));
    return static_cast<int32_t>(count);
  }

 private:
  bool NextBlock() {
    const uint8_t size = ended_ ? uint8_t{0} : input_.Byte();
    switch (size) {
      case 0xFC: {
        const uint16_t length = input_.Number16();
        block_ = BuildCmxFrame(layout_, asked, input_.Byte(), {});
        block_[layout_.payload_length_at + 2] = static_cast<uint8_t>(length >> 8);
        block_[layout_.payload_length_at + 3] = static_cast<uint8_t>(length);
        break;
      }
      case 0xFD:
        block_ = Bytes(size_t{16} * input_.Byte());
        break;
      case 0xFE:
      case 0xFF:
        ended_ = true;
        break;
      default:
        block_ = input_.Block(size);
    }
    return !block_.empty();
  }

  FuzzInput& input_;
  const CmxHeaderLayout& layout_;
  Bytes block_;
  bool ended_ = false;
};

void CheckAnswer(const CmxHeaderLayout& layout, uint8_t cmd, const Bytes& answer,
                 const Bytes& received) {
  Require(answer.size() >= layout.size, "an answer has its header");
  Require(answer[layout.command_at] == cmd && answer[layout.return_code_at] == 0,
          "an answer is to its command");
  Require(ReadBigEndian32(&answer[layout.payload_length_at]) == answer.size() - layout.size,
          "an answer has the length that it announces");
  Require(
      std::search(received.begin(), received.end(), answer.begin(), answer.end()) != received.end(),
      "an answer was received as it is");
}

void Ask(CmxClient& client, FuzzedLine& line, const CmxHeaderLayout& layout, FuzzInput& input) {
  const uint8_t cmd = input.Byte();
  const uint8_t how = input.Byte();
  const Bytes payload(how / 16);
  const Bytes before = {0xAB, 0xCD};
  Bytes answer = before;
  int32_t error = 99;
  ReplyProgress progress;
  line.asked = cmd;
  line.unsent = (how & 8) != 0;
  const bool with_header = (how & 3) == 0;
  int32_t result = 0;
  if ((how & 3) == 1) {
    result = client.QueryLong(payload, answer, cmd, progress, &error);
    Require(progress.received <= progress.announced, "no more comes than was announced");
  } else if ((how & 3) == 2) {
    result = client.QueryQuietly(payload, answer, cmd, &error);
  } else {
    result = client.QueryCommand(payload, answer, cmd, with_header, &error);
  }
  Require(result == 0 || result == -1, "the result is one of two");
  if (result == 0) {
    Require(error == 0, "a success has no reason");
    if (with_header) {
      CheckAnswer(layout, cmd, answer, line.received);
    }
  } else if (!with_header || error < 0) {
    Require(answer == before, "a failure leaves the result as it was");
    Require(error == client.GetLastErrorCode() && error >= kSendIncomplete && error <= 0xFF,
            "a failure has its reason");
  }
}

}  // namespace

void FuzzQueryCommand(FuzzInput input) {
  const uint8_t how = input.Byte();
  const uint8_t version = how % 2 + 1;
  const CmxHeaderLayout& layout = *CmxHeaderOf(version);
  const auto line = std::make_shared<FuzzedLine>(input, layout);
  CmxClient client(line, version, 500, 500);
  if ((how & 2) != 0) {
    client.SetStaleInput(StaleInput::kAfterTrouble);
  }
  if ((how & 4) != 0) {
    client.SetLivenessCommand(kLiveness);
  }
  for (int i = 0; i < kMostCommands && !input.empty(); ++i) {
    Ask(client, *line, layout, input);
  }
}
