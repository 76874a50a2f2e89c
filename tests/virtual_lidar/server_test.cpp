#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <array>

#include "CmxClient/big_endian.h"
#include "lidar_under_test.h"
#include "state_dump.h"

namespace {

const Bytes kLiveness = {0x47, 0x74, 0x07, 0, 0, 0, 0, 0};

class EveryProtocol : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Server, EveryProtocol, testing::Values(1, 2));

TEST_P(EveryProtocol, ReadsWritesAndRefusesByteByByte) {
  LidarUnderTest::Setup setup;
  setup.server.protocol = GetParam();
  LidarUnderTest lidar(std::move(setup));
  const auto client = ConnectTo(lidar.port(), static_cast<uint8_t>(GetParam()), 5000);
  Bytes result;
  int32_t error = 0;
  ASSERT_EQ(client->QueryCommand({}, result, 0x30, false, &error), 0);
  EXPECT_EQ(result, (Bytes{0x02, 0x58, 0xFD}));
  EXPECT_EQ(client->QueryCommand({0x04, 0xB0, 0x05}, result, 0x31, false, &error), 0);
  ASSERT_EQ(client->QueryCommand({}, result, 0x30, false, &error), 0);
  EXPECT_EQ(result, (Bytes{0x04, 0xB0, 0x05}));
  for (const auto& [command, payload, code] : std::initializer_list<std::tuple<int, Bytes, int>>{
           {0x99, {}, kUnknownCommand}, {0x31, {1}, kBadLength}, {0x31, {0, 1, 1}, kBadValue}}) {
    EXPECT_EQ(client->QueryCommand(payload, result, static_cast<uint8_t>(command), false, &error),
              -1);
    EXPECT_EQ(error, code);
  }
  EXPECT_EQ(client->QueryCommand({}, result, 0x07, false, &error), 0);
  EXPECT_EQ(client->QueryCommand({}, result, 0x08, false, &error), 0);
  EXPECT_EQ(lidar.Held("Speed"), (Bytes{0x04, 0xB0}));
}

TEST(Server, NetworkSettingsAreTakenAndCutTheLinkUnanswered) {
  LidarUnderTest lidar({});
  RawClient client(lidar.port());
  client.Send({0x47, 0x74, 0x21, 0, 0, 0, 0, 4, 10, 0, 0, 9});
  EXPECT_TRUE(client.ReceiveExactly(1).empty());
  EXPECT_TRUE(client.closed());
  EXPECT_EQ(lidar.Held("Address"), (Bytes{10, 0, 0, 9}));
}

TEST(Server, ServesOthersWhileOneIsStuckOrGone) {
  LidarUnderTest lidar({});
  RawClient stuck(lidar.port());
  stuck.Send({0x47, 0x74, 0x31, 0, 0, 0, 0, 200, 1, 2, 3});
  RawClient flooding(lidar.port());
  flooding.Send(Bytes(300000, 0x47));
  { const RawClient leaving(lidar.port()); }
  for (int i = 0; i < 20; ++i) {
    RawClient next(lidar.port());
    next.Send(kLiveness);
    EXPECT_EQ(next.ReceiveExactly(8), kLiveness);
  }
  flooding.Send(kLiveness);
  EXPECT_EQ(flooding.ReceiveExactly(8), kLiveness) << "found behind the garbage";
}

TEST(Server, RestartAnswersDropsEveryLinkAndComesBackOnItsPort) {
  LidarUnderTest::Setup setup;
  setup.server.restart_time = std::chrono::milliseconds(20);
  LidarUnderTest lidar(std::move(setup));
  RawClient bystander(lidar.port());
  bystander.Send(kLiveness);
  EXPECT_EQ(bystander.ReceiveExactly(8), kLiveness);
  RawClient client(lidar.port());
  client.Send({0x47, 0x74, 0x31, 0, 0, 0, 0, 3, 0x04, 0xB0, 5});
  client.Send({0x47, 0x74, 0x10, 0, 0, 0, 0, 0});
  EXPECT_EQ(client.ReceiveExactly(24).size(), 16U);
  EXPECT_TRUE(client.closed());
  EXPECT_TRUE(bystander.ReceiveExactly(1).empty());
  EXPECT_TRUE(bystander.closed());
  EXPECT_TRUE(lidar.LogShows("restarted"));
  RawClient again(lidar.port());
  again.Send({0x47, 0x74, 0x30, 0, 0, 0, 0, 0});
  EXPECT_EQ(again.ReceiveExactly(11), (Bytes{0x47, 0x74, 0x30, 0, 0, 0, 0, 3, 0x04, 0xB0, 5}))
      << "settings survive";
}

