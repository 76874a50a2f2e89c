#include "settings_files/snapshots.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QStandardPaths>
#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "connection/path_part.h"
#include "files/whole_file.h"

namespace {

// A name is the time in UTC, so that names sort as times do, the reason and the model:
// 20261122T073000123Z_apply_Orca.tevron.json
constexpr char kTimeFormat[] = "yyyyMMdd'T'HHmmsszzz'Z'";
constexpr char kSeparator[] = "_";

struct ReasonName {
  SnapshotReason reason;
  const char* name;
  const char* text;
};
constexpr ReasonName kReasons[] = {{SnapshotReason::kUpgrade, "upgrade", "before upgrade"},
                                   {SnapshotReason::kReset, "reset", "before reset"},
                                   {SnapshotReason::kApply, "apply", "before apply"}};

const ReasonName& NameOf(SnapshotReason reason) {
  return *std::find_if(std::begin(kReasons), std::end(kReasons),
                       [&](const ReasonName& each) { return each.reason == reason; });
}

/// Not by way of the local time, which lacks an hour in spring.
QDateTime TimeIn(const QString& text) {
  const QDateTime time(QDate::fromString(text.left(8), QStringLiteral("yyyyMMdd")),
                       QTime::fromString(text.mid(9, 9), QStringLiteral("HHmmsszzz")), Qt::UTC);
  return time.toLocalTime();
}

std::optional<Snapshot> SnapshotAt(const QString& folder, const QString& file) {
  const QString name = file.chopped(static_cast<int>(sizeof kSettingsSuffix) - 1);
  const QString reason = name.section(kSeparator, 1, 1);
  const auto known =
      std::find_if(std::begin(kReasons), std::end(kReasons),
                   [&](const ReasonName& each) { return reason == QLatin1String(each.name); });
  Snapshot snapshot;
  snapshot.time = TimeIn(name.section(kSeparator, 0, 0));
  if (known == std::end(kReasons) || !snapshot.time.isValid()) {
    return std::nullopt;
  }
  snapshot.path = folder + '/' + file;
  snapshot.model = TextOfPathPart(name.section(kSeparator, 2, 2));
  snapshot.serial_number = TextOfPathPart(QDir(folder).dirName());
  snapshot.reason = known->reason;
  return snapshot;
}

/// The newest first.
std::vector<Snapshot> In(const QString& folder) {
  const QStringList files = QDir(folder).entryList({QString("*") + kSettingsSuffix}, QDir::Files,
                                                   QDir::Name | QDir::Reversed);
  std::vector<Snapshot> found;
  for (const QString& file : files) {
    if (std::optional<Snapshot> snapshot = SnapshotAt(folder, file)) {
      found.push_back(std::move(*snapshot));
    }
  }
  return found;
}

}  // namespace

const char* TextOf(SnapshotReason reason) { return NameOf(reason).text; }

QString Snapshots::UsualFolder() {
  // Not the folder of one application: the window and the command line share them.
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
         "/Tevron/snapshots";
}

QString Snapshots::FolderOf(const std::string& serial_number) const {
  return folder_ + '/' + PathPartOf(serial_number);
}

std::string Snapshots::Keep(const SettingsFile& settings, SnapshotReason reason) const {
  const QString folder = FolderOf(settings.serial_number);
  std::string error = MakeFolder(folder.toStdString());
  if (!error.empty()) {
    return PathText(folder.toStdString()) + ": " + error;
  }
  QDateTime time = QDateTime::currentDateTimeUtc();
  QString path;
  do {
    path = folder + '/' + QLocale::c().toString(time, kTimeFormat) + kSeparator +
           NameOf(reason).name + kSeparator + PathPartOf(settings.model) + kSettingsSuffix;
    time = time.addMSecs(1);
  } while (QFile::exists(path));
  error = SaveSettings(path, settings);
  if (!error.empty()) {
    return error;
  }
  const std::vector<Snapshot> kept = In(folder);
  for (size_t i = kKept; i < kept.size(); ++i) {
    QFile::remove(kept[i].path);
  }
  return "";
}

std::vector<Snapshot> Snapshots::Of(const std::string& serial_number) const {
  return In(FolderOf(serial_number));
}

std::vector<Snapshot> Snapshots::All() const {
  std::vector<Snapshot> all;
  for (const QString& folder : QDir(folder_).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
    std::vector<Snapshot> some = In(folder_ + '/' + folder);
    all.insert(all.end(), std::make_move_iterator(some.begin()),
               std::make_move_iterator(some.end()));
  }
  std::stable_sort(all.begin(), all.end(), [](const Snapshot& one, const Snapshot& other) {
    return one.time > other.time;
  });
  return all;
}
