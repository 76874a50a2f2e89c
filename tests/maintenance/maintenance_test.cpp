#include "maintenance/maintenance.h"

#include <QVariantMap>

#include "CmxClient/cmx_client.h"
#include "support/model_fixture.h"
#include "support/recorded_report.h"
#include "support/scripted_sender.h"

namespace {

using Lines = std::vector<std::string>;
using M = Maintenance;
using Sent = ScriptedSender::Sent;

const Bytes kNetBytes = {192, 168, 1, 201, 255, 255, 255, 0, 192, 168, 1, 1, 1, 0x0F, 0xFF};

struct Operation {
  Sent sent;
  bool serial_only;
  std::function<void(M&)> run;
};

const Operation kOperations[] = {
    {{0x40, {}}, true, [](M& m) { m.ReadBaudRate(); }},
    {{0x41, {0, 0x2F, 0xAF, 0x08}}, true, [](M& m) { m.WriteBaudRate("3125000"); }},
    {{0x42, {}}, true, [](M& m) { m.ReadDestination(); }},
    {{0x43, {10, 0, 0, 5, 255, 255}}, true, [](M& m) { m.WriteDestination("10.0.0.5", 65535); }},
    {{0x44, {}}, true, [](M& m) { m.ReadNet(); }},
    {{0x45, kNetBytes},
     true,
     [](M& m) { m.WriteNet("192.168.1.201", "255.255.255.0", "192.168.1.1", true, 4095); }},
    {{0x46, {2}}, false, [](M& m) { m.WriteReturnMode(2); }},
    {{0x47, {0x04, 0xB0}}, false, [](M& m) { m.WriteSpinRate(1200); }},
    {{0x48, {1}}, false, [](M& m) { m.WriteStandby(1); }},
    {{0x49, {5, 3}}, true, [](M& m) { m.WriteImuRange(5, 3); }},
    {{0x4E, {}}, false, [](M& m) { m.ReadFunctionSafety(); }},
    {{0x10, {}}, false, [](M& m) { m.RestartKiva(); }},
};

class MaintenanceTest : public testing::Test {
 protected:
  MaintenanceTest() { state_.connected = true; }

