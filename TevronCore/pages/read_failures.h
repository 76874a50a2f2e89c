#pragma once

#include <mutex>
#include <set>
#include <string>

#include "CmxClient/lock_order.h"

/// What could not be read from one lidar, so that a page which is read every few seconds says so
/// once, and again only after it has been read in between. Thread-safe.
class ReadFailures {
 public:
  /// Remembers that `what` failed; true when nobody was told since it was last read.
  bool IsNews(const std::string& what) {
    const std::lock_guard lock(mutex_);
    return told_.insert(what).second;
  }

  void WasRead(const std::string& what) {
    const std::lock_guard lock(mutex_);
    told_.erase(what);
  }

  /// For the next lidar.
  void Clear() {
    const std::lock_guard lock(mutex_);
    told_.clear();
  }

 private:
  kavel::lidar::BriefMutex mutex_;
  std::set<std::string> told_;  ///< guarded by mutex_
};
