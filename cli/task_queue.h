#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "session/post.h"

/// The owner's thread of a session without an event loop: what workers post is run where RunUntil
/// is called, which sleeps in between.
class TaskQueue {
 public:
  using Clock = std::chrono::steady_clock;

  /// May be called when the queue is gone; the task is dropped then.
  Post MakePost() const;

  /// Runs what is posted until done() or `deadline`; true when done() was. done() is asked first,
  /// and after each task.
  bool RunUntil(const std::function<bool()>& done, Clock::time_point deadline);

 private:
  struct Tasks {
    std::mutex mutex;
    std::condition_variable posted;
    std::deque<std::function<void()>> waiting;  ///< guarded by mutex
  };

  const std::shared_ptr<Tasks> tasks_ = std::make_shared<Tasks>();
};
