#include "Source/packet_listener.h"

#include <gtest/gtest.h>

#include "Platform/ipv4_text.h"
#include "support/wait_for.h"

namespace kavel::lidar {
namespace {

TEST(PacketListener, TellsTheFirstSenderAndCountsAll) {
  std::vector<std::string> told;  // on the listener's thread, read once that has ended
  PacketListener listener(
      0, "127.0.0.1", "",
      {[&](const std::string& address) { told.push_back(address); }, [] { FAIL(); }});
  ASSERT_TRUE(listener.Start());
  EXPECT_FALSE(listener.Start()) << "it runs already";
  uint64_t packets = 0;
  for (const char* from : {"127.0.0.7", "127.0.0.8"}) {
    SocketSource sender(0, from, "");
    ASSERT_TRUE(sender.Open());
    sender.SetPeer(htonl(INADDR_LOOPBACK), listener.BoundPort());
    const uint8_t packet[] = {1, 2, 3};
    ASSERT_EQ(sender.Send(packet, 3, 0), 3);
    ++packets;
    ASSERT_TRUE(testing::WaitFor([&] { return listener.totals().packets == packets; }));
    const uint32_t ip = listener.totals().ip;
    EXPECT_EQ(DottedIpv4(reinterpret_cast<const uint8_t*>(&ip)), from);
    EXPECT_EQ(listener.totals().port, sender.BoundPort());
  }
  listener.Stop();
  EXPECT_EQ(told, std::vector<std::string>{"127.0.0.7"});
  EXPECT_TRUE(listener.Start()) << "and again";
  EXPECT_EQ(listener.totals().packets, 0U);
}

}  // namespace
}  // namespace kavel::lidar
