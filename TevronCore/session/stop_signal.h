#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

/// Tells one worker thread to end, and is what it sleeps on, so that no sleep outlasts the wish to
/// stop. Thread-safe; once raised it stays raised.
class StopSignal {
 public:
  void Raise() {
    Tell([this] { raised_ = true; });
  }

  bool IsRaised() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return raised_;
  }

  /// Changes what the worker waits for in WaitUntil.
  template <typename Change>
  void Tell(Change change) {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      change();
    }
    changed_.notify_all();
  }

  /// Sleeps until `is_told`, which is asked under the lock that Tell holds, or until raised. True
  /// when raised.
  template <typename Told>
  bool WaitUntil(Told is_told) {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [&] { return raised_ || is_told(); });
    return raised_;
  }

  /// Sleeps for `duration`, or until raised. True when raised.
  bool WaitFor(std::chrono::milliseconds duration) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, duration, [this] { return raised_; });
  }

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  bool raised_ = false;
};
