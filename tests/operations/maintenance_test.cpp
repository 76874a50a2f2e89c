#include "operations/maintenance.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QVariantMap>
#include <fstream>
#include <functional>

#include "operations/lidar_model.h"
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

  Maintenance Over(int connect_type) {
    return Maintenance({&lidar_, state_, connect_type}, report_);
  }
  ScriptedSender lidar_;
  LinkState state_;
  RecordedReport report_;
};

TEST_F(MaintenanceTest, ARefusalIsShownAndLoggedInTheSameWords) {
  Maintenance maintenance = Over(kSerialCmx);
  for (const Operation& operation : Operations()) {
    lidar_.sent.clear();
    lidar_.replies = {{3, {}}};
    operation.run(maintenance);
    EXPECT_EQ(lidar_.sent, std::vector<Sent>{operation.sent});
    const Lines report = report_.Take();
    ASSERT_EQ(report.size(), 2U);
    EXPECT_EQ(report[0].substr(0, 7), "error: ");
    EXPECT_EQ(report[1], "ERROR: " + report[0].substr(7));
    EXPECT_NE(report[0].find(", ret:lidar return code 3"), std::string::npos) << report[0];
  }
}

TEST_F(MaintenanceTest, GuardsComeBeforeTheWireAndInTheirOrder) {
  Maintenance serial = Over(kSerialCmx);
  Maintenance pair = Over(kSerialPair);
  Maintenance without_client({nullptr, state_, kSerialCmx}, report_);
  for (const Operation& operation : Operations()) {
    state_.connected = false;
    operation.run(serial);
    const Lines not_ready = report_.Take();
    ASSERT_EQ(not_ready.size(), 1U);
    operation.run(pair);
    EXPECT_EQ(report_.Take() != not_ready, operation.serial_only) << not_ready[0];
    state_.connected = true;
    operation.run(without_client);
    EXPECT_EQ(report_.Take(), not_ready);
    state_.upgrading = true;
    operation.run(serial);
    EXPECT_EQ(report_.Take(), not_ready);
    state_.upgrading = false;
  }
  EXPECT_TRUE(lidar_.sent.empty());
}

TEST_F(MaintenanceTest, HandsOutWhatTheLidarHoldsAndConfirmsWhatItTook) {
  lidar_.replies = {{0, {0, 1, 0xC2, 0}}, {0, {}}, {0, {10, 0, 0, 5, 0x09, 0x40}},
                    {0, kNetBytes},       {0, {}}, {0, {}}};
  Maintenance maintenance = Over(kSerialCmx);
  EXPECT_EQ(maintenance.ReadBaudRate(), 115200U);
  EXPECT_EQ(maintenance.WriteBaudRate("921600"), 921600U);
  EXPECT_EQ(maintenance.ReadDestination(), (QVariantList{"10.0.0.5", 2368}));
  EXPECT_EQ(maintenance.ReadNet(),
            (QVariantList{"192.168.1.201", "255.255.255.0", "192.168.1.1", 1, 4095}));
  maintenance.WriteImuRange(0, 0);
  EXPECT_EQ(maintenance.RestartKiva(), 0);
  EXPECT_EQ(report_.Take(),
            (Lines{"success: set baud rate successful", "success: IMU range set successfully",
                   "INFO: Kiva restart command sent"}));
}

TEST_F(MaintenanceTest, SilentReadsKeepFailuresOutOfTheErrorBox) {
  lidar_.replies = {{3, {}}};
  EXPECT_TRUE(Over(kSerialCmx).ReadNet(true).isEmpty());
  EXPECT_EQ(report_.Take(), Lines{"ERROR: get net config error, ret:lidar return code 3"});
  EXPECT_TRUE(Over(kNetworkLink).ReadDestination(true).isEmpty());
  EXPECT_EQ(report_.Take(), Lines());
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
  maintenance.WriteReturnMode(256);
  maintenance.WriteSpinRate(-1);
  maintenance.WriteStandby(2);
  EXPECT_FALSE(maintenance.WriteDestination("10.0.0.5", 65536));
  EXPECT_FALSE(maintenance.WriteDestination("10.0.0", 2368));
  EXPECT_FALSE(maintenance.WriteNet("10.0.0.2", "255.0.0.0", "10.0.0.1", true, 4096));
  EXPECT_EQ(report_.Take().size(), 12U) << "each in the error box and in the log";
  EXPECT_TRUE(lidar_.sent.empty());
}

TEST_F(MaintenanceTest, ImuIndicesAreCheckedBeforeTheLink) {
  state_.connected = false;
  Maintenance maintenance = Over(kNetworkLink);
  for (const int angular : {6, -1}) {
    maintenance.WriteImuRange(angular, 9);
    EXPECT_EQ(report_.Take(), Lines{"error: Invalid angular range index"});
  }
  for (const int accel : {4, -1}) {
    maintenance.WriteImuRange(5, accel);
    EXPECT_EQ(report_.Take(), Lines{"error: Invalid acceleration range index"});
  }
}

/// The value that the list shows under a name, or "(none)".
QString ValueOf(const QVariantList& list, const QString& name) {
  for (const QVariant& entry : list) {
    if (entry.toMap()["name"] == name) return entry.toMap()["value"].toString();
  }
  return "(none)";
}

Bytes Text(std::string text, std::size_t size) {
  text.resize(size);
  return {text.begin(), text.end()};
}

