#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include "Source/socket_source.h"
#include "Wire/big_endian.h"
#include "lidar_under_test.h"

namespace {

TEST(Server, SpeaksTheSecondProtocolToo) {
  LidarUnderTest::Setup setup;
  setup.server.protocol = 2;
  LidarUnderTest lidar(std::move(setup));
  TcpEnd client = TcpEnd::To(lidar.port());
  client.Send({0x57, 0x75, 1, 0x30, 0, 0, 0, 0, 0, 0, 0, 0});
  const Bytes reading = {0x57, 0x75, 1, 0x30, 0, 0, 0, 0, 0, 0, 0, 3, 0x02, 0x58, 0xFD};
  EXPECT_EQ(client.Read(15), reading);
}

TEST(Server, ServesOthersWhileOneIsStuckOrGone) {
  LidarUnderTest lidar({});
  TcpEnd stuck = TcpEnd::To(lidar.port());
  stuck.Send({0x47, 0x74, 0x31, 0, 0, 0, 0, 200, 1, 2, 3});
  TcpEnd flooding = TcpEnd::To(lidar.port());
  flooding.Send(Bytes(300000, 0x47));
  { const TcpEnd leaving = TcpEnd::To(lidar.port()); }
  for (int i = 0; i < 20; ++i) {
    TcpEnd next = TcpEnd::To(lidar.port());
    next.Send(kLiveness);
    EXPECT_EQ(next.Read(8), kLiveness);
  }
  flooding.Send(kLiveness);
  EXPECT_EQ(flooding.Read(8), kLiveness) << "found behind the garbage";
}

TEST(Server, RestartAnswersDropsEveryLinkAndComesBackOnItsPort) {
  LidarUnderTest::Setup setup;
  setup.server.restart_time = std::chrono::milliseconds(20);
  LidarUnderTest lidar(std::move(setup));
  TcpEnd bystander = TcpEnd::To(lidar.port());
  bystander.Send(kLiveness);
  EXPECT_EQ(bystander.Read(8), kLiveness);
  TcpEnd client = TcpEnd::To(lidar.port());
  client.Send(kSetSpeed);
  client.Send({0x47, 0x74, 0x10, 0, 0, 0, 0, 0});
  EXPECT_EQ(client.Read(16).size(), 16U);
  EXPECT_TRUE(client.EndsHere());
  EXPECT_TRUE(bystander.EndsHere());
  EXPECT_TRUE(lidar.LogShows("restarted"));
  TcpEnd again = TcpEnd::To(lidar.port());
  again.Send(kReadSpeed);
  EXPECT_EQ(again.Read(11), (Bytes{0x47, 0x74, 0x30, 0, 0, 0, 0, 3, 0x04, 0xB0, 5}))
      << "settings survive";
}

TEST(Server, DumpIsWholeAndThereBeforeTheAnswer) {
  const QTemporaryDir folder;
  const QString path = folder.filePath("state.json");
  LidarUnderTest::Setup setup;
  setup.server.dump_file = path.toStdString();
  setup.rows += "5,1,,0x44,,Shared Secret Key,1,raw,,,,,,,16\n";
  LidarUnderTest lidar(std::move(setup));
  const auto dumped = [&](const char* name) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QJsonDocument::fromJson(file.readAll())["variables"][name].toObject();
  };
  EXPECT_EQ(dumped("Level"), (QJsonObject{{"id", "1-2"}, {"text", "-3"}, {"hex", "fd"}}));
  TcpEnd client = TcpEnd::To(lidar.port());
  client.Send(kSetSpeed);
  EXPECT_EQ(client.Read(8), kSetReply);
  EXPECT_EQ(dumped("Speed"), (QJsonObject{{"id", "1-1"}, {"text", "1200"}, {"hex", "04 b0"}}));
  client.Send({0x47, 0x74, 0x44, 0, 0, 0, 0, 2, 0xAA, 0xBB});
  EXPECT_EQ(client.Read(8).size(), 8U);
  EXPECT_EQ(dumped("Shared Secret Key"), (QJsonObject{{"id", "5-1"}, {"bytes", 2}}));
  client.Send({0x47, 0x74, 0x25, 0, 0, 0, 0, 0});
  EXPECT_EQ(client.Read(8).size(), 8U);
  EXPECT_EQ(dumped("Speed")["text"].toString(), "600") << "after a reset";
}

TEST(PointCloud, SendsNumberedPacketsOf1200Bytes) {
  kavel::lidar::SocketSource receiver(0, "127.0.0.1", "");
  ASSERT_TRUE(receiver.Open());
  LidarUnderTest::Setup setup;
  std::string error;
  const std::string target = "127.0.0.1:" + std::to_string(receiver.BoundPort()) + "@500";
  ASSERT_TRUE(ParsePointCloudTarget(target, &setup.server.point_cloud.emplace(), &error)) << error;
  LidarUnderTest lidar(std::move(setup));
  kavel::lidar::UdpPacket packet;
  uint32_t last = 0;
  for (int i = 0; i < 5; ++i) {
    // The first call on an idle source only arms the wait.
    int32_t size = receiver.Receive(packet, 1500, 0, 0);
    if (size < 0) {
      size = receiver.Receive(packet, 1500, 0, 5000000);
    }
    ASSERT_EQ(size, 1200);
    EXPECT_EQ(std::string(packet.data.begin(), packet.data.begin() + 4), "KPCL");
    const uint32_t number = kavel::lidar::ReadBigEndian32(packet.data.data() + 4);
    EXPECT_TRUE(i == 0 ? number == 0 : number > last) << number;
    last = number;
  }

  for (const char* bad :
       {"127.0.0.1", "127.0.0.1:0", "127.0.0.1:65536", "host:1", "127.0.0.1:1@", "127.0.0.1:1@x"}) {
    PointCloudTarget parsed;
    EXPECT_FALSE(ParsePointCloudTarget(bad, &parsed, &error)) << bad;
  }
}

}  // namespace
