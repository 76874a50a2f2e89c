#include <memory>

#include "CmxClient/serial_client.h"
#include "CmxClient/serial_cmx_transport.h"
#include "Wire/cmx_header.h"
#include "fuzz/fuzz_targets.h"
#include "fuzz/serial_bytes.h"
#include "support/serial_device.h"

using namespace kavel::lidar;

namespace {

constexpr int kMostCommands = 3;
constexpr size_t kMostBytes = 2000;
constexpr uint32_t kTimeoutMs = 5;

/// One line for all inputs. What one of them has left on it, the next exchange has to cope with.
struct Line {
  testing::SerialDevice device{[](const Bytes&) { return Bytes(); }};
  std::shared_ptr<SerialSource> source =
      std::make_shared<SerialSource>(device.path(), 1000000000, kReceiveAnswers);
  std::shared_ptr<SerialClient> client = std::make_shared<SerialClient>(source, source);
  Line() { Require(source->Open(), "a pseudo-terminal opens"); }
};

void SendShort(SerialClient& client, uint8_t cmd, const Bytes& payload) {
  const Bytes before = {0xAB, 0xCD};
  Bytes inner = before;
  const int32_t result = client.SendCommand(cmd, payload, inner, kTimeoutMs);
  Require(result == 0 || result == kSerialBadAnswer || result == kSerialNoAnswer,
          "an open line gives an answer, a bad one or none");
  if (result == 0) {
    Require(inner.size() >= 2 && inner.size() == inner[0] + size_t{2},
            "inner bytes have the length that they tell");
  } else {
    Require(inner == before, "a failure leaves the result as it was");
  }
}

void SendFrame(const std::shared_ptr<SerialClient>& client, uint8_t cmd, const Bytes& payload) {
  SerialCmxTransport transport(client);
  transport.SetTimeout(kTimeoutMs, 500);
  Bytes frame = BuildCmxFrame(kCmxHeader1, cmd, 0, payload);
  Require(transport.Send(frame.data(), static_cast<uint16_t>(frame.size()), 0) ==
              static_cast<int32_t>(frame.size()),
          "a request leaves");
  Bytes answer(size_t{128} * 1024);
  const int32_t size = transport.Receive(answer.data(), static_cast<uint32_t>(answer.size()), 0);
  Require(size == -1 || size >= static_cast<int32_t>(kCmxHeader1.size), "an answer is whole");
  Require(transport.Receive(answer.data(), 1, 0) == -1, "there is one answer to a request");
}

}  // namespace

void FuzzSerialExchange(FuzzInput input) {
  static Line line;
  for (int i = 0; i < kMostCommands && !input.empty(); ++i) {
    const uint8_t how = input.Byte();
    const uint8_t cmd = input.Byte();
    const Bytes payload((how & 2) != 0 ? 300 : how / 16);
    Bytes answer = input.Block(input.Number16());
    FuzzInput pieces(answer.data(), answer.size());
    line.device.SetAnswer(SerialBytes(&pieces, kMostBytes));
    if ((how & 1) != 0 || payload.size() > 254) {
      SendFrame(line.client, cmd, payload);
    } else {
      SendShort(*line.client, cmd, payload);
    }
    Require(line.client->IsOpen(), "nothing that arrives closes the line");
  }
}
