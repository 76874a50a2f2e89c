#include "Source/address_finder.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/wait_for.h"

namespace kavel::lidar {
namespace {

TEST(AddressFinder, TellsTheFirstSenderAndCountsAll) {
  std::vector<std::string> told;  // on the finder's thread, read once that has ended
  AddressFinder finder(0, "127.0.0.1", "",
                       [&](const std::string& address) { told.push_back(address); });
  ASSERT_TRUE(finder.Start());
  EXPECT_FALSE(finder.Start()) << "it runs already";
  const std::vector<uint8_t> packet(1200);
  for (const char* from : {"127.0.0.7", "127.0.0.8", "127.0.0.7"}) {
    SocketSource sender(0, from, "");
    ASSERT_TRUE(sender.Open());
    sender.SetPeer(htonl(INADDR_LOOPBACK), finder.BoundPort());
    const uint64_t before = finder.TotalPackets();
    ASSERT_EQ(sender.Send(packet.data(), 1200, 0), 1200);
    ASSERT_TRUE(testing::WaitFor([&] { return finder.TotalPackets() == before + 1; }));
  }
  finder.Stop();
  EXPECT_EQ(told, std::vector<std::string>{"127.0.0.7"});
  const std::vector<AddressFinder::Sender> senders = finder.Senders();
  ASSERT_EQ(senders.size(), 2U);
  EXPECT_EQ(senders[0].packets, 2U);
  EXPECT_EQ(senders[0].bytes, 2400U);
  EXPECT_EQ(senders[1].address, "127.0.0.8");
  EXPECT_EQ(finder.TotalBytes(), 3600U);
  EXPECT_TRUE(finder.Start()) << "and again";
}

}  // namespace
}  // namespace kavel::lidar
