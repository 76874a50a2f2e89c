#include "CmxClient/serial_client.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "CmxClient/hex_text.h"
#include "CmxClient/serial_frame.h"
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
        client(source->port(), source) {}

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

class Lines : public LogSink {
 public:
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
  for (size_t at = 7; at < sound.size(); ++at) {
    Bytes damaged = sound;
    damaged[at] ^= 0x10;
    device.SetAnswer(damaged);
    EXPECT_EQ(line.client.SendCommand(1, {}, inner, kSilenceMs), -2) << "damaged at " << at;
  }
  device.SetAnswer({sound.begin(), sound.end() - 3});
  EXPECT_EQ(line.client.SendCommand(1, {}, inner, kSilenceMs), -2) << "cut off";
  device.SetAnswer(BuildSerialFrame(1, {0x00, 0x00}));
  EXPECT_EQ(line.client.SendCommand(1, {}, inner, kSilenceMs), -2) << "a request's length byte";
  EXPECT_EQ(inner, Bytes{0x99}) << "a failure leaves the result alone";

  device.SetAnswer(sound);
  EXPECT_EQ(line.client.SendCommand(1, {}, inner, kPatienceMs), 0) << "the next exchange is clean";
  EXPECT_EQ(line.client.SendCommand(1, Bytes(255), inner, kPatienceMs), -1);
  line.client.Close();
  EXPECT_EQ(line.client.SendCommand(1, {}, inner, kPatienceMs), -1);
}

TEST(SerialClient, FindsTheAnswerBehindAFrameThatBrokeOff) {
  SerialDevice device([](const Bytes& frame) {
    Bytes line = {'$', 'L', 'D', 'O', 'T', 'A', ',', 0x7F, 0x00, 0x2A};
    const Bytes answer = Echo(frame);
    line.insert(line.end(), answer.begin(), answer.end());
    return line;
  });
  Line line(device.path());
  // What the broken frame claims to need is waited for at the line's rate, so make that fast.
  line.source->port()->SetBaudRate(3125000);
  Bytes inner;
  EXPECT_EQ(line.client.SendCommand(1, {}, inner, kSilenceMs), 0);
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
  std::mutex mutex;
  std::string reason;
  source->SetLostHandler([&](const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex);
    reason += text;
  });
  ASSERT_TRUE(source->Open());
  SerialClient client(source->port(), source);
  Bytes inner;
  EXPECT_EQ(client.SendCommand(1, {}, inner, 3'600'000), -3);
  EXPECT_FALSE(client.IsOpen());
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
    while (!asked) std::this_thread::yield();
    line.client.Interrupt();
  });
  Bytes inner;
  EXPECT_EQ(line.client.SendCommand(1, {}, inner, 3'600'000), -3);
  other.join();
  EXPECT_FALSE(line.client.IsOpen());
  Line second(device.path());
  EXPECT_FALSE(second.opened) << "still held";
  line.client.Close();
  EXPECT_TRUE(second.source->Open()) << second.source->LastError();
}

TEST(SerialClient, ExchangesOfSeveralThreadsDoNotMix) {
  SerialDevice device(Echo);
  Line line(device.path());
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (uint8_t cmd = 1; cmd <= 3; ++cmd) {
    threads.emplace_back([&, cmd] {
      for (uint8_t i = 0; i < 40; ++i) {
        Bytes inner;
        const int32_t code = line.client.SendCommand(cmd, {i}, inner, kPatienceMs);
        if (code != 0 || inner != Bytes{2, cmd, 0, i}) ++failures;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
}

TEST(SerialClient, ReceivesOnAnotherPortAmidThePointCloud) {
  PtyPair uart;
  const Bytes points = BuildPointCloudFrame(Bytes(1200, 0x77));
  const auto stream = [&](const Bytes& answer) {
    uart.Write(points);
    uart.Write(answer);
    uart.Write(points);
  };
  SerialDevice rs485([&](const Bytes& frame) {
    stream(Echo(frame));
    return Bytes();
  });
  auto source = std::make_shared<SerialSource>(uart.path(), 3125000, kReceiveAnswersAndPoints);
  ASSERT_TRUE(source->Open());
  auto send_port = std::make_shared<SerialPort>();
  ASSERT_TRUE(send_port->Open(rs485.path(), 115200));
  SerialClient client(send_port, source);
  Bytes inner;
  for (int i = 0; i < 5; ++i) {
    ASSERT_EQ(client.SendCommand(0x4B, {}, inner, kPatienceMs), 0);
    EXPECT_EQ(inner, (Bytes{1, 0x4B, 0}));
  }
  UdpPacket packet;
  for (int i = 0; i < 10; ++i) {
    ASSERT_EQ(source->Receive(packet, UdpPacket::kCapacity, 0, 900'000), 1200) << i;
  }
  EXPECT_EQ(source->GetCounters().skipped_bytes, 0U) << "no exchange cut a point-cloud frame";
}

}  // namespace
}  // namespace kavel::lidar
