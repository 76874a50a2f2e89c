#include <QDir>
#include <QSignalSpy>
#include <QTcpServer>
#include <QUdpSocket>
#include <chrono>

#include "manager_fixture.h"
#include "support/socket_peer.h"

namespace {

using kavel::lidar::testing::SocketPeer;
using kavel::lidar::testing::TcpEnd;
using std::chrono::seconds;
using std::chrono::steady_clock;

/// Threads of this process.
uint ThreadCount() { return QDir("/proc/self/task").count(); }

class ManagerConnectionTest : public ManagerFixture {
 protected:
  /// Destroys the manager and tells whether that was quick.
  bool EndsInTime() {
    const auto start = steady_clock::now();
    manager_.reset();
    return steady_clock::now() - start < seconds(5);
  }

  /// Accepts the connection and never says a word.
  const SocketPeer mute_{[](TcpEnd& lidar) { lidar.WaitForEnd(); }};
};

TEST_F(ManagerConnectionTest, ConnectsReadsLosesTheLinkAndComesBack) {
  auto lidar = std::make_unique<VirtualLidarProcess>();
  const quint16 port = lidar->port();
  QSignalSpy connected(manager_.get(), &TevronManager::isConnectedChanged);
  PointAt(lidar->port());
  ASSERT_TRUE(manager_->ConnectLidar());
  EXPECT_TRUE(manager_->GetIsConnectingLidar());
  EXPECT_FALSE(manager_->ConnectLidar());
  ASSERT_TRUE(WaitFor([this] { return manager_->isConnected(); }));
  EXPECT_EQ(connected.count(), 1);
  EXPECT_EQ(LogLines("INFO: Lidar connected").size(), 1);
  manager_->GetLidarModuleInfo(0);
  manager_->GetLidarModuleInfo(Find("FOV Table")[2].toInt());
  EXPECT_EQ(manager_->fovList()[1], "360");
  EXPECT_EQ(manager_->getLidarPN(), "Orca-64-A2");
  EXPECT_TRUE(manager_->CheckLidarConnection());

  lidar.reset();
  EXPECT_FALSE(manager_->CheckLidarConnection());
  manager_->Stop();
  EXPECT_FALSE(manager_->isConnected());
  EXPECT_EQ(manager_->getLidarPN(), "xxxxxxxx");
  EXPECT_EQ(LogLines("INFO: Lidar disconnected").size(), 1);

  lidar = std::make_unique<VirtualLidarProcess>(QStringList(), port);
  EXPECT_TRUE(Connect());
  EXPECT_EQ("xxxxxxxx", manager_->getLidarPN());  // another lidar's, as far as anyone knows
  EXPECT_EQ(Leaf(Find("PN"))["state"], "unread");
  EXPECT_EQ(manager_->fovList()[1], "");
  EXPECT_TRUE(TakeErrors().isEmpty());
}

TEST_F(ManagerConnectionTest, AHandlerMayEndTheConnectionThatIsBeingAnnounced) {
  const VirtualLidarProcess lidar;
  QObject::connect(manager_.get(), &TevronManager::myMapChanged, manager_.get(),
                   &TevronManager::Stop);
  EXPECT_FALSE(ConnectTo(lidar));
  EXPECT_TRUE(TakeErrors().isEmpty());
}

TEST_F(ManagerConnectionTest, ReconnectingLeavesNothingBehind) {
  // Only its answer to the older liveness command counts.
  const VirtualLidarProcess lidar({"--fault", "return-code=1@0x07"});
  ASSERT_TRUE(ConnectTo(lidar));
  const uint threads = ThreadCount();
  for (int i = 0; i < 10; ++i) {
    manager_->Stop();
    ASSERT_TRUE(Connect());
  }
  EXPECT_EQ(threads, ThreadCount());
}

TEST_F(ManagerConnectionTest, TellsWhyItDidNotConnect) {
  const VirtualLidarProcess unwilling({"--fault", "return-code=1@0x07", "--fault", "drop@0x08"});
  EXPECT_FALSE(ConnectTo(unwilling));
  EXPECT_EQ(TakeErrors(), QStringList("Lidar has No CMX reply."));
  for (const char* port : {"abc", "", "99999", "0", "80x"}) {
    manager_->setPort(port);
    EXPECT_FALSE(Connect());
    EXPECT_EQ(TakeErrors().filter("is no number from 1 to 65535").size(), 1) << port;
  }
}

TEST_F(ManagerConnectionTest, StopEndsAnAttemptAndItsLateResults) {
  PointAt(mute_.port());
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(manager_->ConnectLidar());
    manager_->Stop();
    EXPECT_FALSE(manager_->GetIsConnectingLidar());
  }
  // An attempt that is left alone is heard to its end, and nothing of the others before it.
  EXPECT_FALSE(Connect());
  EXPECT_EQ(QStringList("Lidar has No CMX reply."), TakeErrors());
}

