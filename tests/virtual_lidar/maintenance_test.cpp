#include "lidar_under_test.h"

namespace {

class Maintenance : public testing::Test {
 protected:
  DeviceReply Ask(uint8_t command, const Bytes& payload = {}) {
    return ::Ask(&device_, command, payload);
  }
  static DeviceProfile Kiva() {
    DeviceProfile profile;
    profile.family = SerialFamily::kKiva;
    return profile;
  }

  std::chrono::steady_clock::time_point now_;
  // A table may show what maintenance commands read, and then gives the first value.
  VirtualDevice device_{LoadRows("1,1,0x40,,,Baud,0,uint32,3000000,,,,,,4\n"
                                 "1,2,,0x50,,SN,1,uint8,7,,,,,,1\n"
                                 "1,3,0x02,,,Up-time,0,DT,0 h 0 min 5 s,,,,,,4\n"),
                        Kiva(), [this] { return now_; }};
};

TEST_F(Maintenance, TakesSettingsWithinTheirLimitsOnly) {
  now_ += std::chrono::seconds(0x01020304);
  EXPECT_EQ(Ask(0x40).payload, (Bytes{0x00, 0x2D, 0xC6, 0xC0})) << "the table's default";
  EXPECT_EQ(Ask(0x4F).payload, (Bytes{0, 0x02, 0x58, 0, 2, 1, 1, 2, 3, 4}));
  EXPECT_FALSE(device_.TakeChanged());
  const std::tuple<uint8_t, Bytes, uint8_t> cases[] = {
      {0x41, {0, 1, 0xC2, 0}, kAccepted},  // 115200
      {0x41, {0, 0, 0, 0}, kBadValue},
      {0x41, {0, 1, 0xC2}, kBadLength},
      {0x43, {10, 0, 0, 1, 0x09, 0x41}, kAccepted},
      {0x43, {10, 0, 0, 1, 0, 0}, kBadValue},
      {0x45, {10, 0, 0, 2, 255, 255, 0, 0, 10, 0, 0, 1, 1, 0x0F, 0xFF}, kAccepted},
      {0x45, {10, 0, 0, 2, 255, 0, 255, 0, 10, 0, 0, 1, 1, 0, 1}, kBadValue},     // mask
      {0x45, {10, 0, 0, 2, 255, 255, 0, 0, 10, 0, 0, 1, 1, 0x10, 0}, kBadValue},  // VLAN 4096
      {0x45, {10, 0, 0, 2, 255, 255, 0, 0, 10, 0, 0, 1, 2, 0, 1}, kBadValue},     // flag
      {0x47, {0x04, 0xB0}, kAccepted},
      {0x47, {0x04, 0xB1}, kBadValue},
      {0x48, {1}, kAccepted},
      {0x48, {2}, kBadValue},
      {0x49, {5, 3}, kAccepted},
      {0x49, {6, 0}, kBadValue},
      {0x49, {0, 4}, kBadValue},
      {0x4F, {1}, kBadLength},
  };
  for (const auto& [command, payload, return_code] : cases) {
    EXPECT_EQ(Ask(command, payload).return_code, return_code)
        << std::hex << int{command} << " " << int{payload[0]};
  }
  EXPECT_TRUE(device_.TakeChanged());
  EXPECT_EQ(device_.memory().cells()[0].value, (Bytes{0, 1, 0xC2, 0})) << "the table's, too";
  EXPECT_EQ(Ask(0x42).payload, (Bytes{10, 0, 0, 1, 0x09, 0x41}));
  EXPECT_EQ(Ask(0x44).payload, (Bytes{10, 0, 0, 2, 255, 255, 0, 0, 10, 0, 0, 1, 1, 0x0F, 0xFF}));
  EXPECT_EQ(Ask(0x4F).payload, (Bytes{0, 0x04, 0xB0, 1, 5, 3, 1, 2, 3, 4}));
  Ask(0x25);
  EXPECT_EQ(Ask(0x40).payload, (Bytes{0x00, 0x2D, 0xC6, 0xC0})) << "after a reset";
}

TEST_F(Maintenance, TellsTheNumbersThatTheTableHolds) {
  std::string error;
  EXPECT_EQ(Ask(0x4B).payload[0], '7');
  EXPECT_TRUE(device_.Preset("SN", "8", &error)) << error;
  EXPECT_EQ(Ask(0x4B).payload[0], '8');
  EXPECT_EQ(Ask(0x50, {9}).return_code, kAccepted);
  EXPECT_EQ(Ask(0x4B).payload[0], '9');
}

TEST_F(Maintenance, UpTimeCountsAndARestartBeginsItAnew) {
  EXPECT_EQ(device_.UpTimeSeconds(), 0U);
  now_ += std::chrono::milliseconds(3999);
  EXPECT_EQ(Ask(0x02).payload, (Bytes{0, 0, 0, 8})) << "5 s in the table and 3 s since";
  Ask(0x10);
  now_ += std::chrono::seconds(1);
  EXPECT_EQ(Ask(0x02).payload, (Bytes{0, 0, 0, 6}));
}

TEST_F(Maintenance, SwitchesModesAndRefusesSettingsMeanwhile) {
  const DeviceReply switched = Ask(3, {1, 7});
  EXPECT_EQ(switched.return_code, 1) << "the mode stands in this place";
  EXPECT_EQ(switched.payload, (Bytes{7, 0})) << "sub-mode, status";
  EXPECT_EQ(Ask(0x48, {1}).return_code, kNotAllowedNow);
  EXPECT_EQ(Ask(3, {9, 0}).payload, (Bytes{0, kBadValue}));
  EXPECT_EQ(Ask(3, {0, 0}).payload, (Bytes{0, 0}));
  EXPECT_EQ(Ask(0x48, {1}).return_code, kAccepted);
}

}  // namespace
