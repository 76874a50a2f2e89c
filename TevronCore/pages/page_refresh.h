#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "CmxClient/command_sender.h"
#include "session/lidar_model.h"
#include "session/link_state.h"
#include "session/stop_signal.h"
#include "session/user_report.h"

/// Reads the page in view again and again, on a thread of its own, for as long as it lives.
class PageRefresh {
 public:
  /// The page in view.
  struct View {
    std::shared_ptr<LidarModel> model;
    int page = 0;
  };

  static constexpr std::chrono::milliseconds kPassInterval{100};
  /// A pass reads only when this many have gone by since the last read: every 3 s.
  static constexpr int kPassesPerRead = 30;

  /// Starts at once. `state` has to outlive the object; `on_refreshed` is called on the refreshing
  /// thread after a page was read and must not destroy the object.
  PageRefresh(std::shared_ptr<kavel::lidar::CommandSender> sender, const LinkState& state,
              std::shared_ptr<UserReport> report, View view, std::function<void()> on_refreshed);
  /// Waits for the thread, whose exchange in progress has to be ended by whoever owns the sender.
  ~PageRefresh();
  PageRefresh(const PageRefresh&) = delete;
  PageRefresh& operator=(const PageRefresh&) = delete;

  /// What to read from the next pass on.
  void SetView(View view);

 private:
  void UpdatePagesTimer();
  void ReadView();

  const std::shared_ptr<kavel::lidar::CommandSender> sender_;
  const LinkState& state_;
  const std::shared_ptr<UserReport> report_;
  const std::function<void()> on_refreshed_;
  std::mutex mutex_;
  View view_;  ///< guarded by mutex_
  StopSignal stop_;
  std::thread thread_;
};
