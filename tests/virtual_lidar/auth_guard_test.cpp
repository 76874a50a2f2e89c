#include "auth_guard.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "CmxClient/log_sink.h"
#include "auth/authorized_cmx_client.h"
#include "lidar_under_test.h"

namespace {

constexpr uint8_t kProbe = 0xDF;
constexpr uint8_t kChallenge = 0x66;
constexpr uint8_t kResponse = 0xE0;
constexpr uint8_t kProtected = 0x31;

AuthConfig Config(int algorithm) {
  AuthConfig config;
  config.enabled = true;
  config.algorithm_id = algorithm;
  config.protected_cmds = {kProtected};
  config.probe_offset = 1;
  config.probe_len = 2;
  return config;
}

AuthKeys Keys() {
  AuthKeys keys;
  keys.aes128_key = SecretBytes(Bytes(16, 0x11));
  keys.aes256_key = SecretBytes(Bytes(32, 0x22));
  keys.maskword_1 = SecretBytes(Bytes{0x12, 0x34, 0x56, 0x78});
  keys.maskword_2 = SecretBytes(Bytes{0x9A, 0xBC, 0xDE, 0xF2});
  keys.mix_c1 = SecretBytes(Bytes{0x5A, 0x5A, 0xA5, 0xA5});
  keys.mix_c2 = SecretBytes(Bytes{0x0F, 0x1E, 0x2D, 0x3C});
  return keys;
}

FaultBox Faults(const std::string& text) {
  FaultOrder order;
  std::string error;
  EXPECT_TRUE(ParseFaultOrder(text, &order, &error)) << error;
  return FaultBox({order});
}

DeviceRequest Request(uint8_t code, Bytes payload = {}) {
  DeviceRequest request;
  request.code = code;
  request.payload = std::move(payload);
  return request;
}

TEST(AuthGuard, ProbeTellsWhetherItIsRequiredAtTheTablesPlace) {
  AuthSession session;
  FaultBox none;
  AuthGuard required(Config(3), Keys(), true, false);
  EXPECT_EQ(required.Answer(Request(kProbe), &session, &none)->payload, (Bytes{0, 0, 1}));
  AuthGuard open(Config(3), Keys(), false, false);
  EXPECT_EQ(open.Answer(Request(kProbe), &session, &none)->payload, (Bytes{0, 0, 0}));
  EXPECT_TRUE(open.Admit(kProtected, &session));

  AuthConfig little = Config(3);
  little.probe_little_endian = true;
  AuthGuard serial(little, Keys(), true, true);
  EXPECT_EQ(serial.Answer(Request(kProbe), &session, &none)->payload, (Bytes{0, 0, 0, 1, 0, 1, 0}))
      << "counter, then the value";
  EXPECT_EQ(serial.Answer(Request(kChallenge), &session, &none)->payload.size(), 20U);

  AuthGuard unaware(AuthConfig(), Keys(), true, false);
  EXPECT_FALSE(unaware.Answer(Request(kProbe), &session, &none).has_value());
  EXPECT_TRUE(unaware.Admit(kProtected, &session));
}

TEST(AuthGuard, OneRightResponseLetsOneProtectedCommandPass) {
  AuthGuard guard(Config(kAes256Cmac), Keys(), true, false);
  AuthSession session;
  AuthSession stranger;
  FaultBox none;
  EXPECT_FALSE(guard.Admit(kProtected, &session));
  EXPECT_TRUE(guard.Admit(0x30, &session)) << "not protected";

  const Bytes challenge = guard.Answer(Request(kChallenge), &session, &none)->payload;
  ASSERT_EQ(challenge.size(), 16U);
  EXPECT_EQ(guard.Answer(Request(kResponse, Bytes(16, 0)), &session, &none)->return_code,
            kAuthenticationRequired);
  EXPECT_FALSE(guard.Admit(kProtected, &session));
  // The challenge is used up: not even its right response counts any more.
  EXPECT_TRUE(session.challenge.empty());
  EXPECT_NE(guard.Answer(Request(kChallenge), &session, &none)->payload, challenge);

  session.authorised = true;
  EXPECT_FALSE(guard.Admit(kProtected, &stranger)) << "authorised for its own client alone";
  EXPECT_TRUE(guard.Admit(kProtected, &session));
  EXPECT_FALSE(guard.Admit(kProtected, &session)) << "once";
}

TEST(AuthGuard, LiesInEveryStep) {
  AuthSession session;
  AuthGuard guard(Config(kAes128Cbc), Keys(), true, true);
  FaultBox short_probe = Faults("auth-short-probe");
  EXPECT_EQ(guard.Answer(Request(kProbe), &session, &short_probe)->payload.size(), 6U);
  FaultBox short_challenge = Faults("auth-short-challenge");
  EXPECT_EQ(guard.Answer(Request(kChallenge), &session, &short_challenge)->payload.size(), 12U);
  EXPECT_FALSE(guard.Admit(kProtected, &session));

  FaultBox zero = Faults("auth-zero-challenge");
  const Bytes zeros = guard.Answer(Request(kChallenge), &session, &zero)->payload;
  EXPECT_EQ(Bytes(zeros.begin() + 4, zeros.end()), Bytes(16, 0));
  EXPECT_TRUE(guard.Admit(kProtected, &session)) << "no response is awaited";
  EXPECT_EQ(zero.TakeStruck(), std::vector<std::string>{"auth-zero-challenge"});
}

class AuthLines : public kavel::lidar::LogSink {
 public:
  void WriteLine(const std::string& line) override { lines += line + "\n"; }
  std::string lines;
};

// The real client against the real device, with the demonstration keys of the current directory's
// Config: the same file serves both sides.
class HandshakeOverTcp : public testing::TestWithParam<int> {
 protected:
  static void SetUpTestSuite() { std::filesystem::current_path(SOURCE_FOLDER); }

