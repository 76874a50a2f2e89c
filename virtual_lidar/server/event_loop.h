#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "server/unique_fd.h"

/// Waits on file descriptors and moments in time with poll(2), and calls back on its own thread.
/// Everything but Stop() belongs to the thread that calls Run().
class EventLoop {
 public:
  using Clock = std::chrono::steady_clock;
  /// Gets the poll(2) event bits that came in.
  using FdHandler = std::function<void(short events)>;
  using TimerId = uint64_t;

  /// Throws std::system_error when the kernel gives no wake-up descriptor.
  EventLoop();
  EventLoop(const EventLoop&) = delete;
  EventLoop& operator=(const EventLoop&) = delete;

  /// Calls the handler whenever one of the events (POLLIN, POLLOUT) or a hang-up is seen on fd.
  /// Watching an fd again replaces events and handler. The fd stays the caller's and is taken out
  /// with Unwatch before it is closed.
  void Watch(int fd, short events, FdHandler handler);
  void Unwatch(int fd);

  /// Calls back once when the time has come, never before this call returned.
  TimerId After(Clock::duration delay, std::function<void()> action);
  /// An unknown or past id is ignored.
  void Cancel(TimerId id);

  /// Runs until Stop(); a Stop() that came earlier makes it return at once.
  void Run();
  /// Ends Run(); callable on any thread and from a handler.
  void Stop();

 private:
  struct Watcher {
    short events = 0;
    // Shared, so that a handler that unwatches itself stays alive until it returns.
    std::shared_ptr<FdHandler> handler;
  };

  int MillisecondsToNextTimer() const;
  void RunDueTimers();

  std::map<int, Watcher> watchers_;
  std::map<std::pair<Clock::time_point, TimerId>, std::function<void()>> timers_;
  TimerId next_timer_ = 1;
  UniqueFd wake_;
  bool running_ = true;
};
