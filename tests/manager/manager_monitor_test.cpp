#include <QDir>
#include <QSignalSpy>
#include <QUrl>

#include "manager_fixture.h"
#include "monitor/monitor_feed.h"
#include "monitor/monitor_file.h"

namespace {

class ManagerMonitorTest : public ManagerFixture {
 protected:
  ManagerMonitorTest() {
    EXPECT_TRUE(QDir().mkpath(Folder()));
    manager_->setMonitorRecordDurationSec(3600);
  }

  /// Its name is one that a URL has to escape.
  QString Folder() const {
    return QString::fromStdString(install_.path()) + "/Aufnahmen für mich #1";
  }
  QUrl FolderUrl() const { return QUrl::fromLocalFile(Folder()); }
  QStringList Files() const { return QDir(Folder()).entryList(QDir::Files); }
  QList<QByteArray> Lines() const {
    QFile file(Folder() + '/' + Files().value(0));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().split('\n');
  }
  qint64 Samples() const { return manager_->Monitor().recording().samples; }
  bool WaitForSamples(qint64 more) {
    const qint64 target = Samples() + more;
    return WaitFor([&] { return Samples() >= target; });
  }
  bool WaitForSaved() {
    return WaitFor([this] { return !successes_.isEmpty(); });
  }
  bool IsFresh() { return manager_->Monitor().recording().fresh; }
};

TEST_F(ManagerMonitorTest, RecordsWhatTheLidarMeasures) {
  const VirtualLidarProcess lidar({"--hardware", "B2"});
  ASSERT_TRUE(ConnectTo(lidar));
  EXPECT_EQ(manager_->monitorHwVersionList(), (QVariantList{"A1", "B2"}));
  QSignalSpy content(manager_.get(), &TevronManager::monitorContentChanged);
  manager_->selectMonitorHwVersion("B2");
  EXPECT_EQ(content.count(), manager_->monitorContentRevision());
  EXPECT_EQ(manager_->currentMonitorHwVersion(), "B2");
  EXPECT_EQ(Find("Rotor Balance")[2].toInt(), manager_->monitorModuleIndex());
  EXPECT_EQ(Leaf(Find("Rotor Balance"))["state"], "read");
  EXPECT_EQ(Text("Monitor Hardware"), "B2");

  manager_->setMonitorRecordIntervalSec(2);
  manager_->startMonitorRecord(FolderUrl());
  EXPECT_TRUE(manager_->isMonitorRecording());
  manager_->startMonitorRecord(FolderUrl());
  ASSERT_TRUE(WaitForSamples(2));
  manager_->stopMonitorRecord();
  EXPECT_FALSE(manager_->isMonitorRecording());
  ASSERT_TRUE(WaitForSaved());

  ASSERT_EQ(Files().size(), 1);
  EXPECT_TRUE(QRegularExpression("^Monitor_B2_\\d{8}_\\d{6}\\.csv$").match(Files()[0]).hasMatch());
  EXPECT_EQ(successes_, QStringList("Monitor record saved:\n" + Folder() + '/' + Files()[0]));
  const QList<QByteArray> lines = Lines();
  ASSERT_GE(lines.size(), 4);
  const QList<QByteArray> names = lines[0].split(',');
  const QList<QByteArray> last = lines[lines.size() - 2].split(',');
  EXPECT_EQ(names[0], "timestamp");
  EXPECT_EQ(names[1], "Monitor Hardware");
  EXPECT_EQ(names[2], "Emitter Bank 1 Temperature (°C)");
  EXPECT_EQ(lines.back(), "");
  ASSERT_EQ(last.size(), names.size());
  EXPECT_EQ(names.size(), 17);
  for (int i = 1; i < names.size(); ++i) {
    const QString name = QString(names[i]).section(" (", 0, 0);
    EXPECT_EQ(QString(last[i]), lidar.Held(name)) << names[i].constData();
  }
  const MonitorFile read = ReadMonitorFile((Folder() + '/' + Files()[0]).toStdString());
  EXPECT_EQ(read.samples.size(), static_cast<size_t>(lines.size() - 2));
  EXPECT_TRUE(read.faults.empty());
}

TEST_F(ManagerMonitorTest, TellsWhyItDoesNotRecordOrSwitch) {
  const auto record = [this](const QUrl& folder) {
    manager_->startMonitorRecord(folder);
    EXPECT_FALSE(manager_->isMonitorRecording());
    return TakeErrors();
  };
  EXPECT_EQ(record(FolderUrl()), QStringList("Please connect to lidar first"));
  manager_->InitConfigFileParser("Lumo");
  EXPECT_EQ(record(FolderUrl()), QStringList("No Monitor module for current model"));
  EXPECT_TRUE(manager_->monitorHwVersionList().isEmpty());
  EXPECT_LT(manager_->monitorModuleIndex(), 0);
  manager_->refreshMonitor();
  manager_->InitConfigFileParser("Orca");

  const VirtualLidarProcess lidar;
  ASSERT_TRUE(ConnectTo(lidar));
  for (const QUrl& folder : {QUrl(), QUrl::fromLocalFile(Folder() + "/none"), QUrl("file://")}) {
    EXPECT_EQ(record(folder), QStringList("Invalid record folder"));
  }
  install_.Write("Config/varID/Orca/Monitor_C3.csv", "GroupID,Index\n1,1\n");
  install_.Write("Config/varID/Orca/Monitor_C4.csv", "");
  for (const QString version : {"", "C3", "C4"}) {
    manager_->selectMonitorHwVersion(version);
    EXPECT_EQ(TakeErrors(), QStringList("Failed to load monitor config for version " + version));
  }
  EXPECT_EQ(manager_->currentMonitorHwVersion(), "");
  EXPECT_EQ(manager_->monitorContentRevision(), 0);

  // Without a version, and with a path as a text.
  manager_->setMonitorRecordDurationSec(1);
  manager_->setMonitorRecordIntervalSec(3600);
  manager_->startMonitorRecord(QUrl("file://" + Folder().replace('#', "%23")));
  manager_->selectMonitorHwVersion("A1");
  EXPECT_EQ(TakeErrors(), QStringList("Stop recording before switching hardware version"));
  ASSERT_TRUE(WaitForSaved());
  EXPECT_FALSE(manager_->isMonitorRecording());
  EXPECT_TRUE(Files().value(0).startsWith("Monitor_NA_"));
  EXPECT_EQ(Lines().size(), 3) << "the header, one sample, and the end of its line";
}

TEST_F(ManagerMonitorTest, ARecordingOutlivesTheLinkAndEndsWithTheModel) {
  auto lidar = std::make_unique<VirtualLidarProcess>(QStringList{"--seed", "0"});
  const quint16 port = lidar->port();
  ASSERT_TRUE(ConnectTo(*lidar));
  manager_->selectMonitorHwVersion("A1");
  manager_->startMonitorRecord(FolderUrl());
  ASSERT_TRUE(WaitForSamples(1));
  lidar.reset();
  manager_->Stop();
  ASSERT_TRUE(WaitFor([this] { return !IsFresh(); }));
  ASSERT_TRUE(WaitForSamples(1));
  const MonitorFeed& feed = manager_->Monitor();
  EXPECT_FALSE(feed.At(feed.end() - 1).values[0].fresh) << "a gap, where the link was lost";
  EXPECT_EQ(feed.At(feed.end() - 1).values[0].number, 46.2);
  EXPECT_EQ(LogLines("WARNING: The recording goes on with values that are not fresh: ").size(), 1);
  lidar = std::make_unique<VirtualLidarProcess>(QStringList{"--seed", "0"}, port);
  ASSERT_TRUE(ConnectTo(*lidar));
  ASSERT_TRUE(WaitFor([this] { return IsFresh(); }));
  manager_->InitConfigFileParser("Osprey");
  EXPECT_FALSE(manager_->isMonitorRecording());
  EXPECT_EQ(manager_->monitorHwVersionList(), QVariantList{"C1"});
  ASSERT_TRUE(WaitForSaved());
  EXPECT_EQ(Lines().back(), "");
  for (const QByteArray& line : Lines().mid(1, Lines().size() - 2)) {
    EXPECT_TRUE(line.contains(",A1,46.20,")) << line.constData();
  }
}

TEST_F(ManagerMonitorTest, RefreshesByItselfWithoutHoldingTheWindow) {
  VirtualLidarProcess lidar;
  ASSERT_TRUE(ConnectTo(lidar));
  OpenPage("Scan");
  manager_->selectMonitorHwVersion("A1");
  Edit("Minimum Distance", "45");
  manager_->selectMonitorHwVersion("A1");
  EXPECT_EQ(Text("Minimum Distance"), "45") << "what is typed on other pages stays";
  EXPECT_EQ(manager_->getSetMapSize(), 1);
  manager_->setMonitorAutoRefresh(true);
  const MonitorFeed& feed = manager_->Monitor();
  EXPECT_EQ(feed.variables().size(), 15U);
  EXPECT_EQ(feed.variables()[0].unit, "°C");
  QSignalSpy shown(manager_.get(), &TevronManager::myTimerMapChanged);
  ASSERT_TRUE(WaitFor([&] { return feed.end() >= 4; }));
  EXPECT_GE(shown.count(), 3);

  manager_->setIsDownloadLog(true);
  ASSERT_TRUE(WaitFor([&] { return !feed.At(feed.end() - 1).values[0].fresh; }));
  manager_->setIsDownloadLog(false);

  // A silent lidar, in the middle of an exchange of the refresh and of a recording.
  manager_->startMonitorRecord(FolderUrl());
  ASSERT_TRUE(WaitForSamples(1));
  lidar.Freeze();
  ASSERT_TRUE(WaitFor([this] { return !IsFresh(); }));
  manager_.reset();
  EXPECT_EQ(Lines().back(), "") << "closed whole";
}

}  // namespace
