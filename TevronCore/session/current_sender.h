#pragma once

#include <memory>
#include <mutex>

#include "CmxClient/command_sender.h"
#include "CmxClient/lock_order.h"

/// Where commands go now, for workers that outlive connections. The owner of the session keeps it
/// at the session's sender. Thread-safe.
class CurrentSender {
 public:
  void Set(std::shared_ptr<kavel::lidar::CommandSender> sender) {
    const std::lock_guard lock(mutex_);
    sender_.swap(sender);  // the last user of a client waits for its end: not under the lock
  }

  /// Null without a connection. Stays usable after the connection has ended; it is not open then.
  std::shared_ptr<kavel::lidar::CommandSender> Get() const {
    const std::lock_guard lock(mutex_);
    return sender_;
  }

 private:
  mutable kavel::lidar::BriefMutex mutex_;
  std::shared_ptr<kavel::lidar::CommandSender> sender_;  ///< guarded by mutex_
};
