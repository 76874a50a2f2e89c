#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "lidar_under_test.h"
#include "tls_end.h"

namespace {

LidarUnderTest::Setup WithTls(bool wants_certificate) {
  LidarUnderTest::Setup setup;
  setup.server.tls = LidarFiles();
  setup.server.tls->ca = wants_certificate ? TlsFile("ca.pem") : "";
  return setup;
}

TEST(TlsLink, ServesOthersWhileSomeFailOrStallInTheHandshake) {
  LidarUnderTest lidar(WithTls(false));
  TcpEnd stuck = TcpEnd::To(lidar.port());
  stuck.Send({0x16, 0x03, 0x01, 0x02, 0x00, 0x01});
  TcpEnd plain = TcpEnd::To(lidar.port());
  plain.Send(kLiveness);
  EXPECT_TRUE(lidar.LogShows("dropped 127.0.0.1:"));
  EXPECT_TRUE(lidar.LogShows(": it does not speak TLS"));
  TlsEnd client = TlsEnd::To(lidar.port());
  client.Send(kSetSpeed);
  EXPECT_EQ(client.Read(8), kSetReply);
  EXPECT_EQ(lidar.Held("Speed"), (Bytes{0x04, 0xB0}));
}

TEST(TlsLink, CarriesMoreThanTheConnectionTakesAtOnce) {
  constexpr uint32_t kSize = 3000000;
  LidarUnderTest::Setup setup = WithTls(false);
  setup.rows += "5,1,0x5A0302,,,Config File,0,raw,,,,,,,1\n";
  setup.profile.log_size = kSize;
  LidarUnderTest lidar(std::move(setup));
  TlsEnd client = TlsEnd::To(lidar.port());
  constexpr int kTimes = 4;  // nothing is read before all are asked for
  for (int i = 0; i < kTimes; ++i) {
    client.Send({0x47, 0x74, 0xFF, 0, 0, 0, 0, 3, 0x5A, 0x03, 0x02});
  }
  Bytes first;
  for (int i = 0; i < kTimes; ++i) {
    ASSERT_EQ(client.Read(8), (Bytes{0x47, 0x74, 0xFF, 0, 0x00, 0x2D, 0xC6, 0xC0}));
    const Bytes content = client.Read(kSize);
    EXPECT_EQ(content.size(), kSize);
    EXPECT_TRUE(i == 0 || content == first);
    first = content;
  }
}

TEST(TlsLink, TakesOnlyClientsThatShowTheCertificateItWants) {
  LidarUnderTest lidar(WithTls(true));
  TlsEnd known = TlsEnd::To(lidar.port(), TlsFile("client.pem"), TlsFile("client-key.pem"));
  known.Send(kLiveness);
  EXPECT_EQ(known.Read(8), kLiveness);

  TlsEnd unknown = TlsEnd::To(lidar.port());
  EXPECT_EQ(unknown.Read(1), Bytes());
  EXPECT_NE(unknown.Failure().find("asks for a certificate of this side"), std::string::npos);
  EXPECT_TRUE(lidar.LogShows(": it shows no certificate"));

  // One that is for lidars is none for a client.
  TlsEnd other = TlsEnd::To(lidar.port(), TlsFile("lidar.pem"), TlsFile("lidar-key.pem"));
  EXPECT_EQ(other.Read(1), Bytes());
  EXPECT_NE(other.Failure().find("does not accept the certificate of this side"),
            std::string::npos);
}

}  // namespace
