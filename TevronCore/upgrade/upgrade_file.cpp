#include "upgrade/upgrade_file.h"

#include <optional>

#include "files/whole_file.h"
#include "upgrade/upgrade_package.h"

namespace {

std::string PathOf(const QUrl& url) { return url.toLocalFile().toStdString(); }

/// A sentence; "" for a file that can be used.
std::string ProblemOf(const std::string& reason, uint64_t size_bytes) {
  if (!reason.empty()) {
    return "The file cannot be used: " + reason + '.';
  }
  return size_bytes == 0 ? "The file is empty." : "";
}

/// All that is known of a file before it is read.
UpgradeFile LookAt(const QUrl& url) {
  UpgradeFile file;
  file.name = PathText(url.fileName().toStdString());
  if (!url.isLocalFile()) {
    file.problem = "Only a file of this computer can be sent to the lidar.";
    return file;
  }
  std::optional<uint64_t> size;
  const std::string reason = LookAtFile(PathOf(url), kMaxUpgradeFileSize, &size);
  file.opened = size.has_value();
  file.size_bytes = size.value_or(0);
  file.problem = ProblemOf(reason, file.size_bytes);
  return file;
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
  UpgradeFile file = LookAt(url);
  if (!file.problem.empty()) {
    return file;
  }
  const std::string reason = ReadWholeFile(PathOf(url), kMaxUpgradeFileSize, &file.bytes);
  file.size_bytes = reason.empty() ? file.bytes.size() : file.size_bytes;
  file.problem = ProblemOf(reason, file.size_bytes);
  return file;
}

UpgradeFileFacts InspectUpgradeFile(const QUrl& url, bool package) {
  const UpgradeFile file = package ? ReadUpgradeFile(url) : LookAt(url);
  UpgradeFileFacts facts;
  facts.name = file.name;
  facts.size_bytes = file.size_bytes;
  facts.problem = file.problem;
  if (package && facts.problem.empty()) {
    InspectPackage(file.bytes, &facts);
  }
  return facts;
}
