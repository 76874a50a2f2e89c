#pragma once

#include <memory>
#include <mutex>
#include <utility>

#include "CmxClient/command_sender.h"

/// Where commands go now, for workers that outlive connections. The owner of the session keeps it
/// at the session's sender. Thread-safe.
class CurrentSender {
 public:
  void Set(std::shared_ptr<kavel::lidar::CommandSender> sender) {
    const std::lock_guard<std::mutex> lock(mutex_);
    sender_ = std::move(sender);
  }

  /// Null without a connection. Stays usable after the connection has ended; it is not open then.
  std::shared_ptr<kavel::lidar::CommandSender> Get() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return sender_;
  }

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<kavel::lidar::CommandSender> sender_;  ///< guarded by mutex_
};
