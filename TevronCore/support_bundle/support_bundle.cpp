#include "support_bundle/support_bundle.h"

#include <QCoreApplication>
#include <QSysInfo>
#include <exception>

#include "files/whole_file.h"
#include "support_bundle/table_sums.h"
#include "support_bundle/zip_bytes.h"

namespace {

// Settings, two logs and the lists: more comes of no lidar and no folder of tables.
constexpr size_t kMaxBundle = size_t{64} * 1024 * 1024;

BundleEntry Entry(const char* name, const char* what, std::string bytes, const char* without) {
  const bool is_empty = bytes.empty();
  return {name, what, is_empty ? without : "", std::move(bytes)};
}

std::string VersionLines(const TextCleaner& cleaner) {
  const QString text = "Tevron " + QCoreApplication::applicationVersion() + "\nQt " + qVersion() +
                       ", built with " + QT_VERSION_STR + "\n" + QSysInfo::prettyProductName() +
                       "\n" + QSysInfo::kernelType() + ' ' + QSysInfo::kernelVersion() + ", " +
                       QSysInfo::currentCpuArchitecture() + '\n';
  return cleaner.Clean(text.toStdString());
}

std::string SettingsBytes(const BundleSources& sources, const TextCleaner& cleaner) {
  return sources.settings ? cleaner.WithoutKeys(SettingsJson(*sources.settings).toStdString()) : "";
}

std::string NewestLines(const std::string& text) {
  const size_t cut =
      text.size() <= kMaxBundledLog ? 0 : text.find('\n', text.size() - kMaxBundledLog);
  return cut == std::string::npos ? "" : text.substr(cut);
}

/// Who opens the bundle reads there what was on the screen before it was written.
BundleEntry ContentsOf(const std::vector<BundleEntry>& entries) {
  std::string lines;
  for (const BundleEntry& entry : entries) {
    lines += entry.name + ": " + entry.what +
             (entry.left_out.empty() ? ", " + std::to_string(entry.size()) + " bytes"
                                     : "; left out: " + entry.left_out) +
             '\n';
  }
  return {"contents.txt", "this list", "", lines};
}

}  // namespace

std::vector<BundleEntry> ListBundle(const BundleSources& sources) {
  const TextCleaner cleaner(sources.config, sources.names);
  std::string log = cleaner.Clean(NewestLog(sources.device_log, kMaxBundledLog));
  std::string fault = sources.last_fault.empty() ? LastErrorIn(log) : sources.last_fault + '\n';
  std::vector<BundleEntry> entries;
  BundleEntry settings = Entry("settings.tevron.json", "the lidar's settings",
                               SettingsBytes(sources, cleaner), "no lidar is connected");
  if (!sources.settings && !sources.no_settings.empty()) {
    settings.left_out = cleaner.Clean(sources.no_settings);
  }
  entries.push_back(std::move(settings));
  entries.push_back(Entry("device.log", "the last lines of the log of exchanges with lidars",
                          std::move(log), "there is no log"));
  if (!sources.screen_log.empty()) {
    entries.push_back(Entry("window.log", "the last lines of the log on the screen",
                            cleaner.Clean(NewestLines(sources.screen_log)), ""));
  }
  entries.push_back(Entry("versions.txt", "versions of the program, Qt and the system",
                          VersionLines(cleaner), ""));
  entries.push_back(Entry("tables.sha256", "checksums of the tables, none of keys",
                          TableSums(sources.config, cleaner), "there are no tables"));
  entries.push_back(Entry("last-fault.txt", "what went wrong last, in words", cleaner.Clean(fault),
                          "nothing is known to have gone wrong"));
  entries.push_back(ContentsOf(entries));
  return entries;
}

std::string WriteBundle(const QString& path, const std::vector<BundleEntry>& entries) {
  const std::string name = PathText(path.toStdString()) + ": ";
  std::vector<ZipMember> members;
  size_t size = 0;
  for (const BundleEntry& entry : entries) {
    if (entry.left_out.empty()) {
      members.push_back({entry.name, entry.bytes});
      size += entry.size();
    }
  }
  if (size > kMaxBundle) {
    return name + "the bundle would be larger than " + std::to_string(kMaxBundle) + " bytes";
  }
  try {
    const FileOutcome outcome = WriteWholeFile(path.toStdString(), BytesOf(ZipBytes(members)));
    return outcome.written ? "" : name + outcome.reason;
  } catch (const std::exception& problem) {
    return name + problem.what();
  }
}
