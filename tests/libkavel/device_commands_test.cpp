#include "CmxClient/device_commands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "support/scripted_sender.h"

namespace kavel::lidar {
namespace {

using Operation = std::function<int32_t(CommandSender&)>;

const NetConfig kNet = {"192.168.1.201", "255.255.255.0", "192.168.1.1", true, 0x0123};

TEST(DeviceCommands, SettersSendTheirBytesAndWantAnEmptyReply) {
  const struct {
    Operation run;
    uint8_t cmd;
    Bytes payload;
  } cases[] = {
      {RestartDevice, 0x10, {}},
      {[](auto& s) { return SetBaudRate(s, 3125000); }, 0x41, {0x00, 0x2F, 0xAF, 0x08}},
      {[](auto& s) {
         return SetDestination(s, {"10.0.0.255", 2368});
       },
       0x43,
       {10, 0, 0, 255, 0x09, 0x40}},
      {[](auto& s) { return SetNetConfig(s, kNet); },
       0x45,
       {192, 168, 1, 201, 255, 255, 255, 0, 192, 168, 1, 1, 1, 0x01, 0x23}},
      {[](auto& s) { return SetReturnMode(s, 2); }, 0x46, {2}},
      {[](auto& s) { return SetSpinRate(s, 1200); }, 0x47, {0x04, 0xB0}},
      {[](auto& s) { return SetStandby(s, true); }, 0x48, {1}},
      {[](auto& s) { return SetImuRange(s, 5, 3); }, 0x49, {5, 3}},
  };
  for (const auto& each : cases) {
    ScriptedSender sender;
    sender.replies = {{0, {}}, {0, {0}}, {kNoReply, {}}, {3, {}}};
    EXPECT_EQ(each.run(sender), 0);
    EXPECT_TRUE(sender.sent[0] == (ScriptedSender::Sent{each.cmd, each.payload}))
        << "command " << int{each.cmd};
    EXPECT_EQ(each.run(sender), kBadReply) << "something came back";
    EXPECT_EQ(each.run(sender), kNoReply);
    EXPECT_EQ(each.run(sender), 3);
  }
}

TEST(DeviceCommands, SettersRefuseWhatTheyCannotSend) {
  ScriptedSender sender;
  NetConfig config = kNet;
  for (const char* ip :
       {"", "1.2.3", "1.2.3.4.5", "256.1.1.1", "01.2.3.4", " 1.2.3.4", "a.b.c.d"}) {
    config.gateway = ip;
    EXPECT_EQ(SetDestination(sender, {ip, 1}), kBadArgument) << ip;
    EXPECT_EQ(SetNetConfig(sender, config), kBadArgument) << ip;
  }
  config = kNet;
  config.vlan_id = 4096;
  EXPECT_EQ(SetNetConfig(sender, config), kBadArgument);
  EXPECT_EQ(SetBaudRate(sender, 0), kBadArgument);
  EXPECT_TRUE(sender.sent.empty());
}

// Runs a read against its reply, and then against that reply lengthened and cut by a byte.
void ExpectRead(const Operation& read, uint8_t cmd, const Bytes& reply) {
  Bytes longer = reply;
  longer.push_back(0);
  ScriptedSender sender;
  sender.replies = {{0, reply}, {0, longer}, {0, {reply.begin(), reply.end() - 1}}, {5, {}}};
  EXPECT_EQ(read(sender), 0);
  EXPECT_TRUE(sender.sent[0] == (ScriptedSender::Sent{cmd, {}})) << "command " << int{cmd};
  EXPECT_EQ(read(sender), kBadReply) << "command " << int{cmd};
  EXPECT_EQ(read(sender), kBadReply) << "command " << int{cmd};
  EXPECT_EQ(read(sender), 5);
}

TEST(DeviceCommands, ReadsTakeTheirRepliesApart) {
  uint32_t rate = 0;
  ExpectRead([&](auto& s) { return GetBaudRate(s, &rate); }, 0x40, {0x00, 0x2F, 0xAF, 0x08});
  EXPECT_EQ(rate, 3125000U);

  NetConfig net;
  ExpectRead([&](auto& s) { return GetNetConfig(s, &net); }, 0x44,
             {192, 168, 1, 201, 255, 255, 255, 0, 192, 168, 1, 1, 1, 0x01, 0x23});
  EXPECT_EQ(net.ip + " " + net.mask + " " + net.gateway, "192.168.1.201 255.255.255.0 192.168.1.1");
  EXPECT_TRUE(net.vlan);
  EXPECT_EQ(net.vlan_id, 0x0123);

  DeviceVersions versions;
  Bytes texts(48, 0);
  texts[0] = 'F';
  texts[32] = 'B';
  std::fill_n(texts.begin() + 16, 16, uint8_t{'A'});
  ExpectRead([&](auto& s) { return GetVersions(s, &versions); }, 0x4D, texts);
  EXPECT_EQ(versions.firmware, "F");
  EXPECT_EQ(versions.fpga_a, std::string(16, 'A'));
  EXPECT_EQ(versions.fpga_b, "B");

  std::vector<SafetyState> states;
  ExpectRead([&](auto& s) { return GetFunctionSafety(s, &states); }, 0x4E,
             {2, 1, 0, 0x00, 0x00, 7, 2, 0x12, 0x34});
  ASSERT_EQ(states.size(), 2U);
  EXPECT_EQ(states[1].id, 7);
  EXPECT_EQ(states[1].state, 2);
  EXPECT_EQ(states[1].fault_code, 0x1234);

  DeviceStatus status;
  ExpectRead([&](auto& s) { return GetStatus(s, &status); }, 0x4F,
             {2, 0x04, 0xB0, 1, 5, 3, 0x00, 0x01, 0x00, 0x02});
  EXPECT_EQ(status.spin_rate_rpm, 1200);
  EXPECT_TRUE(status.standby);
  EXPECT_EQ(status.angular_range_index, 5);
  EXPECT_EQ(status.up_time_s, 65538U);
}

TEST(DeviceCommands, TextsLoseTheirPaddingAndAreJudged) {
  ScriptedSender sender;
  std::string text = "before";
  sender.replies = {{0, Bytes(33, 'x')}, {0, {}}, {0, {'K', 'V', '-', '7', 0, 0, 0, 'x'}}};
  EXPECT_EQ(GetSerialNumber(sender, &text), kBadReply);
  EXPECT_EQ(GetPartNumber(sender, &text), kBadReply);
  EXPECT_EQ(text, "before");
  EXPECT_EQ(GetPblVersion(sender, &text), 0);
  EXPECT_EQ(text, "KV-7");
  EXPECT_TRUE(IsValidNumber(text));
  for (const std::string number : {"", "A\x7F", "A\n", "\xC3\xA9"}) {
    EXPECT_FALSE(IsValidNumber(number));
  }
  EXPECT_FALSE(IsValidNumber(std::string(33, 'x')));
}

}  // namespace
}  // namespace kavel::lidar
