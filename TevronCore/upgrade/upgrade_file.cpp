#include "upgrade/upgrade_file.h"

#include <QFile>
#include <QFileInfo>
#include <new>

#include "upgrade/upgrade_package.h"

namespace {

/// Why the file cannot be read; "" when it can. A pipe or a device would hold the reader up.
std::string ObstacleOf(const QUrl& url, const QFileInfo& info) {
  if (!url.isLocalFile()) {
    return "Only a file of this computer can be sent to the lidar.";
  }
  if (!info.exists()) {
    return "The file does not exist.";
  }
  return info.isFile() ? "" : "This is no regular file.";
}

std::string FaultOf(uint64_t size_bytes) {
  if (size_bytes == 0) {
    return "The file is empty.";
  }
  return size_bytes > kMaxUpgradeFileSize ? "The file is larger than 64 MiB." : "";
}

void ReadInto(QFile& source, UpgradeFile* file) {
  const auto size = static_cast<uint64_t>(source.size());
  file->size_bytes = size;
  file->problem = FaultOf(size);
  if (!file->problem.empty()) {
    return;
  }
  try {
    file->bytes.resize(size);
  } catch (const std::bad_alloc&) {
    file->problem = "There is no memory for the file.";
    return;
  }
  const qint64 read = source.read(reinterpret_cast<char*>(file->bytes.data()), source.size());
  if (read != static_cast<qint64>(size)) {
    file->problem = "The file could not be read whole.";
    file->bytes.clear();
  }
}

void InspectPackage(const std::vector<uint8_t>& bytes, UpgradeFileFacts* facts) {
  UpgradePackageHeader header;
  std::string reason = "It is shorter than a package's header";
  const auto keep = [&reason](const std::string& text) { reason = text; };
  if (!ParseUpgradePackage(bytes, header, keep)) {
    facts->problem = "This is no upgrade package: " + reason + ".";
    return;
  }
  for (size_t i = 0; i < kUpgradeComponents; ++i) {
    if (header.components[i].present) {
      facts->components.push_back(
          {UpgradeComponentName(static_cast<UpgradeComponentIndex>(i)), header.components[i].size});
    }
  }
}

}  // namespace

UpgradeFile ReadUpgradeFile(const QUrl& url) {
  const QFileInfo info(url.toLocalFile());
  UpgradeFile file;
  file.name = info.fileName().toStdString();
  file.problem = ObstacleOf(url, info);
  if (!file.problem.empty()) {
    return file;
  }
  QFile source(info.filePath());
  file.opened = source.open(QIODevice::ReadOnly);
  if (file.opened) {
    ReadInto(source, &file);
  } else {
    file.problem = "The file cannot be opened: " + source.errorString().toStdString() + ".";
  }
  return file;
}

UpgradeFileFacts InspectUpgradeFile(const QUrl& url, bool package) {
  const QFileInfo info(url.toLocalFile());
  UpgradeFileFacts facts;
  facts.name = info.fileName().toStdString();
  facts.problem = ObstacleOf(url, info);
  if (!facts.problem.empty()) {
    return facts;
  }
  facts.size_bytes = static_cast<uint64_t>(info.size());
  facts.problem = info.isReadable() ? FaultOf(facts.size_bytes) : "The file may not be read.";
  if (!package || !facts.problem.empty()) {
    return facts;
  }
  const UpgradeFile file = ReadUpgradeFile(url);
  facts.problem = file.problem;
  if (facts.problem.empty()) {
    InspectPackage(file.bytes, &facts);
  }
  return facts;
}
