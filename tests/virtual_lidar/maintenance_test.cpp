#include <gtest/gtest.h>

#include <string>

#include "CmxClient/device_commands.h"
#include "lidar_under_test.h"
#include "maintenance_unit.h"

namespace {

DeviceReply Ask(MaintenanceUnit* unit, uint8_t command, const Bytes& payload = {}) {
  DeviceRequest request;
  request.code = command;
  request.payload = payload;
  const auto reply = unit->Answer(request, 0x01020304);
  EXPECT_TRUE(reply.has_value());
  return reply.value_or(DeviceReply());
}

MaintenanceUnit Kiva() { return {SerialFamily::kKiva, "SN-1", "PN-1"}; }

TEST(Maintenance, AnswersReadsByteByByte) {
  MaintenanceUnit unit = Kiva();
  EXPECT_EQ(Ask(&unit, 0x40).payload, (Bytes{0x00, 0x2F, 0xAF, 0x08})) << "3125000";
  EXPECT_EQ(Ask(&unit, 0x42).payload, (Bytes{192, 168, 1, 100, 0x09, 0x40}));
  EXPECT_EQ(Ask(&unit, 0x44).payload.size(), 15U);
  Bytes number = {'S', 'N', '-', '1'};
  number.resize(32);
  EXPECT_EQ(Ask(&unit, 0x4B).payload, number);
  EXPECT_EQ(Ask(&unit, 0x4D).payload.size(), 48U);
  EXPECT_EQ(Ask(&unit, 0x4E).payload[0] * 4U + 1U, Ask(&unit, 0x4E).payload.size());
  EXPECT_EQ(Ask(&unit, 0x4F).payload, (Bytes{0, 0x02, 0x58, 0, 2, 1, 1, 2, 3, 4}));
  EXPECT_EQ(Ask(&unit, 0x4F, {1}).return_code, kBadLength);
}

TEST(Maintenance, TakesSettingsWithinTheirLimitsOnly) {
  const struct {
    uint8_t command;
    Bytes payload;
    uint8_t return_code;
  } cases[] = {
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
  };
  MaintenanceUnit unit = Kiva();
  for (const auto& c : cases) {
    const uint8_t before = Ask(&unit, c.command, c.payload).return_code;
    EXPECT_EQ(before, c.return_code) << std::hex << int{c.command} << " " << int{c.payload[0]};
  }
  EXPECT_EQ(Ask(&unit, 0x40).payload, (Bytes{0, 1, 0xC2, 0}));
  EXPECT_EQ(Ask(&unit, 0x42).payload, (Bytes{10, 0, 0, 1, 0x09, 0x41}));
  EXPECT_EQ(Ask(&unit, 0x4F).payload, (Bytes{0, 0x04, 0xB0, 1, 5, 3, 1, 2, 3, 4}));
}

TEST(Maintenance, SwitchesModesAndRefusesSettingsMeanwhile) {
  MaintenanceUnit unit = Kiva();
  const DeviceReply switched = Ask(&unit, 3, {1, 7});
  EXPECT_EQ(switched.return_code, 1) << "the mode stands in this place";
  EXPECT_EQ(switched.payload, (Bytes{7, 0})) << "sub-mode, status";
  EXPECT_EQ(Ask(&unit, 0x48, {1}).return_code, kNotAllowedNow);
  EXPECT_EQ(Ask(&unit, 3, {9, 0}).payload, (Bytes{0, kBadValue}));
  EXPECT_EQ(Ask(&unit, 3, {0, 0}).payload, (Bytes{0, 0}));
  EXPECT_EQ(Ask(&unit, 0x48, {1}).return_code, kAccepted);
}

TEST(Maintenance, SharesItsSettingsWithTheTable) {
  DeviceProfile profile;
  profile.model = "Lumo-CMX";
  VirtualDevice device(LoadTestTable("1,1,0x4B,,SN,0,string,Lumo7,,,32,,\n"
                                     "2,1,0x40,,Baud,0,uint32,3000000,,,4,,\n"),
                       std::move(profile));
  AuthSession session;
  FaultBox none;
  std::string what;
  const auto ask = [&](uint8_t code, const Bytes& payload) {
    DeviceRequest request;
    request.code = code;
    request.payload = payload;
    return device.Answer(request, &session, &none, &what);
  };
  EXPECT_EQ(ask(0x40, {}).payload, (Bytes{0x00, 0x2D, 0xC6, 0xC0})) << "the table's default";
  EXPECT_EQ(ask(0x4B, {}).payload[4], '7');
  EXPECT_FALSE(device.TakeChanged());
  EXPECT_EQ(ask(0x41, {0, 1, 0xC2, 0}).return_code, kAccepted);
  EXPECT_TRUE(device.TakeChanged());
  EXPECT_EQ(device.memory().cells()[1].value, (Bytes{0, 1, 0xC2, 0}));
  ask(0x25, {});
  EXPECT_EQ(ask(0x40, {}).payload, (Bytes{0x00, 0x2D, 0xC6, 0xC0})) << "after a reset";

  MaintenanceUnit network(SerialFamilyOf("Orca"), "", "");
  DeviceRequest request;
  request.code = 0x40;
  EXPECT_FALSE(network.Answer(request, 0).has_value());
}

}  // namespace
