#pragma once

#include <mutex>

namespace kavel::lidar {

/// The locks that are held while a lidar is waited for, from the outside to the inside: a thread
/// takes them in this order, each at most once.
enum class Turn {
  kSequence,  ///< authentication and the command that it is for
  kExchange,  ///< one command and its answer
  kLine       ///< one request and its answer on a serial line
};

/// Which of these locks the calling thread holds, and whether it holds a brief one. Each call that
/// breaks the order ends the program with a sentence. In builds without TEVRON_THREAD_CHECKS
/// nothing calls it.
class HeldLocks {
 public:
  static void TakeTurn(Turn turn);
  static void EndTurn(Turn turn);
  static void TakeBrief();
  static void EndBrief();
};

/// A mutex that is held for a few instructions and never while a lidar is waited for: none of the
/// others is taken under it. For std::lock_guard.
#ifdef TEVRON_THREAD_CHECKS
class BriefMutex {
 public:
  void lock() {
    HeldLocks::TakeBrief();
    mutex_.lock();
  }
  void unlock() {
    mutex_.unlock();
    HeldLocks::EndBrief();
  }

 private:
  std::mutex mutex_;
};
#else
using BriefMutex = std::mutex;
#endif

}  // namespace kavel::lidar
