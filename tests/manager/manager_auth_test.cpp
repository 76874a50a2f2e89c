#include <QMetaProperty>
#include <QSettings>

#include "manager_fixture.h"
#include "support/log_lines.h"

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
  for (const char* algorithm : {"1", "2", "3", "4"}) {
    install_.Write("Config/auth_config.csv",
                   "Model,Enable,AlgorithmID,ProbeCmd,ChallengeCmd,ResponseCmd,ProtectedCmds,"
                   "ProbeValueOffset,ProbeValueLen,ProbeEndian\nOrca,1," +
                       std::string(algorithm) + ",0xDF,0x66,0xE0,0x12|0x22,0,1,big\n");
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
    // The response belongs to the search, so that one that gives a key away is found.
    EXPECT_TRUE(WaitFor([this] { return !LogLines("BYTESFLOW: SEND: 47 74 e0").isEmpty(); }));
    const std::string printed =
        testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
    const QString told = (Told() + lidar.Output() + printed.c_str()).toLower().remove(' ');
    EXPECT_TRUE(TakeErrors().isEmpty());
    EXPECT_EQ(LogLines("CMX: AUTH: probe value=1 required=true").size(), 1);
    EXPECT_EQ(lidar.Held("Minimum Distance"), "45");
    QSettings keys("Config/auth_keys.ini", QSettings::IniFormat);
    keys.beginGroup("keys");
    for (const char* name :
         {"aes128_key", "aes256_key", "maskword_1", "maskword_2", "mix_c1", "mix_c2"}) {
      const QString key = keys.value(name).toString().toLower();
      EXPECT_FALSE(key.isEmpty() || told.contains(key)) << name << algorithm;
    }
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
