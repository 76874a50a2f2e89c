#include "support/virtual_lidar_process.h"

#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <stdexcept>

namespace {

QString LastMatch(const QString& pattern, const QString& text) {
  const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
  QString last;
  for (auto matches = expression.globalMatch(text); matches.hasNext();) {
    last = matches.next().captured(1);
  }
  return last;
}

}  // namespace

VirtualLidarProcess::VirtualLidarProcess(const QStringList& arguments, quint16 port) {
  WriteFaults({});
  QStringList all = arguments;
  all << "--config"
      << "./Config"
      << "--dump" << folder_.filePath("state.json") << "--fault-file" << folder_.filePath("faults")
      << "--port" << QString::number(port);
  process_.Start(QStringLiteral(TEVRON_VIRTUAL_LIDAR), all);
  // Its last line before the first request.
  const bool ready = process_.Prints("listening on ");
  if (!ready) {
    throw std::runtime_error("the virtual lidar is not ready: " + Output().toStdString());
  }
  port_ = LastMatch("^listening on 127\\.0\\.0\\.1:(\\d+)$", Output()).toUShort();
}

void VirtualLidarProcess::WriteFaults(const QStringList& faults) {
  QFile file(folder_.filePath("faults"));
  if (!file.open(QIODevice::WriteOnly) || file.write(faults.join('\n').toUtf8()) < 0) {
    throw std::runtime_error("cannot write the virtual lidar's faults");
  }
}

void VirtualLidarProcess::SetFaults(const QStringList& faults) {
  WriteFaults(faults);
  const QString taken = "read the faults in ";
  const int before = Output().count(taken);
  process_.Signal(SIGHUP);
  while (Output().count(taken) == before) {
    if (!process_.PrintsMore()) {
      throw std::runtime_error("the virtual lidar takes no faults: " + Output().toStdString());
    }
  }
}

void VirtualLidarProcess::MakeFirmware(const QString& model, const QString& version,
                                       const QString& file, int kib) {
  ChildProcess maker(QStringLiteral(TEVRON_VIRTUAL_LIDAR),
                     {"--config", "./Config", "--model", model, "--make-firmware", version, file,
                      "--firmware-size", QString::number(kib)});
  if (maker.ExitCode() != 0) {
    throw std::runtime_error("no firmware was made: " + maker.Output().toStdString());
  }
}

void VirtualLidarProcess::MakeTlsFiles(const QString& folder) {
  ChildProcess maker(QStringLiteral(TEVRON_VIRTUAL_LIDAR), {"--tls-make", folder});
  if (maker.ExitCode() != 0) {
    throw std::runtime_error("no files for TLS were made: " + maker.Output().toStdString());
  }
}

QString VirtualLidarProcess::SerialPort(const QString& kind) const {
  return LastMatch("^serial port (?:" + kind + " )?(/\\S+)$", Output());
}

QJsonObject VirtualLidarProcess::State() const {
  QFile file(folder_.filePath("state.json"));
  if (!file.open(QIODevice::ReadOnly)) {
    return {};
  }
  return QJsonDocument::fromJson(file.readAll()).object();
}

QString VirtualLidarProcess::Held(const QString& name, const QString& form) const {
  const QJsonObject variables = State()["variables"].toObject();
  return variables[name][form].toString();
}
