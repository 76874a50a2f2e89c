#include "CmxClient/serial_cmx_transport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "CmxClient/cmx_client.h"
#include "Wire/ota_stream.h"
#include "Wire/serial_frame.h"
#include "support/serial_device.h"

namespace kavel::lidar {
namespace {

using Bytes = std::vector<uint8_t>;
using testing::SerialDevice;

constexpr uint32_t kPatienceMs = 5000;

std::shared_ptr<SerialCmxTransport> TransportTo(const std::string& path) {
  auto source = std::make_shared<SerialSource>(path, 3125000, kReceiveAnswers);
  EXPECT_TRUE(source->Open()) << source->LastError();
  return std::make_shared<SerialCmxTransport>(std::make_shared<SerialClient>(source, source));
}

// Answers any request with its own payload, in the frame that its length needs.
Bytes EchoAnyLength(const Bytes& frame) {
  uint8_t cmd = 0;
  Bytes payload;
  EXPECT_TRUE(ParseSerialRequest(frame, &cmd, &payload) || ParseOtaFrame(frame, &cmd, &payload));
  if (payload.size() > 254) {
    return BuildOtaResponse(cmd, 0, payload);
  }
  return BuildSerialAnswer(cmd, 0, payload);
}

TEST(SerialCmxTransport, CarriesAClientsCommandsOfAnyLength) {
  SerialDevice device(EchoAnyLength);
  for (const StaleInput mode : {StaleInput::kAlways, StaleInput::kAfterTrouble}) {
    CmxClient client(TransportTo(device.path()), 1, kPatienceMs, kPatienceMs);
    client.SetStaleInput(mode);
    ASSERT_TRUE(client.IsOpen());
    for (const size_t size : {0U, 1U, 254U, 255U, 1500U, 20000U, 65527U}) {
      Bytes payload(size, 0x24);
      Bytes result;
      int32_t error = 99;
      ASSERT_EQ(client.QueryCommand(payload, result, 0x40, false, &error), 0)
          << size << ": " << CmxClient::ErrorText(error);
      EXPECT_EQ(result, payload);
    }
  }
}

TEST(SerialCmxTransport, TellsTheClientWhyAnExchangeFailed) {
  SerialDevice device([](const Bytes&) { return Bytes(); });
  CmxClient client(TransportTo(device.path()), 1, 60, 60);
  Bytes damaged = BuildSerialAnswer(0x40, 0, {});
  damaged[12] ^= 1;
  const struct {
    const char* what;
    Bytes answer;
    int32_t reason;
  } cases[] = {{"silence", {}, kNoReply},
               {"damage", damaged, kNoReply},
               {"refused", BuildSerialAnswer(0x40, 3, {}), 3},
               {"refused in a long frame", BuildOtaResponse(0x40, 4, Bytes(3)), 4},
               {"the adapter is pulled out", SerialDevice::kVanish, kNoReply},
               {"and is gone", {}, kNotConnected}};
  for (const auto& each : cases) {
    device.SetAnswer(each.answer);
    Bytes result;
    int32_t error = 0;
    EXPECT_EQ(client.QueryCommand({}, result, 0x40, false, &error), -1) << each.what;
    EXPECT_EQ(error, each.reason) << each.what;
  }
}

}  // namespace
}  // namespace kavel::lidar