TEST_F(MaintenanceTest, FactsAreShownUnderTheNamesOfTheModel) {
  Bytes versions = Text("1.4.2", 16);
  for (const char* board : {"A7", "B3"}) {
    const Bytes field = Text(board, 16);
    versions.insert(versions.end(), field.begin(), field.end());
  }
  lidar_.replies = {{0, Text("Kiva2600059", 32)},
                    {0, Text("Kiva\tD32", 32)},
                    {0, versions},
                    {0, Text("0.9", 16)},
                    {0, {2, 0x04, 0xB0, 1, 3, 2, 0, 0, 0x0E, 0x11}}};
  const DeviceFacts facts = Over(kSerialPair).ReadFacts();
  EXPECT_EQ(report_.Take(),
            (Lines{"error: PN invalid after validation", "ERROR: PN invalid after validation"}));
  const QVariantList info = InfoList(facts, SerialModelKind::kKiva);
  EXPECT_EQ(ValueOf(info, "Serial Number"), "Kiva2600059");
  EXPECT_EQ(ValueOf(info, "Part Number"), "xxxxxxxx");
  EXPECT_EQ(ValueOf(info, "Spin Rate"), "1200 rpm");
  EXPECT_EQ(ValueOf(info, "IMU Angular Range Index"), "3");
  EXPECT_EQ(ValueOf(info, "Up Time"), "1:00:01");
  const QVariantList kiva = VersionList(facts, SerialModelKindOf("Kiva-CMX"));
  EXPECT_EQ(ValueOf(kiva, "Firmware Version"), "1.4.2");
  EXPECT_EQ(ValueOf(kiva, "PBL Version"), "0.9");
  EXPECT_EQ(ValueOf(kiva, "BMB FPGA Version"), "A7");
  EXPECT_EQ(ValueOf(kiva, "TMB FPGA Version"), "B3");
  const QVariantList lumo = VersionList(facts, SerialModelKindOf("Lumo"));
  EXPECT_EQ(ValueOf(lumo, "Junction Box Version"), "A7");
  EXPECT_EQ(ValueOf(lumo, "TMB FPGA Version"), "(none)");
}

TEST_F(MaintenanceTest, ASilentLidarIsAskedForOneFactOnly) {
  const DeviceFacts facts = Over(kSerialCmx).ReadFacts();
  EXPECT_EQ(lidar_.sent, (std::vector<Sent>{{0x4B, {}}}));
  EXPECT_EQ(report_.Take(), (Lines{"error: get SN failed, ret:no answer from the lidar",
                                   "ERROR: get SN failed, ret:no answer from the lidar"}));
  EXPECT_EQ(ValueOf(InfoList(facts, SerialModelKind::kLumo), "Spin Rate"), "xxxxxxxx");
}

TEST_F(MaintenanceTest, NamesTheSafetyFunctionsThatFailed) {
  lidar_.replies = {{0, {2, 1, 0, 0, 0, 4, 2, 0x01, 0x2F}}};
  const QVariantList list = Over(kSerialCmx).ReadFunctionSafety();
  ASSERT_EQ(list.size(), 2);
  EXPECT_EQ(ValueOf(list, "Safety function 1"), "OK");
  EXPECT_EQ(ValueOf(list, "Safety function 4"), "State 2, fault code 0x012f");
}

TEST_F(MaintenanceTest, RestartAndResetSendWhatTheTableNames) {
  const QTemporaryDir folder;
  const std::string path = folder.filePath("Model.csv").toStdString();
  std::ofstream(path)
      << "GroupID,Index,Get,Set,SetIndex,VarName,Permission,VarType,DefaultValue,Options,Unit,"
         "Coefficient,OptionDescription,FunctionModule,VarLen,TimerUpdate,SetCoefficient,"
         "GetCmdPayload,SetCmdPayload\n5,1,,0x0110,1,Restart,0,raw,,,,,,,0,0,,,0xAA\n";
  ConfigParser table;
  table.ExtractConfigInfo(path);

  lidar_.replies = {{0, {}}, {4, {}}, {4, {}}};
  EXPECT_EQ(Over(kNetworkLink).Restart(table), 0);
  EXPECT_EQ(Over(kSerialPair).Restart(table, true), 4);
  EXPECT_EQ(Over(kSerialCmx).Restart(table), 4);
  EXPECT_EQ(lidar_.sent, std::vector<Sent>(3, {0xFF, {0x01, 0x10, 0xAA}}));
  const std::string failure = "restart error, ret:lidar return code 4";
  EXPECT_EQ(report_.Take(), (Lines{"success: Lidar restart.", "ERROR: " + failure,
                                   "error: " + failure, "ERROR: " + failure}));

  EXPECT_NE(Over(kNetworkLink).Reset(table), 0);
  state_.downloading = true;
  EXPECT_NE(Over(kNetworkLink).Restart(table), 0);
  state_.upgrading = true;
  EXPECT_NE(Over(kNetworkLink).Restart(table), 0);
  state_.connected = false;
  EXPECT_NE(Over(kNetworkLink).Restart(table), 0);
  EXPECT_EQ(report_.Take(), (Lines{"error: The table of this model names no reset command.",
                                   "error: Please wait for the operation log to download "
                                   "completely",
                                   "error: Please wait for the lidar to upgrade completely",
                                   "error: Please connect to lidar first"}));
  EXPECT_EQ(lidar_.sent.size(), 3U);
}

}  // namespace
