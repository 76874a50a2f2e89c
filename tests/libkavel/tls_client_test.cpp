#include "CmxClient/tls_client.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cctype>
#include <filesystem>
#include <future>
#include <string>
#include <utility>
#include <vector>

#include "Platform/key_file.h"
#include "libkavel/openssl_server.h"
#include "support/log_lines.h"
#include "support/socket_peer.h"
#include "support/wait_for.h"

namespace kavel::lidar {
namespace {

using namespace testing;

const char* const kHere = "127.0.0.1";
constexpr uint32_t kPatienceMs = 10000;

const Certificates& Made() {
  static const Certificates certificates;
  return certificates;
}

std::string Cert(const std::string& name) { return Made().Cert(name); }
std::string Key(const std::string& name) { return Made().Key(name); }

TlsIdentity By(const std::string& ca) {
  TlsIdentity identity;
  identity.ca = Cert(ca);
  return identity;
}

TlsIdentity Pinned(const std::string& sha256) {
  TlsIdentity identity;
  identity.pinned_sha256 = sha256;
  return identity;
}

TlsIdentity Showing(const std::string& cert, const std::string& key) {
  return {"", Cert(cert), Key(key), ""};
}

bool TryOpen(TlsClient& client, uint16_t port) {
  // The paths are of no consequence.
  return client.TryOpen(0, kHere, port, false, "/nowhere", "/nowhere", "/nowhere", 1) &&
         client.SetTimeout(kPatienceMs, kPatienceMs) == 0;
}

bool Send(TlsClient& client, const std::string& text) {
  Bytes bytes(text.begin(), text.end());
  const auto size = static_cast<uint16_t>(bytes.size());
  return client.Send(bytes.data(), size, 0) == size;
}

std::string Receive(TlsClient& client, size_t size) {
  Bytes bytes(size);
  size_t total = 0;
  while (total < size) {
    const int32_t got =
        client.Receive(bytes.data() + total, static_cast<uint32_t>(size - total), 0);
    if (got < 1) {
      break;
    }
    total += static_cast<size_t>(got);
  }
  return std::string(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(total));
}

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(TlsClient, ChecksWhoTheLidarIs) {
  // A server's certificate, its further arguments, what is asked of it, and what is said of it.
  const struct {
    std::string server;
    std::string arguments;
    TlsIdentity identity;
    std::string failure;
  } cases[] = {
      {"good", "", By("ca"), ""},
      {"good", "-tls1_2", By("ca"), ""},
      {"lower", "", By("below"), ""},
      {"lower", "", By("ca"), "was not made by the CA in " + Cert("ca") + " but by CN=below"},
      {"weak", "-cipher ALL@SECLEVEL=0", {}, "the key of its certificate is too weak"},
      {"lidar", "", By("lidar"), "does not name the address 127.0.0.1"},
      {"lidar", "", {}, ""},
      {"expired", "", {}, ""},
      {"good", "", By("other"), "was not made by the CA in " + Cert("other") + " but by CN=ca"},
      {"lidar", "", By("ca"), "is self-signed and not the one in " + Cert("ca")},
      {"elsewhere", "", By("ca"), "does not name the address 127.0.0.1"},
      {"expired", "", By("ca"), "expired on 2021-01-01T00:00:00Z"},
      {"early", "", By("ca"), "is not valid before 2098-01-01T00:00:00Z; look at the clock"},
      {"good", "", Pinned(std::string(64, 'A')), "shows another certificate"},
      {"good", "-tls1_1 -cipher ALL@SECLEVEL=0", {}, "does not speak TLS 1.2 or newer"},
      {"good", "-tls1_2 -Verify 1", {}, "may ask for a certificate of this side, and none is set"},
      {"good", "-Verify 1 -verify_return_error -CAfile " + Cert("other"), Showing("other", "other"),
       ""},
      {"good", "-tls1_2 -Verify 1 -verify_return_error -CAfile " + Cert("other"),
       Showing("lidar", "lidar"), "does not accept the certificate of this side"},
  };
  for (const auto& each : cases) {
    LogLines log;
    OpensslServer server(Cert(each.server), Key(each.server), each.arguments);
    TlsClient client(each.identity);
    const bool is_open = TryOpen(client, server.port());
    EXPECT_EQ(is_open, each.failure.empty()) << each.server << client.OpenFailure();
    EXPECT_EQ(client.IsOpened(), is_open);
    if (is_open) {
      EXPECT_EQ(client.OpenFailure(), "");
      EXPECT_TRUE(Send(client, "lidar\n"));
      EXPECT_EQ(Receive(client, 6), "radil\n") << each.server << client.OpenFailure();
      EXPECT_EQ(log.Count(kInfo, "TLS with IP 127.0.0.1"), 1);
    } else {
      const std::string place = "127.0.0.1, port " + std::to_string(server.port()) + ": ";
      EXPECT_EQ(client.OpenFailure().rfind(place, 0), size_t{0}) << client.OpenFailure();
      EXPECT_TRUE(Contains(client.OpenFailure(), each.failure)) << client.OpenFailure();
      EXPECT_FALSE(TryOpen(client, server.port()) || client.MayTryAgain());
      EXPECT_EQ(log.Count(kError, client.OpenFailure()), 1) << "told once";
    }
    const bool was_shown = !Contains(each.arguments, "tls1_1");
    ASSERT_EQ(client.Certificate().has_value(), was_shown) << "also one that was refused";
    if (was_shown) {
      EXPECT_EQ(client.Certificate()->subject, "CN=" + each.server);
    }
  }
}

TEST(TlsClient, HoldsOnToACertificateThatWasAccepted) {
  OpensslServer first(Cert("expired"), Key("expired"));
  TlsClient client({});
  ASSERT_TRUE(TryOpen(client, first.port()));
  const TlsCertificate shown = client.Certificate().value_or(TlsCertificate());
  EXPECT_EQ(shown.sha256.size(), size_t{64});
  EXPECT_EQ(shown.issuer, "CN=ca");
  EXPECT_EQ(shown.valid_from, "2020-01-01T00:00:00Z");
  EXPECT_EQ(shown.valid_until, "2021-01-01T00:00:00Z");

  OpensslServer second(Cert("good"), Key("good"));
  EXPECT_FALSE(TryOpen(client, second.port()));
  EXPECT_TRUE(Contains(client.OpenFailure(), " in place of " + shown.sha256));
  EXPECT_EQ(client.Certificate().value_or(TlsCertificate()).subject, "CN=good");
  EXPECT_FALSE(Send(client, "x")) << "nor where the transport opens by itself";
  EXPECT_TRUE(TryOpen(client, first.port()));
  client.Close();

  // As other programs show fingerprints.
  std::string colons;
  for (size_t i = 0; i < shown.sha256.size(); ++i) {
    colons += i != 0 && i % 2 == 0 ? ":" : "";
    colons += static_cast<char>(std::toupper(static_cast<unsigned char>(shown.sha256[i])));
  }
  TlsClient pinned(Pinned(colons));
  EXPECT_TRUE(TryOpen(pinned, first.port())) << pinned.OpenFailure();
  pinned.Close();
  colons[2] = '-';
  EXPECT_EQ(NormalSha256(colons), "");
  TlsClient unusable(Pinned(colons));
  EXPECT_FALSE(TryOpen(unusable, first.port()));
  EXPECT_TRUE(Contains(unusable.OpenFailure(), "is no SHA-256 fingerprint"));
}

TEST(TlsClient, NamesTheFileThatIsOfNoUse) {
  TestFolder folder;
  const std::string text = folder.Write("text", "no certificate\n");
  const std::string large = folder.Write("large", std::string(size_t{2} << 20U, 'x'));
  const struct {
    TlsIdentity identity;
    std::string failure;
  } cases[] = {
      {{"/nowhere/ca", "", "", ""}, "The CA file /nowhere/ca cannot be read: No such file"},
      {{folder.path(), "", "", ""}, "The CA file " + folder.path() + " is no file"},
      {{large, "", "", ""}, "is too large"},
      {{text, "", "", ""}, "The CA file " + text + " holds no certificate in PEM form."},
      {{"", text, Key("lidar"), ""}, "The certificate file " + text + " holds no certificate"},
      {{"", Cert("lidar"), text, ""},
       "The key file " + text + " holds no private key in PEM form."},
      {{"", Cert("lidar"), "/nowhere/k", ""}, "The key file /nowhere/k cannot be read"},
      {{"", Cert("lidar"), Key("other"), ""}, "The key in " + Key("other") + " does not belong to"},
      {{"", Cert("lidar"), "", ""}, "needs its key"},
      {{"", "", Key("lidar"), ""}, "needs its certificate"},
      {{"", Cert("lidar"), Key("encrypted"), ""}, "The key file " + Key("encrypted") + " is encry"},
  };
  std::atomic<bool> was_asked{false};
  SocketPeer peer([&](TcpEnd&) { was_asked = true; });
  for (const auto& each : cases) {
    TlsClient client(each.identity);
    EXPECT_FALSE(TryOpen(client, peer.port()));
    EXPECT_TRUE(Contains(client.OpenFailure(), each.failure)) << client.OpenFailure();
    EXPECT_FALSE(client.Certificate() || client.MayTryAgain());
  }
  EXPECT_FALSE(was_asked) << "nothing connects";

  using std::filesystem::perms;
  for (const bool is_private : {true, false}) {
    LogLines log;
    std::filesystem::permissions(
        text, is_private ? perms::owner_read : perms::owner_read | perms::others_read);
    const TlsClient client({"", text, text, ""});
    EXPECT_EQ(KeyFileWarning(text).empty(), is_private);
    EXPECT_EQ(log.Count(kWarning, "The key file " + text + " can be read by every"),
              is_private ? 0 : 1);
  }
}

TEST(TlsClient, NamesAPeerThatSpeaksNoTls) {
  const struct {
    SocketPeer::Script script;
    std::string failure;
  } cases[] = {
      {[](TcpEnd& peer) { peer.WaitForEnd(); }, "did not finish the TLS handshake in time"},
      {[](TcpEnd& peer) { peer.Read(1); }, "closed the connection in the TLS handshake"},
      // Not before it was greeted: the attempt of TCP itself might then fail.
      {[](TcpEnd& peer) {
         peer.Read(1);
         peer.Reset();
       },
       "closed the connection in the TLS handshake"},
      {[](TcpEnd& peer) {
         peer.Send({0x47, 0x74, 0x07, 0, 0, 0, 0, 0});
         peer.WaitForEnd();
       },
       "it answers without TLS"},
      // Requests to begin anew, without a pause.
      {[](TcpEnd& peer) {
         while (!peer.Ended()) {
           peer.Send({0x16, 0x03, 0x03, 0x00, 0x04, 0x00, 0x00, 0x00, 0x00});
         }
       },
       "did not finish the TLS handshake in time"},
      // A record whose bytes all arrive in time and never end.
      {[](TcpEnd& peer) {
         for (peer.Send({0x16, 0x03, 0x03, 0x40, 0x00}); !peer.Ended(); peer.Drip({2})) {
         }
       },
       "did not finish the TLS handshake in time"},
  };
  for (const auto& each : cases) {
    SocketPeer peer(each.script);
    TlsClient client({});
    EXPECT_FALSE(TryOpen(client, peer.port()));
    EXPECT_EQ(client.MayTryAgain(), each.failure != "it answers without TLS");
    EXPECT_TRUE(Contains(client.OpenFailure(), each.failure)) << client.OpenFailure();
    EXPECT_FALSE(client.Certificate());
  }
  TlsClient client({});
  EXPECT_FALSE(TryOpen(client, UnusedPort()));
  EXPECT_TRUE(Contains(client.OpenFailure(), "the connection was refused"));
  EXPECT_TRUE(client.MayTryAgain());
}

TEST(TlsClient, TellsWhatARefusalBehindTheHandshakeWas) {
  const std::pair<TlsIdentity, std::string> cases[] = {
      {{}, "asks for a certificate of this side, and none is set"},
      {Showing("lidar", "lidar"), "does not accept the certificate of this side"},
  };
  for (const auto& [identity, failure] : cases) {
    OpensslServer server(Cert("good"), Key("good"),
                         "-Verify 1 -verify_return_error -CAfile " + Cert("other"));
    TlsClient client(identity);
    ASSERT_TRUE(TryOpen(client, server.port())) << "its own side is made";
    uint8_t byte = 0;
    EXPECT_EQ(client.Receive(&byte, 1, 0), -1);
    EXPECT_TRUE(Contains(client.OpenFailure(), failure)) << client.OpenFailure();
    EXPECT_TRUE(client.Certificate());
  }
}

TEST(TlsClient, RefusesToNegotiateAnew) {
  OpensslServer server(Cert("good"), Key("good"), "-tls1_2", OpensslServer::Does::kRelay);
  TlsClient client(By("ca"));
  ASSERT_TRUE(TryOpen(client, server.port()));
  ASSERT_TRUE(Send(client, "here\n") && server.Hears("here\n"));
  ASSERT_TRUE(server.Say("R\n"));
  uint8_t byte = 0;
  EXPECT_EQ(client.Receive(&byte, 1, 0), -1);
  EXPECT_TRUE(Contains(client.OpenFailure(), "handshake failure")) << "it takes that for an end";
}

TEST(TlsClient, CarriesBytesBothWaysWithinItsLimits) {
  LogLines log;
  OpensslServer server(Cert("good"), Key("good"));
  TlsClient client(By("ca"));
  ASSERT_TRUE(TryOpen(client, server.port()));
  uint8_t byte = 0;
  EXPECT_EQ(client.Receive(&byte, 1, ClientBase::kPoll), -1);
  for (int round = 0; round < 20; ++round) {
    std::string lines;
    std::string reversed;
    for (char letter = 'a'; letter < 'e'; ++letter) {
      lines += std::string(15000, letter) + char('0' + round) + '\n';
      reversed += char('0' + round) + std::string(15000, letter) + '\n';
    }
    ASSERT_TRUE(Send(client, lines));
    ASSERT_EQ(Receive(client, reversed.size()), reversed) << round;
  }
  // One record, of which OpenSSL keeps what was not asked for.
  ASSERT_TRUE(Send(client, "abc\n"));
  EXPECT_EQ(Receive(client, 1), "c");
  EXPECT_EQ(client.Receive(&byte, 1, ClientBase::kPoll), 1);
  EXPECT_EQ(byte, 'b');
  EXPECT_EQ(Receive(client, 2), "a\n");
  EXPECT_EQ(client.Receive(&byte, 1, ClientBase::kPoll), -1);
  EXPECT_EQ(client.SetTimeout(20, 20), 0);
  EXPECT_EQ(client.Receive(&byte, 1, 0), -1);
  EXPECT_EQ(log.Count(kError, ""), 0) << "waiting in vain is not worth a line";

  server.Signal(SIGSTOP);
  EXPECT_TRUE(WaitFor([&] { return !Send(client, std::string(60000, 'x')); }));
  server.Signal(SIGKILL);
  EXPECT_TRUE(WaitFor([&] { return client.Receive(&byte, 1, ClientBase::kPoll) == 0; }) ||
              log.Count(kError, "Receive failed") > 0);
}

TEST(TlsClient, AnInterruptionEndsWhateverWaits) {
  std::atomic<bool> greeted{false};
  SocketPeer silent([&](TcpEnd& peer) {
    greeted = !peer.Read(1).empty();
    peer.WaitForEnd();
  });
  TlsClient in_handshake({});
  auto open = std::async(std::launch::async, [&] {
    return in_handshake.Open(kHere, silent.port(), false, nullptr, nullptr, nullptr);
  });
  EXPECT_TRUE(WaitFor([&] { return greeted.load(); }));
  LogLines log;
  in_handshake.Interrupt();
  EXPECT_FALSE(open.get());
  EXPECT_EQ(log.Count(kError, ""), 0) << "whoever ended it knows";

  OpensslServer server(Cert("good"), Key("good"));
  TlsClient in_receive({});
  ASSERT_TRUE(TryOpen(in_receive, server.port()));
  EXPECT_EQ(in_receive.SetTimeout(0, 0), 0);
  auto received = std::async(std::launch::async, [&] {
    uint8_t byte = 0;
    return in_receive.Receive(&byte, 1, 0);
  });
  in_receive.Interrupt();
  EXPECT_LT(received.get(), 1);
  EXPECT_FALSE(in_receive.IsOpened() || TryOpen(in_receive, server.port()));
}

}  // namespace
}  // namespace kavel::lidar
