#include "udp_watch.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include "Source/socket_source.h"
#include "support/qt_wait_for.h"

namespace {

using kavel::lidar::SocketSource;

uint16_t FreePort() {
  SocketSource source(0, "127.0.0.1", "");
  return source.Open() ? source.BoundPort() : uint16_t{0};
}

TEST(UdpWatchTest, NamesTheSenderOfPackets) {
  const uint16_t port = FreePort();
  SocketSource lidar(0, "127.0.0.1", "");
  ASSERT_TRUE(lidar.Open());
  lidar.SetPeer(htonl(INADDR_LOOPBACK), port);
  UdpWatch watch;
  ASSERT_TRUE(watch.Start(QString::number(port))) << watch.summary().toStdString();
  EXPECT_EQ(watch.summary(), QString("Waiting for packets on UDP port %1.").arg(port));
  const auto packets_arrive = [&] {
    const uint8_t packet[] = {1, 2, 3};
    lidar.Send(packet, sizeof packet, 0);
    return watch.arriving();
  };
  ASSERT_TRUE(WaitFor(packets_arrive));
  EXPECT_EQ(watch.sender(), QString("127.0.0.1:%1").arg(lidar.BoundPort()));
  EXPECT_TRUE(WaitFor([&] { return !watch.arriving(); })) << "silence is noticed";
  EXPECT_TRUE(watch.summary().contains(watch.sender()));

  watch.Stop();
  EXPECT_FALSE(watch.running());
  EXPECT_TRUE(watch.Start(QString::number(port))) << "a stopped watch has freed its port";
  EXPECT_EQ(watch.packet_count(), 0);
}

TEST(UdpWatchTest, SaysWhyItDoesNotStart) {
  UdpWatch watch;
  for (const char* text : {"", "0", "65536", "-1", "2368x", "23 68"}) {
    EXPECT_FALSE(watch.Start(text)) << text;
    EXPECT_EQ(watch.summary(), "The UDP port has to be a number from 1 to 65535.") << text;
  }
}

}  // namespace
