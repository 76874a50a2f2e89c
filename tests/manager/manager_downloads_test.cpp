// What is saved to files: logs, the operation log, the configuration, a Lumo's calibration.

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <chrono>

#include "Wire/calibration.h"
#include "manager_fixture.h"

namespace {

constexpr int kLogSize = 1000;
// The time that an answer may take goes by its size: this one has many seconds.
constexpr int kLongLogSize = 60000;
constexpr char kTable[] = "Config/varID/Orca.csv";

class ManagerDownloadsTest : public ManagerFixture {
 protected:
  ManagerDownloadsTest() {
    table_ = ShippedTable() +
             "0,log,Set Only\n0,log,Missing\n0,log,Event Log\n"
             "21,1,,0x6A,1,Set Only,0,raw,,,,,,,0,0,,,0x0102\n"
             "21,2,,,,Silent,0,raw,,,,,,,0,0,,,\n"
             "21,3,zz,,,Garbled,0,raw,,,,,,,0,0,,,\n";
    install_.Write(kTable, table_.toStdString());
    manager_->InitConfigFileParser();
    QDir(root_.path()).mkdir("save");
  }

  static QByteArray ShippedTable() {
    QFile file(kTable);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
  }
  /// A folder whose URL needs escapes.
  QString Folder(const QString& name = "Löge, 1 #2") const {
    QDir(root_.path()).mkpath("save/" + name);
    return root_.path() + "/save/" + name;
  }
  /// Names and sizes of everything below the folder, hidden files too, with digits as "0".
  QStringList Saved() const {
    QStringList found;
    QDirIterator files(root_.path() + "/save", QDir::Files | QDir::Hidden,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
      const QFileInfo file(files.next());
      found << file.fileName().replace(QRegularExpression("[0-9]"), "0") + ' ' +
                   QString::number(file.size());
    }
    found.sort();
    return found;
  }
  void Forget() {
    QDir(root_.path() + "/save").removeRecursively();
    QDir(root_.path()).mkdir("save");
    errors_.clear();
    successes_.clear();
  }
  static VirtualLidarProcess* Start(QStringList arguments, int log_size = kLogSize) {
    arguments << "--log-size" << QString::number(log_size);
    return new VirtualLidarProcess(arguments);
  }