TEST_F(ManagerConnectionTest, AnotherModelEndsTheAttemptAndTheConnection) {
  PointAt(mute_.port());
  ASSERT_TRUE(manager_->ConnectLidar());
  manager_->InitConfigFileParser("Osprey");
  EXPECT_FALSE(manager_->GetIsConnectingLidar());

  const VirtualLidarProcess lidar({"--model", "Osprey"});
  ASSERT_TRUE(ConnectTo(lidar));
  manager_->InitConfigFileParser("Osprey");
  EXPECT_TRUE(manager_->isConnected());
  manager_->InitConfigFileParser("Orca");
  EXPECT_FALSE(manager_->isConnected());
  EXPECT_TRUE(TakeErrors().isEmpty());
}

TEST_F(ManagerConnectionTest, EndsInTimeInEveryState) {
  PointAt(mute_.port());
  ASSERT_TRUE(manager_->ConnectLidar());
  EXPECT_TRUE(EndsInTime());

  Recreate();
  manager_->setIpAddress("");  // waits for an address that never comes
  ASSERT_TRUE(manager_->ConnectLidar());
  EXPECT_TRUE(EndsInTime());

  VirtualLidarProcess lidar({"--fault", "delay=60000@0x20"});
  Recreate();
  ASSERT_TRUE(ConnectTo(lidar));
  manager_->SetLogBytesFlowStatus(true);
  manager_->setModuleIndexUse(manager_->level1List().indexOf("Network"));
  ASSERT_TRUE(WaitFor([this] { return !LogLines("BYTESFLOW: SEND: 47 74 20").isEmpty(); }));
  EXPECT_TRUE(EndsInTime()) << "while the refresh waits for an answer";

  Recreate();
  ASSERT_TRUE(ConnectTo(lidar));
  lidar.Freeze();
  EXPECT_FALSE(manager_->CheckLidarConnection());
  EXPECT_TRUE(EndsInTime());

  Recreate();
  VirtualLidarProcess line({"--model", "Kiva-CMX"});
  manager_->InitConfigFileParser("Kiva-CMX");
  manager_->setSerialPort485(line.SerialPort());
  ASSERT_TRUE(Connect());
  line.Freeze();
  EXPECT_FALSE(manager_->CheckLidarConnection());
  manager_->Stop();
  EXPECT_FALSE(Connect());
  EXPECT_EQ(TakeErrors().last(), "Lidar has No CMX reply.");
  ASSERT_TRUE(manager_->ConnectLidar());
  EXPECT_TRUE(EndsInTime());
}

TEST_F(ManagerConnectionTest, LearnsAnEmptyAddressFromThePointCloud) {
  QUdpSocket socket;
  ASSERT_TRUE(socket.bind(QHostAddress(QHostAddress::LocalHost)));
  const QString udp_port = QString::number(socket.localPort());
  socket.close();
  const VirtualLidarProcess lidar({"--udp", "127.0.0.1:" + udp_port});
  PointAt(lidar.port());
  manager_->setIpAddress("");
  manager_->setUdpPort(udp_port);
  EXPECT_TRUE(Connect());
  EXPECT_EQ(LogLines("INFO: Lidar address learned from its packets: 127.0.0.1").size(), 1);
  EXPECT_EQ(manager_->ipAddress(), "");
}

TEST_F(ManagerConnectionTest, TheLocalPortBelongsToTheModelThatAllowsToChoose) {
  QTcpServer occupied;
  ASSERT_TRUE(occupied.listen(QHostAddress::Any));
  const VirtualLidarProcess lidar({"--model", "Osprey"});
  manager_->InitConfigFileParser("Osprey");
  manager_->setCmxClientHostPort("80");
  EXPECT_FALSE(ConnectTo(lidar));
  EXPECT_EQ(QStringList("Host port must be in [1024, 65535]"), TakeErrors());
  const QString port = QString::number(occupied.serverPort());
  manager_->setCmxClientHostPort(port);
  EXPECT_FALSE(Connect());
  EXPECT_FALSE(LogLines("ERROR: ").filter(port).isEmpty());
  manager_->InitConfigFileParser("Orca");
  EXPECT_EQ(manager_->cmxClientHostPort(), "ANY");
  manager_->InitConfigFileParser("Osprey");
  EXPECT_EQ(port, manager_->cmxClientHostPort());
}

TEST_F(ManagerConnectionTest, SettersAnnounceWhatHolds) {
  QSignalSpy settings(manager_.get(), &TevronManager::initInfoChanged);
  manager_->setPort("none");
  manager_->setPort(" none ");  // nothing new
  EXPECT_EQ(settings.count(), 1);
  manager_->setBaudRate("3125000");
  manager_->setBaudRate("fast");  // the field has to show again what holds
  manager_->setUdpPort("65536");
  EXPECT_EQ(settings.count(), 4);
  EXPECT_EQ(manager_->baudRate(), "3125000");
  EXPECT_EQ(manager_->udpPort(), "2368");
  Connect();
  Recreate();
  EXPECT_EQ(manager_->port(), "none");
}

}  // namespace