  int32_t WriteSpeed(const std::string& fault, int32_t* error) {
    LidarUnderTest::Setup setup;
    if (!fault.empty()) setup.faults = {fault};
    setup.profile.auth = Config(GetParam());
    setup.profile.auth_keys = LoadAuthKeys(kAuthKeysPath);
    lidar_ = std::make_unique<LidarUnderTest>(std::move(setup));
    log_ = std::make_shared<AuthLines>();
    AuthorizedCmxClient client(ConnectTo(lidar_->port()), Config(GetParam()), false, log_);
    client.Probe();
    Bytes result;
    // A second write shows that the first one's authorisation was used up.
    const int32_t first = client.QueryCommand({0x04, 0xB0, 5}, result, kProtected, false, error);
    if (first != 0) return first;
    return client.QueryCommand({0x04, 0xAF, 5}, result, kProtected, false, error);
  }

  std::unique_ptr<LidarUnderTest> lidar_;
  std::shared_ptr<AuthLines> log_;
};

INSTANTIATE_TEST_SUITE_P(Algorithm, HandshakeOverTcp, testing::Values(1, 2, 3, 4));

TEST_P(HandshakeOverTcp, PassesWithTheRightKeysAndFailsWhereTheDeviceLies) {
  const struct {
    const char* fault;
    int32_t error;
    const char* line;  // what the client's log shows of it
  } cases[] = {
      {"", 0, "required=true"},
      {"auth-zero-challenge", 0, "random all-zero"},
      {"auth-short-challenge", kavel::lidar::kAuthRefused, "challenge payload too short"},
      {"auth-refuse-response", kavel::lidar::kAuthRefused, "response rejected"},
      {"auth-short-probe", kAuthenticationRequired, "probe payload too short"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.fault);
    int32_t error = 0;
    EXPECT_EQ(WriteSpeed(c.fault, &error), c.error == 0 ? 0 : -1);
    EXPECT_EQ(error, c.error);
    EXPECT_NE(log_->lines.find(c.line), std::string::npos) << log_->lines;
    EXPECT_TRUE(lidar_->LogShows(c.fault));
    EXPECT_EQ(lidar_->Held("Speed"), c.error == 0 ? (Bytes{0x04, 0xAF}) : (Bytes{0x02, 0x58}));
  }
}

}  // namespace
