#pragma once

#include <QDateTime>
#include <QString>
#include <string>
#include <utility>
#include <vector>

#include "settings_files/settings_file.h"

/// What a snapshot was taken before.
enum class SnapshotReason { kUpgrade, kReset, kApply };

/// "before upgrade", "before reset" or "before apply".
const char* TextOf(SnapshotReason reason);

/// One snapshot as its name tells it.
struct Snapshot {
  QString path;
  std::string model;
  std::string serial_number;  ///< "" for a lidar that did not say
  QDateTime time;             ///< local
  SnapshotReason reason = SnapshotReason::kApply;
};

/// Settings files that are kept before something is done to a lidar: a folder for each serial
/// number, in it a file for each time. Holds nothing itself; any thread, and several programs may
/// use the same folder.
class Snapshots {
 public:
  /// Of one lidar; the oldest go.
  static constexpr int kKept = 50;

  /// Where the programs of this system keep them for this user.
  static QString UsualFolder();

  explicit Snapshots(QString folder = UsualFolder()) : folder_(std::move(folder)) {}

  /// Keeps the settings, under the time of now. Returns "", or why they could not be kept: a
  /// sentence with the place.
  std::string Keep(const SettingsFile& settings, SnapshotReason reason) const;

  /// What is kept of all lidars, the newest first. Files that are no snapshots are passed over;
  /// whether one can still be read LoadSettings tells.
  std::vector<Snapshot> All() const;
  /// The same of one lidar.
  std::vector<Snapshot> Of(const std::string& serial_number) const;

 private:
  QString FolderOf(const std::string& serial_number) const;

  const QString folder_;
};
