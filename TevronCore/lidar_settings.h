#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "connection/connection_job.h"
#include "lidar_session.h"
#include "session/post.h"
#include "session/user_report.h"
#include "settings_files/settings_comparison.h"
#include "settings_files/settings_status.h"
#include "settings_files/snapshots.h"
#include "upgrade/upgrade_work.h"

/// The settings of the session's lidar as files: saving them, comparing them, writing them, and
/// keeping snapshots of them. Needs no screen; the manager builds it beside its session, and so can
/// any other program.
///
/// All members are for the thread that owns the session, and return at once; the work is done on a
/// thread of its own, one task at a time, and ends with the connection that it uses. A task that
/// cannot begin, or fails, is told as an error; what it brought stands in Now(). While settings are
/// written, state().applying of the session is set, and nothing else writes to the lidar. What the
/// user has typed and not saved is neither written nor dropped.
class LidarSettings : public QObject {
  Q_OBJECT

 public:
  struct SetUp {
    Post post;
    UserReport& report;  ///< has to outlive the object and what was posted, as the session has to
    LidarSession& session;
    std::function<void()> values_read;  ///< values of the model's table may be others now
  };

  explicit LidarSettings(SetUp set_up);
  /// Ends everything without a word, at most 1.5 s later whatever the lidar does; a connection that
  /// is in use is closed for that.
  ~LidarSettings() override;
  LidarSettings(const LidarSettings&) = delete;
  LidarSettings& operator=(const LidarSettings&) = delete;

  /// Whether a task with the lidar may begin now; an error tells why not.
  bool MayUseLidar();
  /// Reads the lidar and writes the file. One that is there already stays as it is when the lidar
  /// could not be read to the end.
  void Save(const QString& path);
  /// Reads the lidar for somebody else: `then` is told what it holds, or nothing and why. It is not
  /// told when the task is cancelled.
  void Read(std::function<void(const std::optional<SettingsFile>& held, const std::string& problem)>
                then);
  /// Reads the file and the lidar, and shows the one on the left and the other on the right.
  void CompareWithLidar(const QString& path);
  /// Two files; needs no lidar.
  void CompareFiles(const QString& left, const QString& right);
  /// One file by itself.
  void Open(const QString& path);
  /// Writes the values that the left side of the shown comparison has for these variables. What
  /// became of each stands in its row then. The snapshot before it is the caller's to take. Refused
  /// when the lidar was connected anew since it was compared: it may be another one.
  void Apply(const std::vector<std::string>& names);
  /// Keeps what the lidar holds before something changes it. `then` is told "", or why there is no
  /// snapshot, which stands in the log as well. It is not told when the task is cancelled.
  void TakeSnapshot(SnapshotReason reason, std::function<void(const std::string& problem)> then);
  /// The same on the thread of an upgrade, which goes on in any case: the log alone says how that
  /// went. Ends when the upgrade's connection is closed.
  static void KeepBeforeUpgrade(const UpgradeWork& work);
  /// Ends the task soon: a reading brings nothing, and what was written stays written.
  void Cancel();

  /// The session has another model: what is shown belongs to the one before.
  void TakeModel();

  SettingsStatus Now() const;
  /// What was compared last; null before.
  const std::shared_ptr<const SettingsComparison>& comparison() const { return comparison_; }

 signals:
  /// A task has begun or ended: Now() and comparison(). Its progress announces nothing.
  void changed();

 private:
  struct Work;
  struct Progress;
  /// What a task leaves to be done on the owner's thread.
  using Ending = std::function<void()>;

  std::string Obstacle() const;
  bool MayBegin();
  std::function<bool()> Current() const;
  void Begin(SettingsTask task, const std::function<Ending(Work&)>& run);
  void Finish(const Ending& end);
  void Conclude(const std::string& outcome);
  void Fail(const std::string& reason);
  void NotDone(const std::string& what, const std::string& why);
  void Show(SettingsComparison comparison);
  static ApplyReport RunOn(const Work& work, const SettingsComparison& shown,
                           const std::set<std::string>& names);
  void TakeApplied(const ApplyReport& report);

  const SetUp set_up_;
  /// Counts the tasks. Shared with what is posted, which may outlive the object.
  const std::shared_ptr<int> number_ = std::make_shared<int>(0);
  std::shared_ptr<Progress> progress_;
  SettingsStatus shown_;
  std::shared_ptr<const SettingsComparison> comparison_;
  std::weak_ptr<Connection> compared_with_;  ///< of a comparison with a lidar
  std::unique_ptr<ConnectionJob> job_;
};
