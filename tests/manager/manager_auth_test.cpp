#include <QMetaProperty>

#include "manager_fixture.h"
#include "support/log_lines.h"
#include "support/test_keys.h"

namespace {

class ManagerAuthTest : public ManagerFixture {
 protected:
  /// Everything the manager and the device library have told anyone so far.
  QString Told() {
    QString told;
    QDebug stream(&told);
    stream << log_ << errors_ << successes_;
    const QMetaObject* type = manager_->metaObject();
    for (int i = 0; i < type->propertyCount(); ++i) {
      stream << type->property(i).read(manager_.get());
    }
    return told + device_log_.All().c_str();
  }

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

 private:
  const kavel::lidar::testing::LogLines device_log_;
};

TEST_F(ManagerAuthTest, WritesProtectedSettingsAndTellsNoKey) {
  install_.Write("Config/auth_keys.ini", test_keys::File());
  SecretSearch search;
  test_keys::AddTo(&search);
  const std::pair<int, int> frames[] = {{1, 12}, {2, 12}, {3, 24}, {4, 40}};
  for (const auto& [algorithm, response_size] : frames) {
    install_.Write("Config/auth_config.csv", test_keys::AuthTable("Orca", algorithm, "0x12|0x22"));
    VirtualLidarProcess lidar;
    Recreate();
    log_.clear();
    manager_->SetLogBytesFlowStatus(true);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_TRUE(ConnectTo(lidar));
    OpenPage("Scan");
    Edit("Minimum Distance", "45");
    Save("Scan");
    const QString hidden = QString("BYTESFLOW: SEND: %1 bytes, not shown").arg(response_size);
    EXPECT_TRUE(WaitFor([&] { return LogLines(hidden).size() == 1; })) << algorithm;
    const std::string printed =
        testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
    const QString told = Told() + lidar.Output() + printed.c_str();
    EXPECT_EQ(search.FoundIn(told.toStdString()), "") << algorithm;
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
