#include "Source/socket_source.h"

#include <gtest/gtest.h>

#include "support/log_lines.h"

namespace kavel::lidar {
namespace {

using testing::LogLines;

constexpr int32_t kPatienceUs = 5'000'000;

// Sends from a second source, so that both directions are exercised.
void SendTo(SocketSource& sender, uint16_t port, const std::vector<uint8_t>& data) {
  ASSERT_TRUE(sender.IsOpened() || sender.Open());
  sender.SetPeer(htonl(INADDR_LOOPBACK), port);
  ASSERT_EQ(sender.Send(data.data(), static_cast<uint16_t>(data.size()), 0),
            static_cast<int32_t>(data.size()));
}

// The first call may find the source idle and only arm the wait.
int32_t ReceiveArmed(SocketSource& source, UdpPacket& packet, uint16_t length) {
  const int32_t count = source.Receive(packet, length, 0, kPatienceUs);
  return count >= 0 ? count : source.Receive(packet, length, 0, kPatienceUs);
}

TEST(SocketSource, FirstReceiveOnAnIdleSourceArmsTheWait) {
  LogLines log;
  SocketSource source(0, "127.0.0.1", "");
  EXPECT_EQ(source.BoundPort(), 0);
  UdpPacket packet;
  EXPECT_EQ(source.Receive(packet, 1500, 0, 3'600'000), -1) << "opens by itself, does not wait";
  EXPECT_EQ(packet.timed_out, 0);
  EXPECT_EQ(source.Receive(packet, 1500, 0, 1000), 0);
  EXPECT_EQ(packet.timed_out, 1);
  EXPECT_EQ(log.Count(kInfo, "OS current udp socket recv buff size is: "), 1);
  EXPECT_EQ(log.Count(kWarning, "SocketSource::IsOpened(), port 0, sock -1 is not open"), 1);
}

TEST(SocketSource, DeliversPacketsWithTheirSender) {
  SocketSource source(0, "127.0.0.1", "");
  ASSERT_TRUE(source.Open());
  SocketSource sender(0, "127.0.0.1", "");
  std::vector<uint8_t> data(1200, 0x5A);
  SendTo(sender, source.BoundPort(), data);
  SendTo(sender, source.BoundPort(), {1, 2, 3, 4});
  SendTo(sender, source.BoundPort(), {});
  UdpPacket packet;
  ASSERT_EQ(ReceiveArmed(source, packet, 1500), 1200);
  EXPECT_TRUE(std::equal(data.begin(), data.end(), packet.data.begin()));
  EXPECT_EQ(packet.ip, htonl(INADDR_LOOPBACK));
  EXPECT_EQ(packet.port, sender.BoundPort());
  EXPECT_EQ(ReceiveArmed(source, packet, 3), 3) << "cut to what was asked for";
  EXPECT_EQ(ReceiveArmed(source, packet, 65535), 0);
  EXPECT_EQ(packet.timed_out, 0) << "an empty packet is a packet";
}

TEST(SocketSource, SendNeedsASocketAndAPeer) {
  LogLines log;
  SocketSource source(0, "127.0.0.1", "");
  const uint8_t byte = 1;
  EXPECT_EQ(source.Send(&byte, 1, 0), -1);
  EXPECT_EQ(log.Count(kError, "SocketSource::Send, port 0, sock -1 is not open"), 1);
  ASSERT_TRUE(source.Open());
  EXPECT_EQ(source.Send(&byte, 1, 0), -1);
  EXPECT_EQ(log.Count(kError, "SocketSource::Send, client ip is empty"), 1);
  // Broadcasting is not switched on, so this address is refused.
  source.SetPeer(INADDR_BROADCAST, 9);
  EXPECT_EQ(source.Send(&byte, 1, 0), -1);
  EXPECT_EQ(log.Count(kError, "SocketSource::Send, errno:"), 1);
  EXPECT_EQ(log.Count(kInfo, "SocketSource::Close()"), 1);
  EXPECT_FALSE(source.IsOpened());
}

TEST(SocketSource, AForeignAddressIsAFailureAndAWrongGroupIsNone) {
  LogLines log;
  for (const std::string wrong : {"192.0.2.1", "no address"}) {
    EXPECT_FALSE(SocketSource(0, wrong, "").Open());
    EXPECT_TRUE(SocketSource(0, "", wrong).Open()) << "unicast still arrives";
  }
  EXPECT_EQ(log.Count(kError, "SocketSource::Open(), bind failed, errno: "), 2);
  EXPECT_EQ(
      log.Count(kError, "Multicast IP error, set correct multicast ip address or keep it empty"),
      2);
}

}  // namespace
}  // namespace kavel::lidar
