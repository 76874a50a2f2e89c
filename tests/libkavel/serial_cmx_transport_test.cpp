#include "CmxClient/serial_cmx_transport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "CmxClient/cmx_client.h"
#include "CmxClient/ota_stream.h"
#include "CmxClient/serial_frame.h"
#include "support/serial_device.h"

namespace kavel::lidar {
namespace {

using Bytes = std::vector<uint8_t>;
using testing::SerialDevice;

constexpr uint32_t kPatienceMs = 5000;

std::shared_ptr<SerialCmxTransport> TransportTo(const std::string& path) {
  auto source = std::make_shared<SerialSource>(path, 3125000, kReceiveAnswers);
  EXPECT_TRUE(source->Open()) << source->LastError();
  return std::make_shared<SerialCmxTransport>(
      std::make_shared<SerialClient>(source->port(), source));
}

// Answers any request with its own payload, in the frame that its length needs.
Bytes EchoAnyLength(const Bytes& frame) {
  uint8_t cmd = 0;
  Bytes payload;
  EXPECT_TRUE(ParseSerialRequest(frame, &cmd, &payload) || ParseOtaFrame(frame, &cmd, &payload));
  if (payload.size() > 254) return BuildOtaResponse(cmd, 0, payload);
  return BuildSerialAnswer(cmd, 0, payload);
}

TEST(SerialCmxTransport, RepacksRequestAndAnswer) {
  SerialDevice device([](const Bytes&) {
    return BuildSerialResponse({0x03, 0x2A, 0x05, 0x11, 0x22});
  });
  const auto transport = TransportTo(device.path());
  ASSERT_EQ(transport->SetTimeout(kPatienceMs, kPatienceMs), 0);
  uint8_t buffer[100];
  EXPECT_EQ(transport->Receive(buffer, sizeof buffer, 0), -1) << "nothing is outstanding";

  Bytes frame = {0x47, 0x74, 0x2A, 0x00, 0x00, 0x00, 0x00, 0x02, 0x01, 0x02};
  ASSERT_EQ(transport->Send(frame.data(), 10, 0), 10);
  const Bytes request = device.last_request();
  EXPECT_EQ(Bytes(request.begin(), request.begin() + 11),
            (Bytes{'$', 'L', 'D', 'C', 'M', 'D', ',', 0x03, 0x2A, 0x01, 0x02}));
  ASSERT_EQ(transport->Receive(buffer, 3, 0), 3);
  ASSERT_EQ(transport->Receive(buffer + 3, 97, 0), 7);
  EXPECT_EQ(Bytes(buffer, buffer + 10),
            (Bytes{0x47, 0x74, 0x2A, 0x05, 0x00, 0x00, 0x00, 0x02, 0x11, 0x22}));
  EXPECT_EQ(transport->Receive(buffer, 100, 0), -1);

  frame[7] = 3;
  EXPECT_EQ(transport->Send(frame.data(), 10, 0), -1) << "no whole frame";
  EXPECT_EQ(transport->Send(frame.data(), 7, 0), -1);
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
  Bytes result;
  int32_t error = 0;
  EXPECT_EQ(client.QueryCommand({}, result, 0x40, false, &error), -1);
  EXPECT_EQ(error, kNoReply) << "silence";
  Bytes damaged = BuildSerialAnswer(0x40, 0, {});
  damaged[12] ^= 1;
  device.SetAnswer(damaged);
  EXPECT_EQ(client.QueryCommand({}, result, 0x40, false, &error), -1);
  EXPECT_EQ(error, kNoReply) << "damage";
  device.SetAnswer(BuildSerialAnswer(0x40, 3, {}));
  EXPECT_EQ(client.QueryCommand({}, result, 0x40, false, &error), -1);
  EXPECT_EQ(error, 3) << "refused";
  device.SetAnswer(BuildOtaResponse(0x40, 4, Bytes(3)));
  EXPECT_EQ(client.QueryCommand({}, result, 0x40, false, &error), -1);
  EXPECT_EQ(error, 4) << "refused in a long frame";
  device.SetAnswer(SerialDevice::kVanish);
  EXPECT_EQ(client.QueryCommand({}, result, 0x40, false, &error), -1);
  EXPECT_EQ(error, kNoReply) << "the adapter was pulled out";
  EXPECT_EQ(client.QueryCommand({}, result, 0x40, false, &error), -1);
  EXPECT_EQ(error, kNotConnected);
}

TEST(SerialCmxTransport, ShutdownEndsAnExchange) {
  std::atomic<bool> asked{false};
  SerialDevice device([&](const Bytes&) {
    asked = true;
    return Bytes();
  });
  CmxClient client(TransportTo(device.path()), 1, 3'600'000, 500);
  std::thread other([&] {
    while (!asked) std::this_thread::yield();
    client.Shutdown();
  });
  Bytes result;
  EXPECT_EQ(client.QueryCommand({}, result, 0x40, false), -1);
  other.join();
  EXPECT_FALSE(client.IsOpen());
}

}  // namespace
}  // namespace kavel::lidar
