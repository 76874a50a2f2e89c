#include "CmxClient/tcp_client.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "CmxClient/tcp_ssl_client.h"
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

void Echo(PeerConnection& peer) {
  for (Bytes byte = peer.Read(1); !byte.empty(); byte = peer.Read(1)) peer.Send(byte);
}

TEST(TcpClient, CarriesBytesBothWays) {
  LogLines log;
  SocketPeer peer(Echo);
  TcpClient client;
  ASSERT_TRUE(Open(client, peer.port()));
  ASSERT_TRUE(Open(client, peer.port())) << "open already";
  const std::string port = std::to_string(peer.port());
  EXPECT_EQ(log.Count(kInfo, "Open() IP 127.0.0.1 port " + port), 1);
  EXPECT_EQ(log.Count(kInfo, " succeed, IP 127.0.0.1 port " + port), 1);

  Bytes bytes = {1, 2, 3};
  EXPECT_EQ(client.Send(bytes.data(), 3, 0), 3);
  Bytes buffer(8);
  int32_t received = 0;
  while (received < 3) {
    const int32_t count = client.Receive(buffer.data() + received, 8, 0);
    ASSERT_GT(count, 0);
    received += count;
  }
  EXPECT_EQ(Bytes(buffer.begin(), buffer.begin() + 3), bytes);
  EXPECT_EQ(peer.accepted(), 1);
  client.Close();
  EXPECT_FALSE(client.IsOpened());
}

TEST(TcpClient, PollingAndWaitingInVain) {
  LogLines log;
  SocketPeer peer([](PeerConnection& connection) { connection.WaitForEnd(); });
  TcpClient client;
  ASSERT_TRUE(TryOpen(client, peer.port()));
  EXPECT_EQ(log.Count(kInfo, "TryOpen succeed, IP 127.0.0.1"), 1);
  Bytes buffer(8);
  EXPECT_EQ(client.Receive(buffer.data(), 8, ClientBase::kPoll), -1);
  EXPECT_EQ(client.SetTimeout(10, 10), 0);
  EXPECT_EQ(client.Receive(buffer.data(), 8, 0), -1);
  EXPECT_TRUE(client.SetReceiveTimeout(5));
  EXPECT_EQ(log.Count(kError, ""), 0) << "neither is worth a line";
}

