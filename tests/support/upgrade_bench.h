#pragma once

#include <gtest/gtest.h>

#include <QByteArray>
#include <QFile>
#include <QObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QUrl>

#include "firmware_upgrade.h"
#include "support/qt_wait_for.h"
#include "support/recorded_report.h"
#include "support/virtual_lidar_process.h"

/// Firmware for the virtual lidar, made on the spot.
class Firmware {
 public:
  QUrl For(const QString& model, const QString& version, int kib = 8) const {
    const QString path = folder_.filePath(model + version + ".patch");
    VirtualLidarProcess::MakeFirmware(model, version, path, kib);
    return QUrl::fromLocalFile(path);
  }
  QUrl Of(const QByteArray& bytes) const {
    QFile file(folder_.filePath("other.patch"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    return QUrl::fromLocalFile(file.fileName());
  }

 private:
  QTemporaryDir folder_;
};

/// A session with an upgrade beside it, as a program without screens has them.
class UpgradeBench {
 public:
  /// Connects to the virtual lidar at once. `waits` are those that a test can afford.
  UpgradeBench(const QString& model, const VirtualLidarProcess& lidar, const UpgradeWaits& waits)
      : session({post_, report_, true, std::make_shared<ByteFlow>(report_), Handlers()}),
        upgrade({post_, report_, session,
                 [this] {
                   report_.LogLine(session.state().upgrading ? "begins" : "ends", LogType::kCmx);
                 },
                 waits}) {
    session.SetModel(LoadLidarModel(ConfigFolder("./Config"), model.toStdString()));
    ConnectionSettings settings;
    settings.lidar_ip = "127.0.0.1";
    settings.command_port = std::to_string(lidar.port());
    settings.command_baud_rate_bps = 921600;
    settings.serial_port_485 = lidar.SerialPort("485").toStdString();
    settings.serial_port_232 = lidar.SerialPort("232").toStdString();
    EXPECT_TRUE(session.Connect(settings));
    EXPECT_TRUE(WaitFor([this] { return !session.connecting() && !session.reading_facts(); }));
    EXPECT_TRUE(session.state().connected);
    report_.Take();
  }

  int Start(const QUrl& file, bool as_package) {
    return as_package ? upgrade.StartPackage(file) : upgrade.Start(file);
  }
  bool Ends() {
    return WaitFor([this] { return !upgrade.Now().running; });
  }
  /// The boxes, the begin and the end of the transfer, and the lines that begin with `also`.
  std::vector<std::string> Told(const QString& also = "CMX: [be]") {
    std::vector<std::string> told;
    for (const std::string& line : report_.Take()) {
      const QRegularExpression wanted("^(error|success|CMX: begins|CMX: ends|" + also + ")");
      if (wanted.match(QString::fromStdString(line)).hasMatch()) {
        told.push_back(line.rfind("CMX: ", 0) == 0 ? line.substr(5) : line);
      }
    }
    return told;
  }

 private:
  static LidarSession::Handlers Handlers() {
    const auto nothing = [] {};
    return {nothing, nothing, nothing, nothing, nothing, nothing};
  }

  QObject context_;
  const Post post_ = [this](std::function<void()> task) {
    QMetaObject::invokeMethod(&context_, std::move(task), Qt::QueuedConnection);
  };
  RecordedReport report_;

 public:
  LidarSession session;
  FirmwareUpgrade upgrade;
};
