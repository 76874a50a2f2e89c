#include "device/auth_guard.h"

#include <gtest/gtest.h>

#include "auth/auth_algorithm.h"
#include "support/bytes.h"

namespace {

constexpr uint8_t kProbe = 0xDF;
constexpr uint8_t kChallenge = 0x66;
constexpr uint8_t kProtected = 0x31;

AuthConfig Config() {
  AuthConfig config;
  config.enabled = true;
  config.algorithm_id = kAes256Cmac;
  config.protected_cmds = {kProtected};
  config.probe_offset = 1;
  config.probe_len = 2;
  return config;
}

// One client's dealings with a device. That it takes a right response alone, and once, a client of
// its own finds (tests/system/second_reader.py).
struct Dealings {
  explicit Dealings(const AuthConfig& config, bool required = true, bool on_serial_line = false)
      : guard(config, AuthKeys(), required), serial_line(on_serial_line) {}

  DeviceReply Ask(uint8_t code, const Bytes& payload = {}) {
    DeviceRequest request;
    request.code = code;
    request.payload = payload;
    request.serial_line = serial_line;
    return guard.Answer(request, &session, &faults).value_or(DeviceReply());
  }
  bool Admits(uint8_t command) { return guard.Admit(command, &session); }

  AuthGuard guard;
  bool serial_line;
  AuthSession session;
  FaultBox faults;
};

TEST(AuthGuard, ProbeTellsWhetherItIsRequiredAtTheTablesPlace) {
  EXPECT_EQ(Dealings(Config()).Ask(kProbe).payload, (Bytes{0, 0, 1}));
  Dealings open(Config(), false);
  EXPECT_EQ(open.Ask(kProbe).payload, (Bytes{0, 0, 0}));
  EXPECT_TRUE(open.Admits(kProtected));

  AuthConfig little = Config();
  little.probe_little_endian = true;
  Dealings serial(little, true, true);
  EXPECT_EQ(serial.Ask(kProbe).payload, (Bytes{0, 0, 0, 1, 0, 1, 0})) << "counter, then the value";
  EXPECT_EQ(serial.Ask(kChallenge).payload.size(), 20U);
}

TEST(AuthGuard, LiesInEveryStep) {
  Dealings device(Config(), true, true);
  device.faults = FaultBox({{Fault::kAuthShortProbe, 0, {}, {}},
                            {Fault::kAuthShortChallenge, 0, {}, 1U},
                            {Fault::kAuthZeroChallenge, 0, {}, 1U}});
  EXPECT_EQ(device.Ask(kProbe).payload.size(), 6U);
  EXPECT_EQ(device.Ask(kChallenge).payload, (Bytes{0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_TRUE(device.Admits(kProtected)) << "zeros await no response";
}

}  // namespace