  QTemporaryDir root_;
  QByteArray table_;
};

TEST_F(ManagerDownloadsTest, SavesALogAndSaysWhatBecameOfIt) {
  const QStringList offered = {"Event Log", "Fault Memory", "Config File", "Set Only"};
  EXPECT_EQ(manager_->logRepeaterModel(), QVariantList(offered.begin(), offered.end()));
  EXPECT_TRUE(WaitFor([&] { return !LogLines("ERROR: ").filter("\"Missing\"").isEmpty(); }));

  const VirtualLidarProcess lidar({"--log-size", QString::number(kLogSize)});
  ASSERT_TRUE(ConnectTo(lidar));
  const QString unknown = "%1 download error: Can not find %1 ";
  const std::pair<QString, QString> cases[] = {
      {"Event Log", ""},
      {"Set Only", ""},
      {"Nothing", unknown.arg("Nothing") + "name"},
      {"Silent", unknown.arg("Silent") + "command"},
      {"Garbled", unknown.arg("Garbled") + "command"},
      {"Event Log", "Please connect to lidar first"},
  };
  for (const auto& [name, error] : cases) {
    SCOPED_TRACE((name + ' ' + error).toStdString());
    Forget();
    if (error.endsWith("first")) {
      manager_->Stop();
    }
    QSignalSpy flag(manager_.get(), &TevronManager::isDownloadLogChanged);
    QSignalSpy finished(manager_.get(), &TevronManager::downloadFinished);
    const bool is_good = error.isEmpty();
    EXPECT_EQ(manager_->DownloadLog(QUrl::fromLocalFile(Folder()), name), is_good ? 0 : -1);
    EXPECT_EQ(TakeErrors().join(""), error);
    EXPECT_EQ(successes_.join(""), is_good ? name + " download successful." : "");
    EXPECT_EQ(Saved().join(""), is_good ? name + "_00000000-000000.bin 1000" : "");
    EXPECT_EQ(flag.count(), 2);
    EXPECT_EQ(finished.count(), 1);
    EXPECT_FALSE(manager_->isDownloadLog());
  }
}

TEST_F(ManagerDownloadsTest, SavesTheOperationLogInFourParts) {
  const QString size = "0000_00_00_00_00_00.bin 1000";
  const QStringList all = {"asw_error_" + size, "asw_warning_" + size, "bsw_error_" + size,
                           "bsw_warning_" + size};
  const QStringList first = {all[3]};
  const QString done = "Operation log download successful.";
  const QString failed = "Operation log download failed.";
  const QString error = "Operation Log download error: Can not find Operation Log ";
  const QByteArray row = "Operation Log,0,raw,,,,,,,0,0,,,\n";
  // The row stands in the place of the table's.
  const std::tuple<QString, QByteArray, QString, QString, QStringList> cases[] = {
      {"delay=100@0xFF#2-2", "", Folder(), done, all},
      {"drop@0xFF#2-2", "", Folder(), failed, first},
      {"return-code=4@0xFF#2-2", "", Folder(), failed, {all[0], all[2], all[3]}},
      {"drop@0xFF", "30,1,0x6B,,,Other" + row, Folder(), error + "name", {}},
      {"drop@0xFF", "30,1,,,," + row, Folder(), error + "command", {}},
  };
  for (const auto& [fault, other_row, folder, message, saved] : cases) {
    SCOPED_TRACE((fault + ' ' + message).toStdString());
    Forget();
    if (!other_row.isEmpty()) {
      QByteArray other = table_;
      install_.Write(kTable, other.replace("20,1,0x5A0301,,," + row, other_row).toStdString());
      manager_->InitConfigFileParser();
    }
    const std::unique_ptr<VirtualLidarProcess> lidar(Start({"--fault", fault}));
    ASSERT_TRUE(ConnectTo(*lidar));
    const QUrl url = QUrl::fromLocalFile(folder);
    QSignalSpy finished(manager_.get(), &TevronManager::downloadOperationLogFinished);
    const bool begun = manager_->DownloadOperationLog(url) == 0;
    EXPECT_EQ(manager_->isDownloadLog(), begun);
    if (begun) {
      // Whoever comes meanwhile has to wait, and hears nothing of the other's end.
      manager_->Run(0);
      manager_->DownloadOperationLogThread(url);
      manager_->DownloadLog(url, "Event Log");
      const QString wait = "Please wait for the operation log to download completely";
      EXPECT_EQ(TakeErrors(), QStringList({wait, wait, wait}));
    }
    ASSERT_TRUE(WaitFor([&] { return !finished.isEmpty(); }));
    EXPECT_EQ(finished.count(), 1);
    EXPECT_EQ(finished[0][0].toBool(), message == done);
    EXPECT_EQ(TakeErrors() + successes_, QStringList(message));
    EXPECT_EQ(Saved(), saved);
    EXPECT_FALSE(manager_->isDownloadLog());
    manager_->Stop();
  }
}

TEST_F(ManagerDownloadsTest, ADownloadEndsWithWhatItNeedsOrWhenItIsNotWanted) {
  const QStringList dripping = {"--fault", "drip=100@0xFF"};
  const QStringList failed = {"Operation log download failed."};
  const std::pair<std::function<void()>, QStringList> cases[] = {
      {[this] { manager_->CancelDownload(); }, {}},
      {[this] { manager_->Stop(); }, failed},
      {[this] { manager_->InitConfigFileParser("Osprey"); }, failed},
  };
  const auto begin = [this](const VirtualLidarProcess& lidar) {
    ASSERT_TRUE(ConnectTo(lidar));
    ASSERT_EQ(manager_->DownloadOperationLog(QUrl::fromLocalFile(Folder())), 0);
    ASSERT_TRUE(WaitFor([this] { return manager_->DownloadNow().received > 0; }));
    EXPECT_EQ(manager_->DownloadNow().announced, kLongLogSize);
    EXPECT_EQ(manager_->DownloadNow().part_count, 4);
  };
  for (const auto& [end, errors] : cases) {
    Forget();
    const std::unique_ptr<VirtualLidarProcess> lidar(Start(dripping, kLongLogSize));
    begin(*lidar);
    QSignalSpy finished(manager_.get(), &TevronManager::downloadOperationLogFinished);
    end();
    ASSERT_TRUE(WaitFor([&] { return !finished.isEmpty(); }));
    EXPECT_FALSE(finished[0][0].toBool());
    EXPECT_EQ(TakeErrors(), errors);
    EXPECT_FALSE(manager_->isDownloadLog());
    EXPECT_FALSE(manager_->DownloadNow().running);
    EXPECT_EQ(Saved(), QStringList());
    manager_->InitConfigFileParser();
  }
  const std::unique_ptr<VirtualLidarProcess> lidar(Start(dripping, kLongLogSize));
  begin(*lidar);
  const auto start = std::chrono::steady_clock::now();
  manager_.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(ManagerDownloadsTest, TheConfigurationGoesWhereTheLastDownloadWent) {
  ASSERT_EQ(SaveDownloadFolder(SettingsFilePath(), Folder()), "");
  const std::unique_ptr<VirtualLidarProcess> lidar(Start({}));
  ASSERT_TRUE(ConnectTo(*lidar));
  EXPECT_EQ(LoadDownloadFolder(SettingsFilePath()), Folder());
  manager_->StartGetConfigFile();
  EXPECT_EQ(successes_, QStringList("Config File download successful."));
  EXPECT_EQ(Saved(), QStringList("Config File_00000000-000000.bin 1000"));
}

TEST_F(ManagerDownloadsTest, SavesTheCalibrationOfALumo) {
  const VirtualLidarProcess lidar({"--model", "Lumo-CMX", "--fault", "return-code=4@0x54#2-2"});
  manager_->InitConfigFileParser("Lumo-CMX");
  EXPECT_EQ(manager_->LumoGetCorrection("anywhere"), -1);
  manager_->setSerialPort485(lidar.SerialPort());
  ASSERT_TRUE(Connect());
  EXPECT_EQ(manager_->LumoGetCorrection(""), -1);
  EXPECT_EQ(manager_->LumoGetCorrection(Folder()), 0);
  EXPECT_EQ(manager_->LumoGetCorrection(Folder() + "/lumo.bin"), 4);
  EXPECT_EQ(manager_->LumoGetCorrection(Folder() + "/gone/lumo.bin"), -1);
  EXPECT_EQ(TakeErrors(),
            QStringList({"lidar is not connected, or lidar is upgrade",
                         "LumoGetCorrection: empty local path",
                         "get calibration error, ret:lidar return code 4 (not allowed now)",
                         "create calibration file fail, save correction file error"}));
  EXPECT_EQ(Saved(), QStringList("calibration_00000000-000000.bin 74"));
  QFile file(QDir(Folder()).entryInfoList(QDir::Files)[0].filePath());
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  QByteArray bytes = file.readAll();
  EXPECT_TRUE(kavel::lidar::IsCalibration({bytes.begin(), bytes.end()}));
  bytes[20] = static_cast<char>(bytes[20] ^ 1);
  EXPECT_FALSE(kavel::lidar::IsCalibration({bytes.begin(), bytes.end()}));
}

}  // namespace
