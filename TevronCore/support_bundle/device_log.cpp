#include "support_bundle/device_log.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <string_view>

#include "Log/logger.h"
#include "files/whole_file.h"

namespace {

constexpr size_t kTimeLength = 23;

/// A log grows a little beyond the size at which the next one is begun.
constexpr size_t kLargestLog = 2 * kavel::lidar::Logger::kMaxFileBytes;

std::string LogIn(const QString& path) {
  std::string log;
  ReadWholeFile(path.toStdString(), kLargestLog, &log);
  return log;
}

}  // namespace

QString DeviceLogPath() {
  const QDir folder(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation));
  return folder.filePath(QStringLiteral("logs/device.log"));
}

std::string NewestLog(const QString& path, size_t most_bytes) {
  std::string log = LogIn(path);
  if (log.size() < most_bytes) {
    const QFileInfo file(path);
    log.insert(0, LogIn(file.dir().filePath(file.completeBaseName() + ".1." + file.suffix())));
  }
  if (log.size() <= most_bytes) {
    return log;
  }
  const size_t cut = log.find('\n', log.size() - most_bytes);  // half a line may hold half a name
  return cut == std::string::npos ? "" : log.substr(cut + 1);
}

std::string LastErrorIn(const std::string& log) {
  std::string_view rest(log);
  while (!rest.empty()) {
    rest.remove_suffix(rest.back() == '\n' ? 1 : 0);
    const size_t begin = rest.rfind('\n') + 1;
    const std::string_view line = rest.substr(begin);
    const size_t place = line.find(" error [");
    const size_t text = place == std::string_view::npos ? place : line.find(" - ", place);
    if (text != std::string_view::npos && place > kTimeLength) {
      return std::string(line.substr(0, kTimeLength)) + ": " + std::string(line.substr(text + 3));
    }
    rest = rest.substr(0, begin);
  }
  return {};
}
