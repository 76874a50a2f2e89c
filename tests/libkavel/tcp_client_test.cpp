#include "CmxClient/tcp_client.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

#include "CmxClient/tcp_open.h"
#include "support/log_lines.h"
#include "support/socket_peer.h"
#include "support/wait_for.h"

namespace kavel::lidar {
namespace {

using namespace testing;

const std::string kHere = "127.0.0.1";

bool Open(TcpClient& client, uint16_t port, const std::string& ip = kHere) {
  return client.Open(ip, port, false, nullptr, nullptr, nullptr);
}

bool TryOpen(TcpClient& client, uint16_t port, uint16_t host_port = 0,
             const std::string& ip = kHere) {
  return client.TryOpen(host_port, ip, port, false, "", "", "", 1);
}

void Echo(TcpEnd& peer) {
  for (Bytes byte = peer.Read(1); !byte.empty(); byte = peer.Read(1)) {
    peer.Send(byte);
  }
}

TEST(TcpClient, CarriesBytesBothWays) {
  LogLines log;
  SocketPeer peer(Echo);
  TcpClient client;
  ASSERT_TRUE(Open(client, peer.port()));
  EXPECT_TRUE(Open(client, peer.port()) && TryOpen(client, peer.port())) << "open already";
  EXPECT_EQ(log.Count(kInfo, "Open() IP 127.0.0.1 port " + std::to_string(peer.port())), 1);
  EXPECT_EQ(log.Count(kInfo, " succeed, IP 127.0.0.1 port " + std::to_string(peer.port())), 1);
  EXPECT_EQ(log.Count(kInfo, "TryOpen succeed"), 0);

  Bytes bytes = {1, 2, 3};
  EXPECT_EQ(client.Send(bytes.data(), 3, 0), 3);
  for (uint8_t& byte : bytes) {
    ASSERT_EQ(client.Receive(&byte, 1, 0), 1);
  }
  EXPECT_EQ(bytes, (Bytes{1, 2, 3}));
  EXPECT_EQ(client.Receive(bytes.data(), 3, ClientBase::kPoll), -1);
  EXPECT_EQ(client.SetTimeout(10, 10), 0);
  EXPECT_EQ(client.Receive(bytes.data(), 3, 0), -1);
  EXPECT_EQ(log.Count(kError, ""), 0) << "waiting in vain is not worth a line";
}

TEST(TcpClient, ReportsAPeerThatCloses) {
  LogLines log;
  SocketPeer peer([](TcpEnd&) {});
  TcpClient client;
  ASSERT_TRUE(TryOpen(client, peer.port()));
  Bytes buffer(8);
  EXPECT_EQ(client.Receive(buffer.data(), 8, 0), 0);
  EXPECT_EQ(log.Count(kError, "Connection closed by peer, recv returned 0"), 1);
  // The first send may still be taken by the system; a later one finds the pipe broken, which must
  // not end the program.
  EXPECT_TRUE(WaitFor([&] { return client.Send(buffer.data(), 8, 0) == -1; }));
  EXPECT_GE(log.Count(kError, "Send errno"), 1);
}

TEST(TcpClient, FailsWithAReason) {
  const std::string refused = std::to_string(kSocketRefused);
  LogLines log;
  TcpClient client;
  EXPECT_FALSE(Open(client, 1, "no address"));
  EXPECT_FALSE(TryOpen(client, 1, 0, "no address"));
  EXPECT_EQ(client.OpenFailure(), "\"no address\" is no IPv4 address.");
  EXPECT_EQ(tcp_open("no address", 5), -1);
  EXPECT_FALSE(Open(client, UnusedPort()));
  EXPECT_FALSE(TryOpen(client, UnusedPort()));
  EXPECT_EQ(tcp_open(kHere.c_str(), UnusedPort()), -1);
  EXPECT_NE(client.OpenFailure().find(": the connection was refused"), std::string::npos);
  EXPECT_EQ(client.SetTimeout(1, 1), -1);
  for (const std::string& line : std::vector<std::string>{
           "Open inet_pton error:no address", "TryOpen inet_pton error:no address",
           "tcp_open inet_pton error:no address", "connect failed " + refused,
           "connect lidar fail errno " + refused, "connect errno:" + refused + ", Connection"}) {
    EXPECT_EQ(log.Count(kError, line), 1) << line;
  }
  EXPECT_EQ(log.Count(kError, ""), 6) << "a refused TryOpen says nothing";
  EXPECT_EQ(log.Count(kInfo, "ip:no address port:5"), 1);
  EXPECT_EQ(log.Count(kWarning, "TcpClient not open"), 1);

  uint8_t byte = 0;
  EXPECT_EQ(client.Send(&byte, 1, 0), -1) << "tries one plain open, which is refused too";
  EXPECT_EQ(client.Receive(&byte, 1, 0), -1);
}

TEST(TcpClient, GivesUpOnAPortThatNeverAnswers) {
  DeafPort deaf;
  TcpClient client;
  EXPECT_FALSE(TryOpen(client, deaf.port()));

  // A plain open waits longer; an interruption ends it and everything after it.
  auto open = std::async(std::launch::async, [&] { return Open(client, deaf.port()); });
  client.Interrupt();
  EXPECT_FALSE(open.get());
  SocketPeer peer(Echo);
  EXPECT_FALSE(TryOpen(client, peer.port()));
}

TEST(TcpClient, AHostPortIsUsedAndFreeAgainAtOnce) {
  LogLines log;
  std::atomic<int> resets{0};
  SocketPeer peer([&](TcpEnd& connection) { resets += connection.WaitForEnd() ? 1 : 0; });
  const uint16_t host_port = UnusedPort();
  for (int round = 1; round <= 5; ++round) {
    TcpClient client;
    ASSERT_TRUE(TryOpen(client, peer.port(), host_port)) << client.OpenFailure();
    // The system lets a second program bind it, too, and refuses only the connection.
    TcpClient second;
    EXPECT_FALSE(TryOpen(second, peer.port(), host_port));
    EXPECT_NE(second.OpenFailure().find(" is in use"), std::string::npos);
    EXPECT_EQ(client.SetTimeout(0, 0), 0);
    uint8_t byte = 0;
    auto waiting = std::async(std::launch::async, [&] { return client.Receive(&byte, 1, 0); });
    client.Interrupt();
    EXPECT_LT(waiting.get(), 1);
    client.Close();
    ASSERT_TRUE(WaitFor([&] { return resets == round; })) << "an orderly end would keep the port";
  }
  EXPECT_EQ(log.Count(kError, "setsockopt"), 0);
}

TEST(TcpClient, AHostPortInUseIsNamed) {
  LogLines log;
  SocketPeer peer(Echo);
  SocketPeer other(Echo);
  const std::string port = std::to_string(other.port());
  TcpClient client;
  EXPECT_FALSE(TryOpen(client, peer.port(), other.port()));
  EXPECT_EQ(log.Count(kError, "Failed to bind local port " + port +
                                  ", WSAGetLastError:" + std::to_string(kSocketAddressInUse)),
            1);
  EXPECT_NE(client.OpenFailure().find(port + " is in use"), std::string::npos);
  const auto any_other =
      UniqueSocket::Owning(tcp_try_open(other.port(), kHere.c_str(), peer.port(), 1));
  EXPECT_TRUE(any_other);
  EXPECT_EQ(log.Count(kError, "Failed to bind local port, system will auto assign one"), 1);
}

}  // namespace
}  // namespace kavel::lidar
