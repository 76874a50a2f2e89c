#include <gtest/gtest.h>

#include <string>

#include "CmxClient/device_commands.h"
#include "CmxClient/ota_stream.h"
#include "CmxClient/serial_client.h"
#include "CmxClient/serial_cmx_transport.h"
#include "CmxClient/serial_frame.h"
#include "lidar_under_test.h"

namespace {

using kavel::lidar::SerialClient;
using kavel::lidar::SerialPort;
using kavel::lidar::SerialSource;

constexpr uint32_t kBaud = 115200;
constexpr uint32_t kPatienceMs = 5000;

LidarUnderTest::Setup OnSerialLine(ServerSetup::Serial kind, const std::string& model) {
  LidarUnderTest::Setup setup;
  setup.server.serial = kind;
  setup.profile.model = model;
  setup.profile.on_serial_line = true;
  return setup;
}

// One port for both directions, as Kiva-CMX has it.
std::shared_ptr<SerialClient> OpenLine(const std::string& port) {
  auto source = std::make_shared<SerialSource>(port, kBaud, kavel::lidar::kReceiveAnswers);
  EXPECT_TRUE(source->Open()) << source->LastError();
  return std::make_shared<SerialClient>(source->port(), source);
}

TEST(SerialLine, AnswersAfterEachReopeningOfThePort) {
  LidarUnderTest lidar(OnSerialLine(ServerSetup::Serial::kOneLine, "Kiva-CMX"));
  ASSERT_EQ(lidar.serial_ports().size(), 1U);
  for (int round = 0; round < 3; ++round) {
    const auto client = OpenLine(lidar.serial_ports()[0]);
    Bytes inner;
    ASSERT_EQ(client->SendCommand(0x30, {}, inner, kPatienceMs), 0) << "round " << round;
    EXPECT_EQ(inner, (Bytes{4, 0x30, 0, 0x02, 0x58, 0xFD}));
    EXPECT_EQ(client->SwitchMode(0, 0), 0);
  }
}

TEST(SerialLine, CarriesMaintenanceCommandsOfTheRealClient) {
  LidarUnderTest lidar(OnSerialLine(ServerSetup::Serial::kOneLine, "Kiva-CMX"));
  kavel::lidar::CmxClient client(
      std::make_shared<kavel::lidar::SerialCmxTransport>(OpenLine(lidar.serial_ports()[0])), 1,
      kPatienceMs, kPatienceMs);
  EXPECT_EQ(kavel::lidar::SetSpinRate(client, 1200), 0);
  EXPECT_EQ(kavel::lidar::SetSpinRate(client, 1201), kBadValue);
  EXPECT_EQ(kavel::lidar::SetNetConfig(client, {"10.0.0.2", "255.0.0.0", "10.0.0.1", true, 7}), 0);
  kavel::lidar::DeviceStatus status;
  ASSERT_EQ(kavel::lidar::GetStatus(client, &status), 0);
  EXPECT_EQ(status.spin_rate_rpm, 1200);
  kavel::lidar::DeviceVersions versions;
  ASSERT_EQ(kavel::lidar::GetVersions(client, &versions), 0);
  EXPECT_EQ(versions.fpga_b.substr(0, 3), "TMB");
  std::vector<kavel::lidar::SafetyState> states;
  EXPECT_EQ(kavel::lidar::GetFunctionSafety(client, &states), 0);
  // The network settings do not cut a serial line.
  EXPECT_EQ(client.QueryCommand({10, 0, 0, 2}, *std::make_unique<Bytes>(), 0x21, false), 0);
  EXPECT_EQ(lidar.Held("Address"), (Bytes{10, 0, 0, 2}));
  EXPECT_EQ(lidar.Stop().maintenance().state().net,
            (Bytes{10, 0, 0, 2, 255, 0, 0, 0, 10, 0, 0, 1, 1, 0, 7}));
}

TEST(SerialLine, TakesLongFramesAndAnswersInKind) {
  LidarUnderTest lidar(OnSerialLine(ServerSetup::Serial::kOneLine, "Kiva-CMX"));
  const auto client = OpenLine(lidar.serial_ports()[0]);
  Bytes block;
  ASSERT_EQ(client->ExchangeBlock(kavel::lidar::BuildOtaFrame(0x31, Bytes(1000, 1)), 1500,
                                  kPatienceMs, block),
            0);
  uint8_t command = 0;
  uint8_t return_code = 0;
  Bytes payload;
  ASSERT_TRUE(kavel::lidar::ParseOtaResponse(block, &command, &return_code, &payload));
  EXPECT_EQ(command, 0x31);
  EXPECT_EQ(return_code, kBadLength);
}

TEST(SerialLine, PairTakesRequestsOnOnePortAndAnswersOnTheOther) {
  LidarUnderTest lidar(OnSerialLine(ServerSetup::Serial::kPair, "Lumo"));
  ASSERT_EQ(lidar.serial_ports().size(), 2U);
  EXPECT_TRUE(lidar.LogShows("serial port 485 " + lidar.serial_ports()[0]));
  EXPECT_TRUE(lidar.LogShows("serial port 232 " + lidar.serial_ports()[1]));
  auto requests = std::make_shared<SerialPort>();
  ASSERT_TRUE(requests->Open(lidar.serial_ports()[0], kBaud)) << requests->LastError();
  auto answers = std::make_shared<SerialSource>(lidar.serial_ports()[1], 3125000,
                                                kavel::lidar::kReceiveAnswersAndPoints);
  ASSERT_TRUE(answers->Open()) << answers->LastError();
  SerialClient client(requests, answers);
  Bytes inner;
  ASSERT_EQ(client.SendCommand(0x4F, {}, inner, kPatienceMs), 0);
  EXPECT_EQ(inner.size(), 13U);
}

TEST(SerialLine, FaultsStrikeHereToo) {
  const std::pair<const char*, int32_t> cases[] = {
      {"corrupt#1", kavel::lidar::kSerialBadAnswer},
      {"huge-length#1", kavel::lidar::kSerialBadAnswer},
      {"truncate#1", kavel::lidar::kSerialBadAnswer},
      {"garbage#1", 0},
      {"split#1", 0},
      {"drop#1", kavel::lidar::kSerialNoAnswer},
  };
  for (const auto& [fault, expected] : cases) {
    SCOPED_TRACE(fault);
    auto setup = OnSerialLine(ServerSetup::Serial::kOneLine, "Kiva-CMX");
    setup.faults = {fault};
    LidarUnderTest lidar(std::move(setup));
    const auto client = OpenLine(lidar.serial_ports()[0]);
    Bytes inner;
    const uint32_t timeout_ms = expected == 0 ? kPatienceMs : 200;
    EXPECT_EQ(client->SendCommand(0x30, {}, inner, timeout_ms), expected);
    EXPECT_EQ(client->SendCommand(0x30, {}, inner, kPatienceMs), 0) << "and is well again";
  }
}

TEST(SerialLine, PortVanishesAndANewOneComes) {
  auto setup = OnSerialLine(ServerSetup::Serial::kOneLine, "Kiva-CMX");
  setup.faults = {"close-before-reply#1"};
  LidarUnderTest lidar(std::move(setup));
  const auto client = OpenLine(lidar.serial_ports()[0]);
  Bytes inner;
  EXPECT_NE(client->SendCommand(0x30, {}, inner, kPatienceMs), 0);
  EXPECT_FALSE(client->IsOpen());
  EXPECT_TRUE(lidar.LogShows("no answer [fault: close-before-reply]\nserial port /"));
}

}  // namespace
