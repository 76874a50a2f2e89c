#include "support/virtual_lidar_process.h"

#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <stdexcept>

namespace {

QString FirstMatch(const QString& pattern, const QString& text) {
  const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
  return expression.match(text).captured(1);
}

}  // namespace

VirtualLidarProcess::VirtualLidarProcess(const QStringList& arguments, quint16 port) {
  QStringList all = arguments;
  all << "--config"
      << "./Config"
      << "--dump" << folder_.filePath("state.json") << "--port" << QString::number(port);
  process_.Start(QStringLiteral(TEVRON_VIRTUAL_LIDAR), all);
  // Its last line before the first request.
  const bool ready = process_.Prints("listening on ");
  announced_ = Output();
  if (!ready) {
    throw std::runtime_error("the virtual lidar is not ready: " + announced_.toStdString());
  }
  port_ = FirstMatch("^listening on 127\\.0\\.0\\.1:(\\d+)$", announced_).toUShort();
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

QString VirtualLidarProcess::SerialPort(const QString& kind) const {
  return FirstMatch("^serial port (?:" + kind + " )?(/\\S+)$", announced_);
}

QString VirtualLidarProcess::Held(const QString& name, const QString& form) const {
  QFile file(folder_.filePath("state.json"));
  if (!file.open(QIODevice::ReadOnly)) {
    return {};
  }
  return QJsonDocument::fromJson(file.readAll())["variables"][name][form].toString();
}
