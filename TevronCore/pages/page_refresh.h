#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "CmxClient/command_sender.h"
#include "CmxClient/lock_order.h"
#include "pages/read_failures.h"
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

  /// Called on the refreshing thread; must not destroy the object.
  struct Handlers {
    std::function<void()> refreshed;  ///< the page in view was read in its turn
    std::function<void()> caught_up;  ///< what ReadSoon asked for was read
  };

  /// Starts at once. `state` and `failures` have to outlive the object.
  PageRefresh(std::shared_ptr<kavel::lidar::CommandSender> sender, const LinkState& state,
              ReadFailures& failures, std::shared_ptr<UserReport> report, View view,
              Handlers handlers);
  /// Waits for the thread, whose exchange in progress has to be ended by whoever owns the sender.
  ~PageRefresh();
  PageRefresh(const PageRefresh&) = delete;
  PageRefresh& operator=(const PageRefresh&) = delete;

  /// What to read from the next pass on.
  void SetView(View view);

  /// Reads these variables in the next pass, once, out of turn. Replaces what was asked for and not
  /// yet read.
  void ReadSoon(std::shared_ptr<LidarModel> model, std::vector<const VarInfo*> vars);

 private:
  void UpdatePagesTimer();
  void ReadView();
  void CatchUp();
  void Read(const LidarModel& model, const std::vector<const VarInfo*>& vars);

  const std::shared_ptr<kavel::lidar::CommandSender> sender_;
  const LinkState& state_;
  ReadFailures& failures_;
  const std::shared_ptr<UserReport> report_;
  const Handlers handlers_;
  kavel::lidar::BriefMutex mutex_;
  View view_;                               ///< guarded by mutex_
  std::shared_ptr<LidarModel> soon_model_;  ///< guarded by mutex_
  std::vector<const VarInfo*> soon_;        ///< guarded by mutex_
  StopSignal stop_;
  std::thread thread_;
};