TEST(Device, UpTimeCountsAndARestartBeginsItAnew) {
  std::chrono::steady_clock::time_point now;
  VirtualDevice device(LoadTestTable(kSmallTable), DeviceProfile(), [&] { return now; });
  AuthSession session;
  FaultBox none;
  std::string what;
  const auto ask = [&](uint8_t code) {
    DeviceRequest request;
    request.code = code;
    return device.Answer(request, &session, &none, &what).payload;
  };
  now += std::chrono::milliseconds(3999);
  EXPECT_EQ(ask(0x02), (Bytes{0, 0, 0, 8})) << "5 s in the table and 3 s since";
  ask(0x10);
  now += std::chrono::seconds(1);
  EXPECT_EQ(ask(0x02), (Bytes{0, 0, 0, 6}));
}

TEST(Server, DumpIsWholeAndThereBeforeTheAnswer) {
  const QTemporaryDir folder;
  const QString path = folder.filePath("state.json");
  LidarUnderTest::Setup setup;
  setup.server.dump_file = path.toStdString();
  setup.rows += "5,1,,0x44,Shared Secret Key,1,raw,,,,16,,\n";
  LidarUnderTest lidar(std::move(setup));
  const auto dumped = [&](const char* name) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QJsonDocument::fromJson(file.readAll())["variables"][name].toObject();
  };
  EXPECT_EQ(dumped("Level")["text"].toString(), "-3");
  const auto client = ConnectTo(lidar.port(), 1, 5000);
  Bytes result;
  EXPECT_EQ(client->QueryCommand({0x04, 0xB0, 0x05}, result, 0x31, false), 0);
  EXPECT_EQ(dumped("Speed")["text"].toString(), "1200");
  EXPECT_EQ(dumped("Speed")["hex"].toString(), "04 b0");
  EXPECT_EQ(dumped("Speed")["id"].toString(), "1-1");
  EXPECT_EQ(client->QueryCommand({0xAA, 0xBB}, result, 0x44, false), 0);
  EXPECT_EQ(dumped("Shared Secret Key")["bytes"].toInt(), 2);
  EXPECT_FALSE(dumped("Shared Secret Key").contains("hex"));
  EXPECT_EQ(client->QueryCommand({}, result, 0x25, false), 0);
  EXPECT_EQ(dumped("Speed")["text"].toString(), "600") << "after a reset";

  std::string error;
  EXPECT_FALSE(WriteDump(lidar.Stop(), "/nonexistent/state.json", &error));
  EXPECT_NE(error.find("/nonexistent/state.json"), std::string::npos);
}

TEST(PointCloud, SendsNumberedPacketsOf1200Bytes) {
  const UniqueFd receiver(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  ASSERT_EQ(bind(receiver.get(), generic, size), 0);
  ASSERT_EQ(getsockname(receiver.get(), generic, &size), 0);

  LidarUnderTest::Setup setup;
  std::string error;
  const std::string target = "127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "@500";
  ASSERT_TRUE(ParsePointCloudTarget(target, &setup.server.point_cloud.emplace(), &error)) << error;
  LidarUnderTest lidar(std::move(setup));
  std::array<uint8_t, 2000> packet;
  uint32_t last = 0;
  for (int i = 0; i < 5; ++i) {
    pollfd ready = {receiver.get(), POLLIN, 0};
    ASSERT_EQ(poll(&ready, 1, 5000), 1);
    ASSERT_EQ(recv(receiver.get(), packet.data(), packet.size(), 0), 1200);
    EXPECT_EQ(std::string(packet.begin(), packet.begin() + 4), "KPCL");
    const uint32_t number = kavel::lidar::ReadBigEndian32(packet.data() + 4);
    EXPECT_TRUE(i == 0 ? number == 0 : number > last) << number;
    last = number;
  }

  PointCloudTarget parsed;
  for (const char* bad : {"", "127.0.0.1", "127.0.0.1:0", "127.0.0.1:65536", "host:1",
                          "127.0.0.1:1@0", "127.0.0.1:1@", "127.0.0.1:1@x"}) {
    EXPECT_FALSE(ParsePointCloudTarget(bad, &parsed, &error)) << bad;
  }
}

}  // namespace
