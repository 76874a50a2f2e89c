#pragma once

#include <QUrl>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "lidar_session.h"
#include "monitor/monitor_feed.h"
#include "monitor/monitor_reader.h"
#include "monitor/monitor_recorder.h"
#include "monitor/monitor_refresh.h"
#include "session/current_sender.h"
#include "session/post.h"
#include "session/user_report.h"

/// What is done with the monitor page of the session's model besides showing it: reading it again
/// and again, recording it, and handing its values on. For the owner's thread, like the session;
/// the work is done on others.
class LidarMonitor {
 public:
  struct Handlers {
    std::function<void()> read;               ///< the page was read in the background
    std::function<void()> recording_changed;  ///< recording()
  };
  struct SetUp {
    LidarSession& session;               ///< has to outlive the monitor
    Post post;                           ///< runs nothing any more once the monitor is destroyed
    UserReport& report;                  ///< for the owner's thread
    std::shared_ptr<UserReport> posted;  ///< the same for any other
    Handlers handlers;
  };

  explicit LidarMonitor(SetUp set_up);
  /// The running recording is closed whole. To be fast with a silent lidar, the session has to be
  /// closed before.
  ~LidarMonitor();
  LidarMonitor(const LidarMonitor&) = delete;
  LidarMonitor& operator=(const LidarMonitor&) = delete;

  /// The session has another model, or the same with another hardware version.
  void TakeModel();
  /// The session has connected or disconnected.
  void TakeLink();
  /// The page may have been read: its values go into the feed.
  void TakeReading();

  /// Hardware versions that the model has monitor tables for; none without a monitor page.
  const std::vector<std::string>& versions() const { return versions_; }

  /// Once a second, for as long as it is on and the lidar may be asked.
  void SetAutoRefresh(bool on);
  bool auto_refresh() const { return auto_refresh_; }

  /// Starts a recording into `folder`. Nothing happens while one is running; what else prevents it
  /// is told.
  void StartRecord(const QUrl& folder, std::chrono::seconds duration,
                   std::chrono::seconds interval);
  /// Ends the recording, at once as far as recording() is concerned. The file is closed and
  /// reported as soon as an exchange in progress has ended.
  void StopRecord();
  bool recording() const { return running_ != nullptr; }

  MonitorFeed& feed() { return feed_; }

 private:
  void WasRead();
  void TakeProgress(const MonitorRecorder* recorder, const MonitorRecording& progress);
  void TakeEnd(const MonitorRecorder* recorder);
  std::string FileIn(const std::string& folder) const;

  const SetUp set_up_;
  CurrentSender sender_;
  const MonitorReader reader_;
  std::shared_ptr<LidarModel> model_;
  std::vector<std::string> versions_;
  std::vector<const VarInfo*> drawn_;  ///< variables of the feed, in its order
  MonitorFeed feed_;
  bool was_fresh_ = false;  ///< the feed's last sample has a fresh value
  std::optional<std::chrono::system_clock::time_point> newest_;  ///< reading in the feed
  bool auto_refresh_ = false;
  MonitorRecorder* running_ = nullptr;
  // Destroyed from the last to the first: the threads are gone before what they use.
  std::list<std::unique_ptr<MonitorRecorder>> recorders_;  ///< running_, and those that are ending
  std::unique_ptr<MonitorRefresh> refresh_;                ///< null until it is first turned on
};
