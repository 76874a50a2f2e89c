#include "support_bundle/device_log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>
#include <string_view>

namespace {

constexpr size_t kTimeLength = 23;

/// The end of a file, from the first whole line on.
std::string TailOf(const QString& path, int64_t most_bytes) {
  QFile file(path);
  // A pipe would keep its reader waiting for ever.
  if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
    return {};
  }
  const bool is_whole = file.size() <= most_bytes;
  if (!is_whole && !file.seek(file.size() - most_bytes)) {
    return {};
  }
  const std::string tail = file.read(most_bytes).toStdString();
  const size_t cut = is_whole ? 0 : tail.find('\n');  // half a line may hold half a name
  return cut == std::string::npos ? "" : tail.substr(is_whole ? 0 : cut + 1);
}

}  // namespace

QString DeviceLogPath() {
  const QDir folder(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation));
  return folder.filePath(QStringLiteral("logs/device.log"));
}

std::string NewestLog(const QString& path, int64_t most_bytes) {
  const std::string newest = TailOf(path, most_bytes);
  const auto size = static_cast<int64_t>(newest.size());
  const QFileInfo file(path);
  const QString before = file.dir().filePath(file.completeBaseName() + ".1." + file.suffix());
  return file.size() < most_bytes ? TailOf(before, most_bytes - size) + newest : newest;
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
