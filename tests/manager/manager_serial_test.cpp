#include "manager_fixture.h"
#include "support/pty_pair.h"

namespace {

using kavel::lidar::testing::PtyPair;

class ManagerSerialTest : public ManagerFixture {
 protected:
  /// Connects `model` to the line or the pair of `lidar` and waits for what it says about itself.
  bool ConnectSerial(const QString& model, const VirtualLidarProcess& lidar) {
    manager_->InitConfigFileParser(model);
    manager_->setSerialPort485(lidar.SerialPort("485"));
    manager_->setSerialPort232(lidar.SerialPort("232"));
    return Connect() && WaitFor([this] { return !manager_->isGetPBLVersion(); });
  }

  /// Waits until the lidar's information shows `value` under `name`.
  bool Shows(const QString& name, const QString& value) {
    return WaitFor([&] {
      const QVariantList info = manager_->lumoLidarInfo();
      return std::any_of(info.begin(), info.end(), [&](const QVariant& fact) {
        return fact.toMap()["name"] == name && fact.toMap()["value"] == value;
      });
    });
  }
};

class ManagerOneLineTest : public ManagerSerialTest,
                           public testing::WithParamInterface<const char*> {};

TEST_P(ManagerOneLineTest, ConnectsIdentifiesSetsAndLeavesThePortFree) {
  const QString model = GetParam();
  VirtualLidarProcess lidar({"--model", model});
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(ConnectSerial(model, lidar));
    EXPECT_EQ(2, manager_->connectType());
    EXPECT_NE("xxxxxxxx", manager_->getLidarPN());
    EXPECT_FALSE(manager_->lumoLidarVersionInfo().isEmpty());
    manager_->Stop();
    EXPECT_EQ("xxxxxxxx", manager_->getLidarPN());
    EXPECT_EQ(i + 1, LogLines("INFO: connect type is not support").size());
  }
  ASSERT_TRUE(ConnectSerial(model, lidar));
  EXPECT_TRUE(manager_->LumoSetDestinationIPandPort("10.1.2.3", 2400));
  EXPECT_EQ("10.1.2.3", manager_->LumoGetDestinationConfig().value(0).toString());
  manager_->LumoSetBaudRateFromUI("921600");
  EXPECT_EQ("921600", manager_->LumoGetBaudRate());
  EXPECT_EQ("921600", manager_->baudRate());
  manager_->LumoSetSpinRate(900);
  EXPECT_TRUE(Shows("Spin Rate", "900 rpm"));
  manager_->LumoSetStandby(1);
  EXPECT_TRUE(Shows("Mode", "Standby"));
  EXPECT_EQ(0, manager_->Restart());
  EXPECT_TRUE(WaitFor([&lidar] {
    return lidar.Output().section("restarted", 1).contains("4F (0 bytes)");  // the status
  }));
  EXPECT_NE("xxxxxxxx", manager_->getLidarSN());
  EXPECT_TRUE(TakeErrors().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Models, ManagerOneLineTest, testing::Values("Lumo-CMX", "Kiva-CMX"));

TEST_F(ManagerSerialTest, APairOfPortsConnectsAndTheConsoleWorks) {
  const VirtualLidarProcess lidar({"--model", "Lumo"});
  QStringList order;
  QObject::connect(manager_.get(), &TevronManager::isConnectedChanged, [this, &order] {
    order << (manager_->GetIsConnectingLidar() ? "connecting" : "connected") << log_.last();
  });
  QObject::connect(manager_.get(), &TevronManager::isGetPBLVersionChanged,
                   [this, &order] { order << (manager_->isGetPBLVersion() ? "reading" : "read"); });
  ASSERT_TRUE(ConnectSerial("Lumo", lidar));
  EXPECT_EQ(order, (QStringList{"connected", "INFO: Lidar connected", "reading", "read"}));
  EXPECT_EQ(1, manager_->connectType());
  manager_->SendCommand("4B", "");
  EXPECT_FALSE(manager_->getSendCmxCommandReturnPayload().isEmpty());
  EXPECT_EQ(0, manager_->Restart());
}

TEST_F(ManagerSerialTest, PortsThatDoNotOpenAreNamed) {
  manager_->InitConfigFileParser("Lumo");
  manager_->setSerialPort485("/dev/no-such-port");
  EXPECT_FALSE(Connect());
  EXPECT_EQ(QStringList("Connection Failed. Please check your RS485 serial port."), TakeErrors());
  EXPECT_EQ(1, LogLines("ERROR: ").filter("/dev/no-such-port").size());

  const VirtualLidarProcess lidar({"--model", "Lumo"});
  manager_->setSerialPort485(lidar.SerialPort("485"));
  manager_->setSerialPort232("/dev/no-such-port");
  EXPECT_FALSE(Connect());
  EXPECT_EQ(QStringList("Connection Failed. Please check your UART serial port."), TakeErrors());
  // The port of the first half is free again.
  manager_->setSerialPort232(lidar.SerialPort("232"));
  EXPECT_TRUE(Connect());

  manager_->InitConfigFileParser("Kiva-CMX");
  manager_->setSerialPort485("/dev/no-such-port");
  EXPECT_FALSE(Connect());
  EXPECT_EQ(QStringList("TCP connection failed."), TakeErrors());
}

TEST_F(ManagerSerialTest, ALineThatVanishesDisconnectsWithAReason) {
  VirtualLidarProcess lidar({"--model", "Kiva-CMX"});
  ASSERT_TRUE(ConnectSerial("Kiva-CMX", lidar));
  lidar.Kill();
  ASSERT_TRUE(WaitFor([this] { return !manager_->isConnected(); }));
  EXPECT_EQ(1, TakeErrors().filter(lidar.SerialPort()).size());
}

TEST_F(ManagerSerialTest, APairOfPortsEndsWhenEitherVanishes) {
  for (const bool request_line : {true, false}) {
    PtyPair lines[2];
    manager_->InitConfigFileParser("Lumo");
    manager_->setSerialPort485(QString::fromStdString(lines[0].path()));
    manager_->setSerialPort232(QString::fromStdString(lines[1].path()));
    ASSERT_TRUE(Connect());
    TakeErrors();
    PtyPair& vanishing = lines[request_line ? 0 : 1];
    vanishing.HangUp();
    ASSERT_TRUE(WaitFor([this] { return !manager_->isConnected(); }));
    EXPECT_EQ(1, TakeErrors().filter(QString::fromStdString(vanishing.path())).size());
  }
}

TEST_F(ManagerSerialTest, OnlyTheFirstReadingOfTheFactsIsHeard) {
  const VirtualLidarProcess lidar(
      {"--model", "Lumo-CMX", "--serial", "--fault", "return-code=4@0x4F"});
  ASSERT_TRUE(ConnectSerial("Lumo-CMX", lidar));
  const QString failure = "get status error, ret:lidar return code 4";
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
  manager_->InitConfigFileParser("Kiva-CMX");
  manager_->setSerialPort485(lidar.SerialPort());
  ASSERT_TRUE(Connect());
  TakeErrors();
  manager_->Stop();
  QCoreApplication::processEvents();  // what the reading thread said at its end
  EXPECT_EQ(QStringList(), TakeErrors());
  EXPECT_FALSE(manager_->isGetPBLVersion());
}

}  // namespace
