#include "CmxClient/tcp_ssl_client.h"

#include <gtest/gtest.h>

#include <atomic>
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

  static const Certificates& Made() {
    static const Certificates certificates;
    return certificates;
  }

  const std::string cert = Made().Cert("lidar");
  const std::string key = Made().Key("lidar");
  LogLines log;
  TcpSslClient client;
};

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
}

TEST_F(TlsTest, ShowsItsOwnCertificate) {
  const std::string own = Made().Cert("other");
  OpensslServer server(cert, key, "-Verify 1 -verify_return_error -CAfile " + own);
  ASSERT_TRUE(client.InitSslClient(own, Made().Key("other"), cert));
  EXPECT_EQ(log.Count(kInfo, "cert path: " + own + ",\nprivate_key path: "), 1);
  ASSERT_TRUE(StartTls(server.port()));
  EXPECT_EQ(Reversed("ab"), "ba");
}

TEST_F(TlsTest, RefusesAServerThatItCannotVerify) {
  OpensslServer server(cert, key);
  ASSERT_TRUE(client.InitSslClient("", "", ""));
  EXPECT_FALSE(StartTls(server.port()));
  EXPECT_EQ(log.Count(kError, "verify ssl failed"), 1);
  ASSERT_TRUE(client.InitSslClient(cert, key, Made().Cert("other")));
  EXPECT_FALSE(StartTls(server.port()));
  EXPECT_EQ(log.Count(kError, "connect ssl failed"), 1) << "checked within the handshake";
  EXPECT_FALSE(client.IsOpened());
}

TEST_F(TlsTest, NamesTheFileThatIsWrong) {
  const std::string other_key = Made().Key("other");
  const struct {
    std::string cert, key, ca, line;
  } cases[] = {
      {"", "", "/nowhere/ca.crt", "load ca failed,please check ca file path"},
      {"/nowhere/a.crt", key, "", "load cert file failed,please check cert file path"},
      {cert, "/no.key", "", "load private key file failed,please check private key file path"},
      {cert, other_key, "", ""},
  };
  for (const auto& each : cases) {
    EXPECT_FALSE(client.InitSslClient(each.cert, each.key, each.ca)) << each.key;
    EXPECT_GE(log.Count(kError, each.line), 1) << each.line;
  }
  EXPECT_FALSE(client.Open(kHere, UnusedPort(), false, cert.c_str(), other_key.c_str(), nullptr));
  EXPECT_EQ(log.Count(kError, "create SSL_CTX failed"), 1);
}

TEST_F(TlsTest, GivesUpAConnectionThatWasMade) {
  std::atomic<int> ended{0};
  SocketPeer peer([&](TcpEnd& connection) {
    connection.WaitForEnd();
    ++ended;
  });
  EXPECT_FALSE(client.Open(kHere, peer.port(), false, nullptr, nullptr, nullptr));
  EXPECT_FALSE(client.TryOpen(0, kHere, peer.port(), false, "", "", "", 1));
  EXPECT_EQ(log.Count(kError, "Connect to Server Failed!~!~"), 2);
  EXPECT_TRUE(WaitFor([&] { return ended == 2; })) << "both sockets were closed";

  EXPECT_FALSE(client.TryOpen(0, kHere, UnusedPort(), false, "", "", "", 1));
  EXPECT_EQ(log.Count(kError, "connect ssl failed"), 1) << "TLS is tried where nothing connected";
}

}  // namespace
}  // namespace kavel::lidar