TEST(TcpClient, ReportsAPeerThatCloses) {
  LogLines log;
  SocketPeer peer([](PeerConnection&) {});
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
  LogLines log;
  TcpClient client;
  EXPECT_FALSE(Open(client, 1, "no address"));
  EXPECT_EQ(log.Count(kError, "Open inet_pton error:no address"), 1);
  EXPECT_FALSE(TryOpen(client, 1, 0, "no address"));
  EXPECT_EQ(log.Count(kError, "TryOpen inet_pton error:no address"), 1);

  const uint16_t unused = UnusedPort();
  EXPECT_FALSE(Open(client, unused));
  EXPECT_EQ(log.Count(kError, "connect failed " + std::to_string(ECONNREFUSED)), 1);
  EXPECT_EQ(log.Count(kError, "connect lidar fail errno " + std::to_string(ECONNREFUSED)), 1);
  EXPECT_FALSE(TryOpen(client, unused));
  EXPECT_EQ(client.OpenFailure(), "");

  uint8_t byte = 0;
  EXPECT_EQ(client.Send(&byte, 1, 0), -1) << "tries one plain open, which is refused too";
  EXPECT_EQ(client.Receive(&byte, 1, 0), -1);
  EXPECT_EQ(log.Count(kError, "connect failed"), 3);

  EXPECT_EQ(client.SetTimeout(1, 1), -1);
  EXPECT_FALSE(client.SetReceiveTimeout(1));
  client.SetReceiveBufferSize(1);
  EXPECT_EQ(log.Count(kWarning, "TcpClient not open"), 3);
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

TEST(TcpClient, InterruptWakesAReceive) {
  SocketPeer peer([](PeerConnection& connection) { connection.WaitForEnd(); });
  TcpClient client;
  ASSERT_TRUE(TryOpen(client, peer.port()));
  client.SetTimeout(600000, 600000);
  std::promise<void> started;
  auto receive = std::async(std::launch::async, [&] {
    uint8_t byte = 0;
    started.set_value();
    return client.Receive(&byte, 1, 0);
  });
  started.get_future().wait();
  client.Interrupt();
  EXPECT_LE(receive.get(), 0);
  EXPECT_FALSE(client.IsOpened());
}

TEST(TcpClient, AHostPortIsUsedAndFreeAgainAtOnce) {
  SocketPeer peer(Echo);
  const uint16_t host_port = UnusedPort();
  for (int round = 0; round < 5; ++round) {
    TcpClient client;
    ASSERT_TRUE(TryOpen(client, peer.port(), host_port)) << client.OpenFailure();
    uint8_t byte = 7;
    EXPECT_EQ(client.Send(&byte, 1, 0), 1);
    EXPECT_EQ(client.Receive(&byte, 1, 0), 1);
    // The system lets a second program bind it, too, and refuses only the connection.
    TcpClient second;
    EXPECT_FALSE(TryOpen(second, peer.port(), host_port));
    EXPECT_NE(second.OpenFailure().find(std::to_string(host_port) + " is in use"),
              std::string::npos);
  }
}

TEST(TcpClient, AHostPortInUseIsNamed) {
  LogLines log;
  SocketPeer peer(Echo);
  SocketPeer other([](PeerConnection&) {});
  const std::string port = std::to_string(other.port());
  TcpClient client;
  EXPECT_FALSE(TryOpen(client, peer.port(), other.port()));
  EXPECT_EQ(log.Count(kError, "Failed to bind local port " + port +
                                  ", WSAGetLastError:" + std::to_string(EADDRINUSE)),
            1);
  EXPECT_NE(client.OpenFailure().find(port + " is in use"), std::string::npos);

  const int socket = tcp_try_open(other.port(), kHere.c_str(), peer.port(), 1);
  EXPECT_NE(socket, -1) << "takes any other port";
  EXPECT_EQ(log.Count(kError, "Failed to bind local port, system will auto assign one"), 1);
  CloseSocket(socket);
}

TEST(TcpClient, ReceiveBuffersOnlyGrow) {
  SocketPeer peer(Echo);
  const int socket = tcp_open(kHere.c_str(), peer.port());
  ASSERT_NE(socket, -1);
  StreamSocket stream;
  ASSERT_TRUE(stream.Adopt(socket));
  int before = 0;
  int after = 0;
  ASSERT_TRUE(GetSocketOption(socket, SOL_SOCKET, SO_RCVBUF, &before));
  stream.SetReceiveBufferSize(1);
  ASSERT_TRUE(GetSocketOption(socket, SOL_SOCKET, SO_RCVBUF, &after));
  EXPECT_EQ(after, before);
  SetSocketOption(socket, SOL_SOCKET, SO_RCVBUF, 4096);
  stream.SetReceiveBufferSize(65536);
  ASSERT_TRUE(GetSocketOption(socket, SOL_SOCKET, SO_RCVBUF, &after));
  EXPECT_GE(after, 65536);

  const int next = tcp_open(kHere.c_str(), peer.port());
  SetSocketOption(next, SOL_SOCKET, SO_RCVBUF, 4096);
  ASSERT_TRUE(stream.Adopt(next));
  ASSERT_TRUE(GetSocketOption(next, SOL_SOCKET, SO_RCVBUF, &after));
  EXPECT_GE(after, 65536) << "kept across a reconnection";
}

TEST(TcpOpen, LogsWhyItFailed) {
  LogLines log;
  EXPECT_EQ(tcp_open("300.1.1.1", 5), -1);
  EXPECT_EQ(log.Count(kInfo, "ip:300.1.1.1 port:5"), 1);
  EXPECT_EQ(log.Count(kError, "tcp_open inet_pton error:300.1.1.1"), 1);
  EXPECT_EQ(tcp_open(kHere.c_str(), UnusedPort()), -1);
  EXPECT_EQ(log.Count(kError, "connect errno:" + std::to_string(ECONNREFUSED) + ", Connection"), 1);
  EXPECT_EQ(tcp_try_open(0, kHere.c_str(), UnusedPort(), 1), -1);
}

}  // namespace
}  // namespace kavel::lidar
