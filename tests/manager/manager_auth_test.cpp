#include "manager_fixture.h"
#include "support/test_keys.h"

namespace {

class ManagerAuthTest : public ManagerFixture {
 protected:
  /// Saves a protected setting of a lidar that has this fault, and waits for the line that says why
  /// it was not taken.
  void ExpectRefused(const QStringList& fault, const QString& line) {
    manager_->InitConfigFileParser("Osprey");
    const VirtualLidarProcess lidar(QStringList{"--model", "Osprey"} + fault);
    ASSERT_TRUE(ConnectTo(lidar));
    OpenPage("Weather");
    Edit("Rain Filter", "4");
    Save("Weather");
    EXPECT_EQ(TakeErrors().filter("Set Failed: 0x57 SET Rain Filter, ").size(), 1);
    EXPECT_EQ(lidar.Held("Rain Filter"), "2");
    ASSERT_TRUE(WaitFor([this, line] { return LogLines(line).size() == 1; })) << line.toStdString();
  }
};

// That nothing of a key is told, tests/system/secrets_test.cpp finds.
TEST_F(ManagerAuthTest, WritesProtectedSettingsWithEveryAlgorithm) {
  install_.Write("Config/auth_keys.ini", test_keys::File());
  const std::pair<int, int> frames[] = {{1, 12}, {2, 12}, {3, 24}, {4, 40}};
  for (const auto& [algorithm, response_size] : frames) {
    SCOPED_TRACE(algorithm);
    install_.Write("Config/auth_config.csv", test_keys::AuthTable("Orca", algorithm, "0x12|0x22"));
    const VirtualLidarProcess lidar;
    Recreate();
    log_.clear();
    manager_->SetLogBytesFlowStatus(true);
    EXPECT_TRUE(ConnectTo(lidar));
    OpenPage("Scan");
    Edit("Minimum Distance", "45");
    Save("Scan");
    const QString hidden = QString("BYTESFLOW: SEND: %1 bytes, not shown").arg(response_size);
    EXPECT_TRUE(WaitFor([&] { return LogLines(hidden).size() == 1; }));
    EXPECT_TRUE(TakeErrors().isEmpty());
    EXPECT_EQ(LogLines("CMX: AUTH: probe value=1 required=true").size(), 1);
    EXPECT_EQ(lidar.Held("Minimum Distance"), "45");
  }
}

TEST_F(ManagerAuthTest, ARefusedHandshakeAndAMissingKeyAreFailedWrites) {
  ExpectRefused({"--fault", "auth-refuse-response"}, "CMX: AUTH: response rejected");
  manager_->Stop();
  install_.Write("Config/auth_keys.ini", "[keys]\ndemo=true\n");
  ExpectRefused({}, "CMX: AUTH: unavailable, reject protected cmd");
  EXPECT_EQ(LogLines("WARNING: Authentication algorithm 3 ").filter("auth_keys.ini").size(), 1);
}

}  // namespace
