#include "task_queue.h"

#include <utility>

Post TaskQueue::MakePost() const {
  return [held = std::weak_ptr<Tasks>(tasks_)](std::function<void()> task) {
    if (const std::shared_ptr<Tasks> tasks = held.lock()) {
      const std::lock_guard<std::mutex> lock(tasks->mutex);
      tasks->waiting.push_back(std::move(task));
      tasks->posted.notify_one();
    }
  };
}

bool TaskQueue::RunUntil(const std::function<bool()>& done, Clock::time_point deadline) {
  while (!done()) {
    std::function<void()> task;
    {
      std::unique_lock<std::mutex> lock(tasks_->mutex);
      const auto any = [this] { return !tasks_->waiting.empty(); };
      // The farthest time overflows on its way to the system's clock.
      if (deadline == Clock::time_point::max()) {
        tasks_->posted.wait(lock, any);
      } else if (!tasks_->posted.wait_until(lock, deadline, any)) {
        return false;
      }
      task = std::move(tasks_->waiting.front());
      tasks_->waiting.pop_front();
    }
    task();
  }
  return true;
}
