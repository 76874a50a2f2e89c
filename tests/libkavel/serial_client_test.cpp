#include "CmxClient/serial_client.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "CmxClient/hex_text.h"
#include "Wire/serial_frame.h"
#include "support/serial_device.h"

namespace kavel::lidar {
namespace {

using Bytes = std::vector<uint8_t>;
using testing::PtyPair;
using testing::SerialDevice;

constexpr uint32_t kPatienceMs = 5000;
constexpr uint32_t kSilenceMs = 60;

// A client on one port, used in both directions.
struct Line {
  explicit Line(const std::string& path, int receive_type = kReceiveAnswers)
      : source(std::make_shared<SerialSource>(path, 115200, receive_type)),
        opened(source->Open()),
        client(source, source) {}

  std::shared_ptr<SerialSource> source;
  bool opened;
  SerialClient client;
};

Bytes Request(const Bytes& frame) {
  uint8_t cmd = 0;
  Bytes payload;
  EXPECT_TRUE(ParseSerialRequest(frame, &cmd, &payload));
  payload.insert(payload.begin(), cmd);
  return payload;
}

// The ordinary answer: return code 0 and the request's payload.
Bytes Echo(const Bytes& frame) {
  const Bytes request = Request(frame);
  return BuildSerialAnswer(request[0], 0, {request.begin() + 1, request.end()});
}

Bytes Silence(const Bytes&) { return {}; }

struct Lines : LogSink {
  void WriteLine(const std::string& line) override { lines.push_back(line); }
  std::vector<std::string> lines;
};

TEST(SerialClient, HandsBackTheInnerBytes) {
  SerialDevice device([](const Bytes& frame) {
    // The rest of a frame that broke off, then the answer.
    Bytes line = {'$', 'L', 'D', 'C', 0x00, 0xEE, 0xFF};
    const Bytes answer = Echo(frame);
    line.insert(line.end(), answer.begin(), answer.end());
    return line;
  });
  Line line(device.path());
  ASSERT_TRUE(line.opened) << line.source->LastError();
  const auto sink = std::make_shared<Lines>();
  line.client.SetLogSink(sink);
  Bytes inner;
  ASSERT_EQ(line.client.SendCommand(0x2A, {0x11, 0x22}, inner, kPatienceMs), 0);
  EXPECT_EQ(inner, (Bytes{0x03, 0x2A, 0x00, 0x11, 0x22}));
  ASSERT_EQ(sink->lines.size(), 2U);
  EXPECT_EQ(sink->lines[0], "SEND: " + HexText(device.last_request()));
  const Bytes line_bytes = device.last_answer();
  EXPECT_EQ(sink->lines[1], "RECV: " + HexText({line_bytes.begin() + 7, line_bytes.end()}));
}

TEST(SerialClient, NamesEveryFailure) {
  Bytes inner = {0x99};
  SerialClient nothing(nullptr, nullptr);
  EXPECT_EQ(nothing.SendCommand(1, {}, inner, 10), -1);

  SerialDevice device(Silence);
  Line line(device.path());
  EXPECT_EQ(line.client.SendCommand(1, {}, inner, kSilenceMs), -3) << "silence";

  const Bytes sound = BuildSerialResponse({0x01, 0x01, 0x00});
  Bytes damaged = sound;
  damaged[9] ^= 0x10;
  const Bytes cut(sound.begin(), sound.end() - 3);
  const Bytes request = BuildSerialFrame(1, {0x00, 0x00});  // another length byte
  for (const Bytes& answer : {damaged, cut, request}) {
    device.SetAnswer(answer);
    EXPECT_EQ(line.client.SendCommand(1, {}, inner, kSilenceMs), -2) << HexText(answer);
  }
  EXPECT_EQ(inner, Bytes{0x99}) << "a failure leaves the result alone";

  device.SetAnswer(sound);
  EXPECT_EQ(line.client.SendCommand(1, {}, inner, kPatienceMs), 0) << "the next exchange is clean";
  EXPECT_EQ(line.client.SendCommand(1, Bytes(255), inner, kPatienceMs), -1);
}

TEST(SerialClient, SwitchesTheMode) {
  SerialDevice device(Silence);
  Line line(device.path());
  const struct {
    Bytes inner;
    int32_t result;
  } cases[] = {{{3, 3, 7, 9, 0}, 0},     {{3, 3, 7, 9, 5}, 5},  {{3, 3, 7, 0, 255}, 255},
               {{3, 4, 7, 9, 0}, -2},    {{3, 3, 8, 9, 0}, -2}, {{2, 3, 7, 9}, -2},
               {{4, 3, 7, 9, 0, 0}, -2}, {{0, 3}, -2}};
  for (const auto& each : cases) {
    device.SetAnswer(BuildSerialResponse(each.inner));
    EXPECT_EQ(line.client.SwitchMode(7, 9), each.result) << HexText(each.inner);
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
    line.client.Interrupt();
  });
  Bytes inner;
  EXPECT_EQ(line.client.SendCommand(1, {}, inner, 3'600'000), -3);
  other.join();
  EXPECT_FALSE(line.client.IsOpen());
  line.client.Close();
  EXPECT_TRUE(line.source->Open()) << line.source->LastError();
}

TEST(SerialClient, ReceivesOnAnotherPortAmidThePointCloudForSeveralThreads) {
  PtyPair uart;
  const Bytes points = BuildPointCloudFrame(Bytes(1200, 0x77));
  SerialDevice rs485([&](const Bytes& frame) {
    uart.Write(points);
    uart.Write(Echo(frame));
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
