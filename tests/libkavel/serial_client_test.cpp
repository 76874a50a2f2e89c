#include "CmxClient/serial_client.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "CmxClient/cmx_client.h"
#include "CmxClient/hex_text.h"
#include "CmxClient/serial_cmx_transport.h"
#include "Wire/ota_stream.h"
#include "Wire/serial_frame.h"
#include "support/bytes.h"
#include "support/serial_device.h"
#include "support/shown_bytes.h"

namespace kavel::lidar {
namespace {

using testing::PtyPair;
using testing::SerialDevice;

constexpr uint32_t kPatienceMs = 5000;
constexpr uint32_t kSilenceMs = 60;

// A client on one port, used in both directions, and a command client over it.
struct Line {
  explicit Line(const std::string& path, uint32_t timeout_ms = kPatienceMs)
      : source(std::make_shared<SerialSource>(path, 115200, kReceiveAnswers)),
        opened(source->Open()),
        serial(std::make_shared<SerialClient>(source, source)),
        transport(std::make_shared<SerialCmxTransport>(serial)),
        cmx(transport, 1, timeout_ms, timeout_ms) {}

  std::shared_ptr<SerialSource> source;
  bool opened;
  std::shared_ptr<SerialClient> serial;
  std::shared_ptr<SerialCmxTransport> transport;
  CmxClient cmx;
};

Bytes Request(const Bytes& frame) {
  uint8_t cmd = 0;
  Bytes payload;
  EXPECT_TRUE(ParseSerialRequest(frame, &cmd, &payload));
  return Bytes{cmd} + payload;
}

// The ordinary answer: return code 0 and the request's payload, in the frame of the request.
Bytes Answer(const Bytes& frame) {
  OtaRequest request;
  if (ParseOtaFrame(frame, &request)) {
    return BuildOtaFrame(OtaAnswer{request.number, request.cmd, 0, request.payload});
  }
  const Bytes bytes = Request(frame);
  return BuildSerialAnswer(bytes[0], 0, {bytes.begin() + 1, bytes.end()});
}

Bytes Silence(const Bytes&) { return {}; }

TEST(SerialClient, HandsBackTheInnerBytes) {
  // A late answer to another command, the rest of a frame that broke off, the echo of the line,
  // then the answer.
  const Bytes noise = BuildSerialAnswer(0x2B, 0, {}) + Bytes{'$', 'L', 'D', 'C', 0x00, 0xEE, 0xFF};
  Bytes answer;  // written under the device's lock
  SerialDevice device([&](const Bytes& frame) { return noise + frame + (answer = Answer(frame)); });
  Line line(device.path());
  ASSERT_TRUE(line.opened) << line.source->LastError();
  const auto sink = std::make_shared<ShownBytes>();
  line.serial->SetByteSink(sink);
  Bytes inner;
  ASSERT_EQ(line.serial->SendCommand(0x2A, {0x11, 0x22}, inner, kPatienceMs), 0);
  EXPECT_EQ(inner, (Bytes{0x03, 0x2A, 0x00, 0x11, 0x22}));
  const Bytes request = device.last_request();
  EXPECT_EQ(sink->lines, (std::vector<std::string>{SentLine(request), ReceivedLine(answer)}));
}

TEST(SerialCmxTransport, CarriesAClientsCommandsOfAnyLengthOverALineThatEchoes) {
  SerialDevice device([](const Bytes& frame) { return frame + Answer(frame); });
  Line line(device.path());
  const auto sink = std::make_shared<ShownBytes>();
  line.cmx.SetByteSink(sink);
  for (const StaleInput mode : {StaleInput::kAlways, StaleInput::kAfterTrouble}) {
    line.cmx.SetStaleInput(mode);
    for (const size_t size : {0U, 1U, 254U, 255U, 1500U, 20000U, 65527U}) {
      const Bytes payload(size, 0x24);
      Bytes result;
      int32_t error = 99;
      sink->lines.clear();
      ASSERT_EQ(line.cmx.QueryCommand(payload, result, 0x40, false, &error), 0)
          << size << ": " << CmxClient::ErrorText(error);
      EXPECT_EQ(result, payload);
      EXPECT_EQ(sink->lines.size(), 2U) << "told once";
      EXPECT_EQ(sink->lines[0], SentLine(device.last_request())) << "as it looks on the line";
    }
  }
  sink->lines.clear();
  Bytes result;
  EXPECT_EQ(line.cmx.QueryQuietly({}, result, 0x40, nullptr), 0);
  EXPECT_TRUE(sink->lines.empty());
}

TEST(SerialClient, NamesEveryFailure) {
  Bytes inner = {0x99};
  SerialClient nothing(nullptr, nullptr);
  EXPECT_EQ(nothing.SendCommand(1, {}, inner, 10), -1);

  const Bytes sound = BuildSerialAnswer(0x40, 0, {});
  Bytes damaged = sound;
  damaged[12] ^= 1;
  // The result of the serial client, and the reason of the command client over it.
  const std::tuple<const char*, Bytes, int32_t, int32_t> cases[] = {
      {"silence", {}, -3, kNoReply},
      {"damage", damaged, -2, kNoReply},
      {"cut", {sound.begin(), sound.end() - 3}, -2, kNoReply},
      {"an echo", BuildSerialFrame(0x40, {}), -2, kNoReply},
      {"a long echo", BuildOtaFrame(OtaRequest{0, 0x40, Bytes(300)}), -2, kNoReply},
      {"a long answer to another request", BuildOtaFrame(OtaAnswer{7, 0x40, 0, {}}), -3, kNoReply},
      {"a long frame that only begins", FromHex("244c444f54412c ffff"), -2, kNoReply},
      {"a refusal", BuildSerialAnswer(0x40, 3, {}), 0, 3},
      {"a refusal in a long frame", BuildOtaFrame(OtaAnswer{0, 0x40, 4, Bytes(3)}), -2, 4},
      {"the adapter is pulled out", SerialDevice::kVanish, -3, kNotConnected},
  };
  SerialDevice device(Silence);
  Line line(device.path(), kSilenceMs);
  for (const auto& [what, answer, result, reason] : cases) {
    SCOPED_TRACE(what);
    device.SetAnswer(answer);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(line.serial->SendCommand(0x40, {}, inner, kSilenceMs), result);
    EXPECT_EQ(inner, result == 0 ? (Bytes{1, 0x40, 3}) : Bytes{0x99}) << "else left alone";
    inner = {0x99};
    int32_t error = 0;
    EXPECT_EQ(line.cmx.QueryCommand({}, inner, 0x40, false, &error), -1);
    EXPECT_EQ(error, reason);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  }
  Bytes frame = BuildCmxFrame(kCmxHeader1, 0x40, 0, {});
  EXPECT_EQ(line.transport->Send(frame.data(), 8, 0), -1) << "the line is gone";
  EXPECT_EQ(line.serial->SendCommand(1, Bytes(255), inner, kPatienceMs), -1);
}

TEST(SerialClient, SwitchesTheMode) {
  SerialDevice device(Silence);
  Line line(device.path());
  const std::pair<Bytes, int32_t> cases[] = {
      {{3, 3, 7, 9, 0}, 0},  {{3, 3, 7, 9, 5}, 5}, {{3, 3, 7, 0, 255}, 255}, {{3, 4, 7, 9, 0}, -2},
      {{3, 3, 8, 9, 0}, -2}, {{2, 3, 7, 9}, -2},   {{4, 3, 7, 9, 0, 0}, -2}, {{0, 3}, -2}};
  for (const auto& [inner, result] : cases) {
    device.SetAnswer(BuildSerialResponse(inner));
    EXPECT_EQ(line.serial->SwitchMode(7, 9), result) << HexText(inner);
    EXPECT_EQ(Request(device.last_request()), (Bytes{3, 7, 9}));
  }
}

TEST(SerialClient, EndsTheExchangeWhenThePortVanishes) {
  SerialDevice device([](const Bytes&) { return SerialDevice::kVanish; });
  auto source = std::make_shared<SerialSource>(device.path(), 115200, kReceiveAnswers);
  std::string reason;  // written on the source's thread, read once that has ended
  source->SetLostHandler([&](const std::string& text) { reason += text; });
  ASSERT_TRUE(source->Open());
  SerialClient client(source, source);
  Bytes inner;
  EXPECT_EQ(client.SendCommand(1, {}, inner, 3'600'000), -3);
  EXPECT_NE(client.LastError().find(device.path()), std::string::npos) << client.LastError();
  EXPECT_EQ(client.SendCommand(1, {}, inner, 3'600'000), -1);
  source->Close();
  EXPECT_EQ(reason, client.LastError()) << "told once, before the thread ended";
}

TEST(SerialClient, InterruptEndsAWaitingExchange) {
  std::atomic<bool> asked{false};
  SerialDevice device([&](const Bytes&) {
    asked = true;
    return Bytes();
  });
  Line line(device.path());
  std::thread other([&] {
    while (!asked) {
      std::this_thread::yield();
    }
    line.serial->Interrupt();
  });
  Bytes inner;
  EXPECT_EQ(line.serial->SendCommand(1, {}, inner, 3'600'000), -3);
  other.join();
  EXPECT_FALSE(line.serial->IsOpen());
  line.serial->Close();
  EXPECT_TRUE(line.source->Open()) << line.source->LastError();
}

TEST(SerialClient, ReceivesOnAnotherPortAmidThePointCloudForSeveralThreads) {
  PtyPair uart;
  const Bytes points = BuildPointCloudFrame(Bytes(1200, 0x77));
  SerialDevice rs485([&](const Bytes& frame) {
    uart.Write(points);
    uart.Write(Answer(frame));
    uart.Write(points);
    return Bytes();
  });
  auto source = std::make_shared<SerialSource>(uart.path(), 3125000, kReceiveAnswersAndPoints);
  ASSERT_TRUE(source->Open());
  auto requests = std::make_shared<SerialSource>(rs485.path(), 115200, kReceiveAnswers);
  ASSERT_TRUE(requests->Open());
  SerialClient client(requests, source);
  const auto use = [&](uint8_t cmd) {
    for (uint8_t i = 0; i < 5; ++i) {
      Bytes inner;
      EXPECT_EQ(client.SendCommand(cmd, {i}, inner, kPatienceMs), 0);
      EXPECT_EQ(inner, (Bytes{2, cmd, 0, i}));
    }
  };
  std::thread other(use, uint8_t{0x4B});
  use(0x4C);
  other.join();
  UdpPacket packet;
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(source->Receive(packet, UdpPacket::kCapacity, 0, 900'000), 1200) << i;
  }
  EXPECT_EQ(source->GetCounters().skipped_bytes, 0U) << "no exchange cut a point-cloud frame";
}

}  // namespace
}  // namespace kavel::lidar
