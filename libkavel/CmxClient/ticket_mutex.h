#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "CmxClient/lock_order.h"

namespace kavel::lidar {

/// A mutex that lets its waiters in in the order in which they came, so that a thread which locks
/// it again and again cannot keep the others out. Unlocked by the thread that locked it. For
/// std::lock_guard and std::unique_lock.
class TicketMutex {
 public:
  explicit TicketMutex(Turn turn) : turn_of_(turn) {}

  void lock() {
#ifdef TEVRON_THREAD_CHECKS
    HeldLocks::TakeTurn(turn_of_);
#endif
    std::unique_lock<std::mutex> lock(mutex_);
    const uint64_t ticket = next_ticket_++;
    turn_.wait(lock, [&] { return ticket == served_; });
  }

  void unlock() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      ++served_;
    }
    turn_.notify_all();
#ifdef TEVRON_THREAD_CHECKS
    HeldLocks::EndTurn(turn_of_);
#endif
  }

 private:
  [[maybe_unused]] const Turn turn_of_;
  std::mutex mutex_;
  std::condition_variable turn_;
  uint64_t next_ticket_ = 0;
  uint64_t served_ = 0;
};

}  // namespace kavel::lidar
