#include "maintenance/maintenance.h"

#include <gtest/gtest.h>

#include <QVariantMap>
#include <functional>

#include "support/model_fixture.h"
#include "support/recorded_report.h"
#include "support/scripted_sender.h"

namespace {

using Lines = std::vector<std::string>;
using Sent = ScriptedSender::Sent;

const Bytes kNetBytes = {192, 168, 1, 201, 255, 255, 255, 0, 192, 168, 1, 1, 1, 0x0F, 0xFF};

struct Operation {
  Sent sent;
  bool serial_only;
  std::function<void(Maintenance&)> run;
};

std::vector<Operation> Operations() {
  using M = Maintenance;
  return {
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
}

class MaintenanceTest : public testing::Test {
 protected:
  MaintenanceTest() { state_.connected = true; }

  Maintenance Over(ConnectType connect_type) {
    return Maintenance({&lidar_, state_, connect_type}, report_);
  }
  ScriptedSender lidar_;
  LinkState state_;
  RecordedReport report_;
};

TEST_F(MaintenanceTest, GuardsComeBeforeTheWireAndARefusalIsShownAndLogged) {
  Maintenance serial = Over(kSerialCmx);
  Maintenance pair = Over(kSerialPair);
  for (const Operation& operation : Operations()) {
    lidar_.sent.clear();
    state_.connected = false;
    operation.run(serial);
    const Lines not_ready = report_.Take();
    ASSERT_EQ(not_ready.size(), 1U);
    operation.run(pair);
    EXPECT_EQ(report_.Take() != not_ready, operation.serial_only) << not_ready[0];
    state_.connected = true;
    state_.upgrading = true;
    operation.run(serial);
    EXPECT_EQ(report_.Take(), not_ready);
    state_.upgrading = false;
    EXPECT_TRUE(lidar_.sent.empty());

    lidar_.replies = {{3, {}}};
    operation.run(serial);
    EXPECT_EQ(lidar_.sent, std::vector<Sent>{operation.sent});
    const Lines refusal = report_.Take();
    ASSERT_EQ(refusal.size(), 2U);
    EXPECT_EQ(refusal[1], "ERROR: " + refusal[0].substr(7));
    EXPECT_NE(refusal[0].find(", ret:lidar return code 3"), std::string::npos) << refusal[0];
  }
}

TEST_F(MaintenanceTest, HandsOutWhatTheLidarHolds) {
  lidar_.replies = {{0, {0, 1, 0xC2, 0}}, {0, {10, 0, 0, 5, 0x09, 0x40}}, {0, kNetBytes}, {3, {}}};
  Maintenance maintenance = Over(kSerialCmx);
  EXPECT_EQ(maintenance.ReadBaudRate(), 115200U);
  EXPECT_EQ(maintenance.ReadDestination(), (QVariantList{"10.0.0.5", 2368}));
  EXPECT_EQ(maintenance.ReadNet(),
            (QVariantList{"192.168.1.201", "255.255.255.0", "192.168.1.1", 1, 4095}));
  EXPECT_TRUE(maintenance.ReadNet(true).isEmpty());
  EXPECT_EQ(report_.Take(), Lines{"ERROR: get net config error, ret:lidar return code 3"})
      << "silence keeps it out of the error box";
}

TEST_F(MaintenanceTest, NetworkSettingsCountAsTakenWhenTheLinkDrops) {
  lidar_.replies = {{kavel::lidar::kNoReply, {}}, {kavel::lidar::kReplyBrokeOff, {}}};
  Maintenance maintenance = Over(kSerialCmx);
  EXPECT_TRUE(maintenance.WriteNet("10.0.0.2", "255.0.0.0", "10.0.0.1", false, 7));
  EXPECT_EQ(lidar_.sent[0].payload, (Bytes{10, 0, 0, 2, 255, 0, 0, 0, 10, 0, 0, 1, 0, 0, 0}))
      << "no identifier without the flag";
  EXPECT_FALSE(maintenance.WriteNet("10.0.0.2", "255.0.0.0", "10.0.0.1", false, 7));
}

TEST_F(MaintenanceTest, ValuesThatDoNotFitAreNotSent) {
  Maintenance maintenance = Over(kSerialCmx);
  for (const char* text : {"", "fast", "0", "-1", "4294967296", "0x10"}) {
    EXPECT_EQ(maintenance.WriteBaudRate(text), std::nullopt);
    EXPECT_EQ(report_.Take(), Lines{"error: invalid baud rate value"}) << text;
  }
  EXPECT_FALSE(maintenance.WriteReturnMode(256));
  EXPECT_FALSE(maintenance.WriteSpinRate(-1));
  EXPECT_FALSE(maintenance.WriteStandby(2));
  EXPECT_FALSE(maintenance.WriteDestination("10.0.0.5", 65536));
  EXPECT_FALSE(maintenance.WriteDestination("10.0.0", 2368));
  EXPECT_FALSE(maintenance.WriteNet("10.0.0.2", "255.0.0.0", "10.0.0.1", true, 4096));
  for (const int index : {6, -1}) {
    EXPECT_FALSE(maintenance.WriteImuRange(index, 0));
  }
  for (const int index : {4, -1}) {
    EXPECT_FALSE(maintenance.WriteImuRange(5, index));
  }
  EXPECT_EQ(report_.Take().size(), 16U) << "the link's six in the error box and in the log";
  EXPECT_TRUE(lidar_.sent.empty());
}

/// The value that the list shows under a name, or "(none)".
QString ValueOf(const QVariantList& list, const QString& name) {
  for (const QVariant& entry : list) {
    if (entry.toMap()["name"] == name) {
      return entry.toMap()["value"].toString();
    }
  }
  return "(none)";
}

Bytes Text(std::string text, std::size_t size) {
  text.resize(size);
  return {text.begin(), text.end()};
}

TEST_F(MaintenanceTest, FactsAreShownUnderTheNamesOfTheModel) {
  lidar_.replies = {{0, Text("Kiva2600059", 32)},
                    {0, Text("Kiva\tD32", 32)},
                    {0, Text("1.4.2" + std::string(11, '\0') + "A7" + std::string(14, '\0'), 48)},
                    {0, Text("0.9", 16)},
                    {0, {2, 0x04, 0xB0, 1, 3, 2, 0, 0, 0x0E, 0x11}}};
  const DeviceFacts facts = Over(kSerialPair).ReadFacts();
  EXPECT_EQ(report_.Take(),
            (Lines{"error: PN invalid after validation", "ERROR: PN invalid after validation"}));
  const QVariantList info = InfoList(facts, SerialFamily::kKiva);
  EXPECT_EQ(ValueOf(info, "Serial Number"), "Kiva2600059");
  EXPECT_EQ(ValueOf(info, "Part Number"), "xxxxxxxx");
  EXPECT_EQ(ValueOf(info, "IMU Angular Range Index"), "3");
  EXPECT_EQ(ValueOf(info, "Up Time"), "1:00:01");
  const QVariantList kiva = VersionList(facts, TraitsOf("Kiva-CMX").family);
  EXPECT_EQ(ValueOf(kiva, "Firmware Version"), "1.4.2");
  EXPECT_EQ(ValueOf(kiva, "PBL Version"), "0.9");
  EXPECT_EQ(ValueOf(kiva, "BMB FPGA Version"), "A7");
  EXPECT_EQ(ValueOf(VersionList(facts, TraitsOf("Lumo").family), "Junction Box Version"), "A7");
}

TEST_F(MaintenanceTest, NamesTheSafetyFunctionsThatFailed) {
  lidar_.replies = {{0, {2, 1, 0, 0, 0, 4, 2, 0x01, 0x2F}}};
  const QVariantList list = Over(kSerialCmx).ReadFunctionSafety();
  EXPECT_EQ(ValueOf(list, "Safety function 1"), "OK");
  EXPECT_EQ(ValueOf(list, "Safety function 4"), "State 2, fault code 0x012f");
}

TEST_F(MaintenanceTest, RestartAndResetSendWhatTheTableNames) {
  const ModelFixture fixture("5,1,,0x0110,1,Restart,0,raw,,,,,,,0,0,,,0xAA\n");
  lidar_.replies = {{0, {}}, {4, {}}, {4, {}}};
  EXPECT_EQ(Over(kNetworkLink).Restart(fixture.table), 0);
  EXPECT_EQ(Over(kSerialPair).Restart(fixture.table, true), 4);
  EXPECT_EQ(Over(kSerialCmx).Restart(fixture.table), 4);
  EXPECT_EQ(lidar_.sent, std::vector<Sent>(3, {0xFF, {0x01, 0x10, 0xAA}}));
  const std::string failure = "restart error, ret:lidar return code 4";
  EXPECT_EQ(report_.Take(), (Lines{"success: Lidar restart.", "ERROR: " + failure,
                                   "error: " + failure, "ERROR: " + failure}));
  EXPECT_NE(Over(kNetworkLink).Reset(fixture.table), 0);
  state_.downloading = true;
  EXPECT_NE(Over(kNetworkLink).Restart(fixture.table), 0);
  EXPECT_EQ(lidar_.sent.size(), 3U);
}

}  // namespace
