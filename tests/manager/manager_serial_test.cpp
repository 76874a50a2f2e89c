#include "manager_fixture.h"
#include "support/pty_pair.h"
#include "support/test_keys.h"

namespace {

using kavel::lidar::testing::PtyPair;

class ManagerSerialTest : public ManagerFixture {
 protected:
  void Choose(const QString& model, const QString& port_485, const QString& port_232) {
    manager_->InitConfigFileParser(model);
    manager_->setSerialPort485(port_485);
    manager_->setSerialPort232(port_232);
  }
  /// Connects `model` to the line or the pair of `lidar` and waits for what it says about itself.
  bool ConnectSerial(const QString& model, const VirtualLidarProcess& lidar) {
    Choose(model, lidar.SerialPort("485"), lidar.SerialPort("232"));
    return Connect() && WaitFor([this] { return !manager_->isGetPBLVersion(); });
  }
  /// Waits until the lidar has told `raw` as fact number `row`.
  bool Tells(int row, int raw) {
    return WaitFor([=] { return manager_->lumoLidarInfo()[row].toMap()["raw"] == raw; });
  }
};

TEST_F(ManagerSerialTest, OneLineIsSetAndRestartedAndVanishes) {
  for (const char* const model : {"Lumo-CMX", "Kiva-CMX"}) {
    VirtualLidarProcess lidar({"--model", model});
    ASSERT_TRUE(ConnectSerial(model, lidar));
    EXPECT_EQ(manager_->connectType(), 2);
    EXPECT_FALSE(manager_->lumoLidarVersionInfo().isEmpty());
    manager_->LumoSetBaudRateFromUI("921600");
    EXPECT_EQ(manager_->LumoGetBaudRate(), "921600");
    EXPECT_EQ(manager_->baudRate(), "921600");
    manager_->LumoSetStandby(1);
    EXPECT_TRUE(Tells(4, 1));
    EXPECT_EQ(manager_->Restart(), 0);
    EXPECT_TRUE(WaitFor([&lidar] {
      return lidar.Output().section("restarted", 1).contains("4F (0 bytes)");  // the status
    }));
    EXPECT_NE("xxxxxxxx", manager_->getLidarSN());
    EXPECT_TRUE(TakeErrors().isEmpty());
    lidar.Kill();
    ASSERT_TRUE(WaitFor([this] { return !manager_->isConnected(); }));
    EXPECT_EQ(TakeErrors().filter(lidar.SerialPort()).size(), 1);
    EXPECT_EQ(manager_->getLidarPN(), "xxxxxxxx");
  }
}

TEST_F(ManagerSerialTest, APairOfPortsConnectsTheConsoleWorksAndSettingsAreProtected) {
  install_.Write("Config/auth_config.csv", test_keys::AuthTable("Lumo", 3, "0x47"));
  const VirtualLidarProcess lidar({"--model", "Lumo"});
  QStringList order;
  QObject::connect(manager_.get(), &TevronManager::isConnectedChanged, [this, &order] {
    order << (manager_->GetIsConnectingLidar() ? "connecting" : "connected") << log_.last();
  });
  QObject::connect(manager_.get(), &TevronManager::isGetPBLVersionChanged,
                   [this, &order] { order << (manager_->isGetPBLVersion() ? "reading" : "read"); });
  ASSERT_TRUE(ConnectSerial("Lumo", lidar));
  EXPECT_EQ(order, (QStringList{"connected", "INFO: Lidar connected", "reading", "read"}));
  EXPECT_EQ(manager_->connectType(), 1);
  manager_->SendCommand("4B", "");
  EXPECT_FALSE(manager_->getSendCmxCommandReturnPayload().isEmpty());
  manager_->LumoSetSpinRate(900);
  EXPECT_TRUE(Tells(3, 900));
  EXPECT_EQ(manager_->Restart(), 0);
}

TEST_F(ManagerSerialTest, PortsThatDoNotOpenAreNamed) {
  const VirtualLidarProcess lidar({"--model", "Lumo"});
  const QString none = "/dev/no-such-port";
  const std::tuple<const char*, QString, const char*> cases[] = {
      {"Lumo", none, "Connection Failed. Please check your RS485 serial port."},
      {"Lumo", lidar.SerialPort("485"), "Connection Failed. Please check your UART serial port."},
      {"Kiva-CMX", none, "TCP connection failed."}};
  for (const auto& [model, port_485, error] : cases) {
    log_.clear();
    Choose(model, port_485, none);
    EXPECT_FALSE(Connect());
    EXPECT_EQ(TakeErrors(), QStringList(error));
    EXPECT_EQ(LogLines("ERROR: ").filter(none).size(), 1);
    EXPECT_TRUE(remedies_.last().contains(none + " was not found."));
  }
  EXPECT_TRUE(ConnectSerial("Lumo", lidar)) << "the port of the first half is free again";
}

TEST_F(ManagerSerialTest, APairOfPortsEndsWhenEitherVanishes) {
  for (const int vanishing : {0, 1}) {
    PtyPair lines[2];
    Choose("Lumo", QString::fromStdString(lines[0].path()),
           QString::fromStdString(lines[1].path()));
    ASSERT_TRUE(Connect());
    TakeErrors();
    lines[vanishing].HangUp();
    ASSERT_TRUE(WaitFor([this] { return !manager_->isConnected(); }));
    EXPECT_EQ(TakeErrors().filter(QString::fromStdString(lines[vanishing].path())).size(), 1);
  }
}

TEST_F(ManagerSerialTest, OnlyTheFirstReadingOfTheFactsIsHeard) {
  const VirtualLidarProcess lidar({"--model", "Lumo-CMX", "--fault", "return-code=4@0x4F"});
  ASSERT_TRUE(ConnectSerial("Lumo-CMX", lidar));
  const QString failure = "get status error, ret:lidar return code 4 (not allowed now)";
  EXPECT_EQ(TakeErrors(), QStringList(failure));
  // A screen that does not clear the message sees what becomes of it.
  QObject::disconnect(manager_.get(), &TevronManager::successMessageChanged, nullptr, nullptr);
  manager_->LumoSetSpinRate(900);
  ASSERT_TRUE(WaitFor([&] { return LogLines("ERROR: " + failure).size() == 2; }));
  EXPECT_EQ(TakeErrors(), QStringList());
  EXPECT_EQ(manager_->successMessage(), "set spin rate successful");
}

TEST_F(ManagerSerialTest, DisconnectingWhileTheLidarIdentifiesItselfIsNoFailure) {
  const VirtualLidarProcess lidar({"--model", "Kiva-CMX", "--fault", "delay=60000@0x4B"});
  Choose("Kiva-CMX", lidar.SerialPort(), {});
  ASSERT_TRUE(Connect());
  TakeErrors();
  manager_->Stop();
  QCoreApplication::processEvents();  // what the reading thread said at its end
  EXPECT_EQ(QStringList(), TakeErrors());
  EXPECT_FALSE(manager_->isGetPBLVersion());
}

}  // namespace
