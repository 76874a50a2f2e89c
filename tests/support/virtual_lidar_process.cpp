#include "support/virtual_lidar_process.h"

#include <signal.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <stdexcept>

namespace {

constexpr int kReadyTimeoutMs = 20000;

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
  process_.setProcessChannelMode(QProcess::MergedChannels);
  process_.start(QStringLiteral(TEVRON_VIRTUAL_LIDAR), all);
  if (!ReadUntilReady()) {
    const QString said = Output();
    Kill();
    throw std::runtime_error("the virtual lidar is not ready: " + said.toStdString());
  }
}

VirtualLidarProcess::~VirtualLidarProcess() { Kill(); }

bool VirtualLidarProcess::ReadUntilReady() {
  const QDeadlineTimer deadline(kReadyTimeoutMs);
  while (!deadline.hasExpired()) {
    // Its last line before the first request.
    port_ = FirstMatch("^listening on 127\\.0\\.0\\.1:(\\d+)$", Output()).toUShort();
    if (port_ != 0) {
      return true;
    }
    if (!process_.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
      return false;
    }
  }
  return false;
}

QString VirtualLidarProcess::SerialPort(const QString& kind) const {
  const QString pair = FirstMatch("^serial port 232 (\\S+)$", output_);
  if (pair.isEmpty()) {
    return FirstMatch("^serial port (/\\S+)$", output_);
  }
  return kind == "232" ? pair : FirstMatch("^serial port 485 (\\S+)$", output_);
}

QString VirtualLidarProcess::Output() {
  output_ += QString::fromUtf8(process_.readAll());
  return output_;
}

QJsonObject VirtualLidarProcess::Variable(const QString& name) const {
  QFile file(folder_.filePath("state.json"));
  if (!file.open(QIODevice::ReadOnly)) {
    return {};
  }
  const QJsonObject state = QJsonDocument::fromJson(file.readAll()).object();
  return state.value("variables").toObject().value(name).toObject();
}

void VirtualLidarProcess::Kill() {
  process_.kill();
  process_.waitForFinished();
}

void VirtualLidarProcess::Freeze() {
  if (process_.state() == QProcess::NotRunning) {
    return;
  }
  ::kill(static_cast<pid_t>(process_.processId()), SIGSTOP);
}
