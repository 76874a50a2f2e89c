#include "CmxClient/tcp_ssl_client.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <string>

#include "libkavel/openssl_server.h"
#include "support/log_lines.h"
#include "support/socket_peer.h"
#include "support/wait_for.h"

namespace kavel::lidar {
namespace {

using namespace testing;

const char* const kHere = "127.0.0.1";

class TlsTest : public ::testing::Test {
 protected:
  bool StartTls(int port) { return client.StartTls(tcp_open(kHere, port)); }

  std::string Reversed(const std::string& line) {
    Bytes bytes(line.begin(), line.end());
    bytes.push_back('\n');
    const auto size = static_cast<uint16_t>(bytes.size());
    EXPECT_EQ(client.Send(bytes.data(), size, 0), size);
    Bytes answer(size);
    EXPECT_EQ(client.Receive(answer.data(), size, 0), size);
    return std::string(answer.begin(), answer.end() - 1);
  }

  static void SetUpTestSuite() { certificates = new Certificates; }
  static void TearDownTestSuite() {
    delete certificates;
    certificates = nullptr;
  }
  static Certificates* certificates;

  const std::string cert = certificates->Cert("lidar");
  const std::string key = certificates->Key("lidar");
  LogLines log;
  TcpSslClient client;
};

Certificates* TlsTest::certificates = nullptr;

TEST_F(TlsTest, TalksToAServerThatItTrusts) {
  OpensslServer server(cert, key);
  ASSERT_TRUE(client.InitSslClient("", "", cert));
  ASSERT_TRUE(StartTls(server.port()));
  EXPECT_TRUE(client.IsOpened());
  EXPECT_EQ(log.Count(kInfo, "ca path: " + cert), 1);
  EXPECT_EQ(log.Count(kInfo, "TcpSslClient::Open() success!"), 1);
  EXPECT_EQ(Reversed("lidar"), "radil");
  EXPECT_EQ(Reversed(std::string(9000, 'a') + "b"), "b" + std::string(9000, 'a'));

  uint8_t byte = 0;
  EXPECT_EQ(client.Receive(&byte, 1, ClientBase::kPoll), -1);
  EXPECT_EQ(log.Count(kError, ""), 0);
  EXPECT_EQ(client.SetTimeout(10, 10), 0);
  EXPECT_EQ(client.Receive(&byte, 1, 0), -1);
  EXPECT_EQ(log.Count(kError, "ssl receive failed"), 1);
  client.Close();
  EXPECT_FALSE(client.IsOpened());
  EXPECT_EQ(client.SetTimeout(10, 10), -1);
}

TEST_F(TlsTest, ShowsItsOwnCertificate) {
  OpensslServer server(
      cert, key, {"-Verify", "1", "-verify_return_error", "-CAfile", certificates->Cert("other")});
  ASSERT_TRUE(client.InitSslClient(certificates->Cert("other"), certificates->Key("other"), cert));
  EXPECT_EQ(log.Count(kInfo, "cert path: " + certificates->Cert("other") +
                                 ",\nprivate_key path: " + certificates->Key("other")),
            1);
  ASSERT_TRUE(StartTls(server.port()));
  EXPECT_EQ(Reversed("ab"), "ba");
}

TEST_F(TlsTest, RefusesAServerThatItCannotVerify) {
  OpensslServer server(cert, key);
  ASSERT_TRUE(client.InitSslClient("", "", ""));
  EXPECT_FALSE(StartTls(server.port()));
  EXPECT_EQ(log.Count(kError, "verify ssl failed"), 1);
  ASSERT_TRUE(client.InitSslClient(cert, key, certificates->Cert("other")));
  EXPECT_FALSE(StartTls(server.port()));
  EXPECT_EQ(log.Count(kError, "connect ssl failed"), 1) << "checked within the handshake";
  EXPECT_FALSE(client.IsOpened());
}

TEST_F(TlsTest, NamesTheFileThatIsWrong) {
  EXPECT_FALSE(client.InitSslClient("", "", "/nowhere/ca.crt"));
  EXPECT_EQ(log.Count(kError, "load ca failed,please check ca file path"), 1);
  EXPECT_FALSE(client.InitSslClient("/nowhere/a.crt", key, ""));
  EXPECT_EQ(log.Count(kError, "load cert file failed,please check cert file path"), 1);
  EXPECT_FALSE(client.InitSslClient(cert, "/nowhere/a.key", ""));
  EXPECT_EQ(log.Count(kError, "load private key file failed,please check private key file path"),
            1);
  EXPECT_FALSE(client.StartTls(kInvalidSocket));
  const auto other_key = certificates->Key("other");
  EXPECT_FALSE(client.InitSslClient(cert, other_key, ""));
  EXPECT_FALSE(client.Open(kHere, UnusedPort(), false, cert.c_str(), other_key.c_str(), nullptr));
  EXPECT_EQ(log.Count(kError, "create SSL_CTX failed"), 1);
}

TEST_F(TlsTest, SurvivesPeersThatAreNoTlsServers) {
  SocketPeer closing([](PeerConnection& peer) { peer.Reset(); });
  SocketPeer silent([](PeerConnection& peer) { peer.WaitForEnd(); });
  ASSERT_TRUE(client.InitSslClient("", "", ""));
  EXPECT_FALSE(StartTls(closing.port()));
  EXPECT_EQ(log.Count(kError, "connect ssl failed"), 1);

  ASSERT_TRUE(client.InitSslClient("", "", ""));
  auto handshake = std::async(std::launch::async, [&] { return StartTls(silent.port()); });
  client.Interrupt();
  EXPECT_FALSE(handshake.get());
}

TEST_F(TlsTest, GivesUpAConnectionThatWasMade) {
  std::atomic<int> ended{0};
  SocketPeer peer([&](PeerConnection& connection) {
    connection.WaitForEnd();
    ++ended;
  });
  EXPECT_FALSE(client.Open(kHere, peer.port(), false, nullptr, nullptr, nullptr));
  EXPECT_FALSE(client.TryOpen(0, kHere, peer.port(), false, "", "", "", 1));
  EXPECT_EQ(log.Count(kError, "Connect to Server Failed!~!~"), 2);
  EXPECT_TRUE(WaitFor([&] { return ended == 2; })) << "both sockets were closed";

  EXPECT_FALSE(client.TryOpen(0, kHere, UnusedPort(), false, "", "", "", 1));
  EXPECT_EQ(log.Count(kError, "connect ssl failed"), 1) << "TLS is tried where nothing connected";
  uint8_t byte = 0;
  EXPECT_EQ(client.Send(&byte, 1, 0), -1);
  EXPECT_EQ(client.Receive(&byte, 1, ClientBase::kPoll), -1);
}

}  // namespace
}  // namespace kavel::lidar