  M Over(ConnectType connect_type) { return M({&lidar_, state_, connect_type}, report_); }
  ScriptedSender lidar_;
  LinkState state_;
  RecordedReport report_;
  M serial_ = Over(kSerialCmx);
};

TEST_F(MaintenanceTest, GuardsComeBeforeTheWireAndARefusalIsShownAndLogged) {
  M pair = Over(kSerialPair);
  for (const Operation& operation : kOperations) {
    lidar_.sent.clear();
    lidar_.replies = {{3, {}}};
    state_.upgrading = true;
    operation.run(serial_);
    const Lines not_ready = report_.Take();
    ASSERT_EQ(not_ready.size(), 1U);
    operation.run(pair);
    EXPECT_EQ(report_.Take() != not_ready, operation.serial_only) << not_ready[0];
    state_.upgrading = false;
    operation.run(serial_);
    EXPECT_EQ(lidar_.sent, std::vector<Sent>{operation.sent});
    const Lines refusal = report_.Take();
    ASSERT_EQ(refusal.size(), 2U);
    EXPECT_EQ(refusal[1], "ERROR: " + refusal[0].substr(7));
    EXPECT_NE(refusal[0].find(", ret:lidar return code 3 (value out of range)"), std::string::npos)
        << refusal[0];
  }
  state_.connected = false;
  EXPECT_FALSE(serial_.WriteStandby(1));
  EXPECT_EQ(report_.Take(), Lines{"error: lidar is not connected, or lidar is upgrade"});
}

TEST_F(MaintenanceTest, HandsOutWhatTheLidarHolds) {
  lidar_.replies = {{0, {0, 1, 0xC2, 0}}, {0, {10, 0, 0, 5, 0x09, 0x40}}, {0, kNetBytes}, {3, {}}};
  EXPECT_EQ(serial_.ReadBaudRate(), 115200U);
  EXPECT_EQ(AsList(serial_.ReadDestination().value()), (QVariantList{"10.0.0.5", 2368}));
  EXPECT_EQ(AsList(serial_.ReadNet().value()),
            (QVariantList{"192.168.1.201", "255.255.255.0", "192.168.1.1", 1, 4095}));
  EXPECT_FALSE(serial_.ReadNet(true));
  EXPECT_EQ(report_.Take(),
            Lines{"ERROR: get net config error, ret:lidar return code 3 (value out of range)"})
      << "silence keeps it out of the error box";
}

TEST_F(MaintenanceTest, NetworkSettingsCountAsTakenWhenTheLinkDrops) {
  lidar_.replies = {{kavel::lidar::kNoReply, {}}, {kavel::lidar::kReplyBrokeOff, {}}};
  EXPECT_TRUE(serial_.WriteNet("10.0.0.2", "255.0.0.0", "10.0.0.1", false, 7));
  EXPECT_EQ(lidar_.sent[0].payload, (Bytes{10, 0, 0, 2, 255, 0, 0, 0, 10, 0, 0, 1, 0, 0, 0}))
      << "no identifier without the flag";
  EXPECT_FALSE(serial_.WriteNet("10.0.0.2", "255.0.0.0", "10.0.0.1", false, 7));
}

TEST_F(MaintenanceTest, ValuesThatDoNotFitAreNotSent) {
  for (const char* text : {"", "fast", "0", "-1", "4294967296", "0x10"}) {
    EXPECT_EQ(serial_.WriteBaudRate(text), std::nullopt);
    EXPECT_EQ(report_.Take(), Lines{"error: invalid baud rate value"}) << text;
  }
  EXPECT_FALSE(serial_.WriteReturnMode(256) || serial_.WriteSpinRate(-1) ||
               serial_.WriteStandby(2) || serial_.WriteDestination("10.0.0.5", 65536) ||
               serial_.WriteDestination("10.0.0", 2368) ||
               serial_.WriteNet("10.0.0.2", "255.0.0.0", "10.0.0.1", true, 4096) ||
               serial_.WriteImuRange(6, 0) || serial_.WriteImuRange(-1, 0) ||
               serial_.WriteImuRange(5, 4) || serial_.WriteImuRange(5, -1));
  EXPECT_EQ(report_.Take().size(), 16U) << "the link's six in the error box and in the log";
  EXPECT_TRUE(lidar_.sent.empty());
}

/// The facts as "name|key|value|raw", a line each.
std::string Shown(const QVariantList& list) {
  QString text;
  for (const QVariant& entry : list) {
    const QVariantMap fact = entry.toMap();
    EXPECT_EQ(fact["state"] == "read", fact.contains("raw"));
    for (const char* const field : {"name", "key", "value", "raw"}) {
      text += fact[field].toString() + (field == std::string("raw") ? '\n' : '|');
    }
  }
  return text.toStdString();
}

Bytes Text(std::string text, std::size_t size) {
  text.resize(size);
  return {text.begin(), text.end()};
}

TEST_F(MaintenanceTest, FactsAreShownUnderTheNamesOfTheModel) {
  lidar_.replies = {{0, Text("Kiva2600059", 32)},
                    {0, Text("Kiva\tD32", 32)},
                    {0, Text("1.4.2", 16) + Text("A7", 16) + Text("B2", 16)},
                    {0, Text("0.9", 16)},
                    {0, {2, 0x04, 0xB0, 1, 3, 2, 0, 0, 0x0E, 0x11}},
                    {0, {2, 1, 0, 0, 0, 4, 2, 0x01, 0x2F}}};
  const DeviceFacts facts = Over(kSerialPair).ReadFacts();
  EXPECT_EQ(report_.Take(),
            (Lines{"error: PN invalid after validation", "ERROR: PN invalid after validation"}));
  EXPECT_EQ(Shown(InfoList(facts, SerialFamily::kKiva)),
            "Serial Number|serial_number|Kiva2600059|Kiva2600059\n"
            "Part Number|part_number|xxxxxxxx|\n"
            "Return Mode|return_mode|Strongest and last|2\n"
            "Spin Rate|spin_rate|1200 rpm|1200\n"
            "Mode|standby|Standby|1\n"
            "IMU Angular Range|angular_range|±1000 °/s|3\n"
            "IMU Acceleration Range|accel_range|±8 g|2\n"
            "Up Time|up_time|1:00:01|3601\n");
  EXPECT_EQ(Shown(VersionList(facts, TraitsOf("Kiva-CMX").family)),
            "Firmware Version|firmware|1.4.2|1.4.2\nPBL Version|pbl|0.9|0.9\n"
            "BMB FPGA Version|fpga_bottom|A7|A7\nTMB FPGA Version|fpga_top|B2|B2\n");
  EXPECT_EQ(Shown(VersionList({}, TraitsOf("Lumo").family)),
            "Firmware Version|firmware|xxxxxxxx|\nPBL Version|pbl|xxxxxxxx|\n"
            "Junction Box Version|junction_box|xxxxxxxx|\n");
  EXPECT_EQ(Shown(SafetyList(serial_.ReadFunctionSafety())),
            "Safety function 1|safety_1|OK|0\n"
            "Safety function 4|safety_4|State 2, fault code 0x012f|2\n");
}

TEST_F(MaintenanceTest, WhatIsNotToldAgainIsKeptAndMarked) {
  lidar_.replies = {{0, Text("Kiva2600059", 32)},
                    {0, Text("KivaD32", 32)},
                    {0, Text("1.4.2", 16) + Text("A7", 16) + Text("B2", 16)},
                    {3, {}},
                    {0, {2, 0x04, 0xB0, 1, 3, 2, 0, 0, 0x0E, 0x11}}};
  const DeviceFacts facts = serial_.ReadFacts();
  const size_t asked = lidar_.sent.size();
  lidar_.replies = {{0, Text("Kiva2600060", 32)}, {kavel::lidar::kNoReply, {}}};
  const DeviceFacts again = serial_.ReadFacts(facts, true);
  EXPECT_EQ(lidar_.sent.size(), asked + 2) << "a silent lidar is not asked for the rest";
  const auto states = [](const QVariantList& list) {
    QString text;
    for (const QVariant& fact : list) {
      const QVariantMap map = fact.toMap();
      text += map["value"].toString() + '|' + map["state"].toString() + '|' +
              (map["read_at"].toString().isEmpty() ? "" : "timed") + '|' +
              map["failure"].toString() + '\n';
    }
    return text.toStdString();
  };
  const std::string silence =
      "|stale|timed|" + kavel::lidar::CmxClient::ErrorText(kavel::lidar::kNoReply) + '\n';
  EXPECT_EQ(states(InfoList(again, SerialFamily::kLumo)),
            "Kiva2600060|read|timed|\nKivaD32" + silence + "Strongest and last" + silence +
                "1200 rpm" + silence + "Standby" + silence + "1:00:01" + silence);
  EXPECT_EQ(states(VersionList(facts, SerialFamily::kLumo)),
            "1.4.2|read|timed|\nxxxxxxxx|unread||lidar return code 3 (value out of "
            "range)\nA7|read|timed|\n");
}

TEST_F(MaintenanceTest, RestartAndResetSendWhatTheTableNames) {
  const ModelFixture fixture("5,1,,0x0110,1,Restart,0,raw,,,,,,,0,0,,,0xAA\n");
  lidar_.replies = {{0, {}}, {4, {}}, {4, {}}};
  EXPECT_EQ(Over(kNetworkLink).Restart(fixture.table), 0);
  std::string why;
  EXPECT_EQ(Over(kSerialPair).Restart(fixture.table, &why), 4);
  EXPECT_EQ(why, "lidar return code 4 (not allowed now)");
  EXPECT_EQ(serial_.Restart(fixture.table), 4);
  EXPECT_EQ(lidar_.sent, std::vector<Sent>(3, {0xFF, {0x01, 0x10, 0xAA}}));
  const std::string failure = "restart error, ret:lidar return code 4 (not allowed now)";
  EXPECT_EQ(report_.Take(), (Lines{"success: Lidar restart.", "ERROR: " + failure,
                                   "error: " + failure, "ERROR: " + failure}));
  EXPECT_NE(serial_.Reset(fixture.table), 0);
  state_.downloading = true;
  EXPECT_NE(serial_.Restart(fixture.table), 0);
  EXPECT_EQ(lidar_.sent.size(), 3U);
}

}  // namespace
