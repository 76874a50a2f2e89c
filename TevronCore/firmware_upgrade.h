#pragma once

#include <QUrl>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "connection/connection_job.h"
#include "lidar_session.h"
#include "session/post.h"
#include "session/stop_signal.h"
#include "session/user_report.h"
#include "upgrade/upgrade_file.h"
#include "upgrade/upgrade_outcome.h"
#include "upgrade/upgrade_status.h"
#include "upgrade/upgrade_work.h"
#include "upgrade/version_reading.h"

/// One upgrade at a time, from the file to the version that the lidar runs afterwards: transfer,
/// restart, waiting for the lidar and connecting to it again, comparing versions. Needs no screen;
/// the manager builds it beside its session, and so can any other program.
///
/// All members are for the thread that owns the session; the work is done on a thread of its own.
/// state().upgrading of the session is set from the start until the transfer has ended, and what
/// follows then goes on beside everything else. An upgrade that is begun meanwhile takes the place
/// of what is left of the one before.
class FirmwareUpgrade {
 public:
  struct SetUp {
    Post post;
    UserReport& report;  ///< has to outlive the object and what was posted, as the session has to
    LidarSession& session;
    std::function<void()> upgrading_changed;  ///< state().upgrading of the session
    UpgradeWaits waits{};
    /// What has to be kept of the lidar before the first byte goes out, on the upgrade's thread;
    /// may be null. Has to end when the connection is closed.
    std::function<void(const UpgradeWork&)> snapshot = nullptr;
  };

  explicit FirmwareUpgrade(SetUp set_up);
  /// Ends everything without a word, at most 1.5 s later whatever the lidar does; a connection that
  /// is in use is closed for that. What the lidar makes of half an image is its own business.
  ~FirmwareUpgrade();
  FirmwareUpgrade(const FirmwareUpgrade&) = delete;
  FirmwareUpgrade& operator=(const FirmwareUpgrade&) = delete;

  /// Sends one image. -1, after saying so, while there is no lidar or another transfer runs; else 0
  /// at once, also for a file that cannot be opened, of which nothing is said.
  int Start(const QUrl& file);
  /// Sends the components of a package, over one serial line. -1, after saying why, when nothing
  /// was begun.
  int StartPackage(const QUrl& file);

  UpgradeSnapshot Now() const;
  /// In KiB. The total is cut down for one image and rounded up for the components of a package.
  int progress_kib() const { return progress_->done_kib; }
  int total_kib() const { return progress_->total_kib; }

 private:
  using Run = UpgradeResult (*)(UpgradeWork& work);

  /// Tells whether the upgrade of the moment of the call is still the last one.
  std::function<bool()> Current() const;
  /// Runs a task of the worker on the owner's thread, if its upgrade is still the last one then.
  Post Later() const;

  bool MayStart() const;
  void Begin(UpgradeFile file, Run run);
  UpgradeWork WorkOf(UpgradeFile file, std::shared_ptr<StopSignal> stop);
  void Work(UpgradeWork& work, Run run, const Post& later);

  void TakeBefore(const RunningFirmware& before);
  void EndTransfer();
  void ShowStep(const std::string& name, UpgradeStepState state);
  void ShowPlan(const std::vector<std::string>& components);
  bool IsHeld() const;
  void TakeResult(const UpgradeResult& result, const UpgradeReadBack& read_back, bool may_be_gone);
  void TakeReturn(LidarSession::Return outcome);
  void Conclude(const UpgradeReadBack& read_back);

  const SetUp set_up_;
  /// Counts the upgrades. Shared with what is posted, which may outlive the object.
  const std::shared_ptr<int> number_ = std::make_shared<int>(0);
  const std::shared_ptr<UpgradeProgress> progress_ = std::make_shared<UpgradeProgress>();
  UpgradeSnapshot shown_;
  RunningFirmware before_;  ///< read ahead of the first byte
  UpgradeResult result_;
  std::unique_ptr<ConnectionJob> job_;
};
