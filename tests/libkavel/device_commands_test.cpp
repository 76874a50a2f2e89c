#include "CmxClient/device_commands.h"

#include <gtest/gtest.h>

#include "support/scripted_sender.h"

namespace kavel::lidar {
namespace {

const NetConfig kNet = {"192.168.1.201", "255.255.255.0", "192.168.1.1", true, 0x0123};
const Bytes kNetBytes = {192, 168, 1, 201, 255, 255, 255, 0, 192, 168, 1, 1, 1, 0x01, 0x23};
const Bytes kRateBytes = {0x00, 0x2F, 0xAF, 0x08};

TEST(DeviceCommands, SendTheirBytesAndWantAReplyOfTheirLength) {
  uint32_t rate = 0;
  NetConfig net;
  Destination destination;
  DeviceVersions versions;
  std::vector<SafetyState> states;
  DeviceStatus status;
  bool is_b = false;
  using Run = std::function<int32_t(CommandSender&)>;
  const std::tuple<Run, ScriptedSender::Sent, Bytes> cases[] = {
      {RestartDevice, {0x10, {}}, {}},
      {[&](auto& s) { return GetBaudRate(s, &rate); }, {0x40, {}}, kRateBytes},
      {[](auto& s) { return SetBaudRate(s, 3125000); }, {0x41, kRateBytes}, {}},
      {[&](auto& s) { return GetDestination(s, &destination); }, {0x42, {}}, Bytes(6)},
      {[](auto& s) {
         return SetDestination(s, {"10.0.0.255", 2368});
       },
       {0x43, {10, 0, 0, 255, 0x09, 0x40}},
       {}},
      {[&](auto& s) { return GetNetConfig(s, &net); }, {0x44, {}}, kNetBytes},
      {[](auto& s) { return SetNetConfig(s, kNet); }, {0x45, kNetBytes}, {}},
      {[](auto& s) { return SetReturnMode(s, 2); }, {0x46, {2}}, {}},
      {[](auto& s) { return SetSpinRate(s, 1200); }, {0x47, {0x04, 0xB0}}, {}},
      {[](auto& s) { return SetStandby(s, true); }, {0x48, {1}}, {}},
      {[](auto& s) { return SetImuRange(s, 5, 3); }, {0x49, {5, 3}}, {}},
      {[&](auto& s) { return GetVersions(s, &versions); }, {0x4D, {}}, Bytes(48, 'A')},
      {[&](auto& s) { return GetFunctionSafety(s, &states); }, {0x4E, {}}, {1, 7, 2, 0x12, 0x34}},
      {[&](auto& s) { return GetStatus(s, &status); }, {0x4F, {}}, Bytes(10)},
      {[&](auto& s) { return GetActivePartition(s, &is_b); }, {0x53, {}}, {1}},
  };
  for (const auto& [run, sent, reply] : cases) {
    SCOPED_TRACE(int{sent.cmd});
    ScriptedSender sender;
    sender.replies = {{0, reply}, {0, reply + Bytes{0}}, {kNoReply, {}}, {3, {}}};
    EXPECT_EQ(run(sender), 0);
    EXPECT_EQ(sender.sent, std::vector<ScriptedSender::Sent>{sent});
    EXPECT_EQ(run(sender), kBadReply) << "too long";
    EXPECT_EQ(run(sender), kNoReply);
    EXPECT_EQ(run(sender), 3);
    if (!reply.empty()) {
      sender.replies = {{0, {reply.begin(), reply.end() - 1}}};
      EXPECT_EQ(run(sender), kBadReply) << "too short";
    }
  }
  EXPECT_TRUE(is_b);
  ScriptedSender no_partition;
  no_partition.replies = {{0, {2}}};
  EXPECT_EQ(GetActivePartition(no_partition, &is_b), kBadReply);
  EXPECT_EQ(rate, 3125000U);
  EXPECT_EQ(net.ip + " " + net.mask + " " + net.gateway, "192.168.1.201 255.255.255.0 192.168.1.1");
  EXPECT_EQ(net.vlan_id, 0x0123);
  EXPECT_EQ(versions.fpga_b, std::string(16, 'A')) << "a text may fill its place";
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
  for (const std::string& number : {std::string(), std::string(33, 'x'), std::string("A\x7F"),
                                    std::string("A\n"), std::string("\xC3\xA9")}) {
    EXPECT_FALSE(IsValidNumber(number));
  }
}

}  // namespace
}  // namespace kavel::lidar
