#include "server/event_loop.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>
#include <vector>

EventLoop::EventLoop() : wake_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
  if (!wake_.valid()) {
    throw std::system_error(errno, std::generic_category(), "eventfd");
  }
  Watch(wake_.get(), POLLIN, [this](short) { running_ = false; });
}

void EventLoop::Watch(int fd, short events, FdHandler handler) {
  watchers_[fd] = {events, std::make_shared<FdHandler>(std::move(handler))};
}

void EventLoop::Unwatch(int fd) { watchers_.erase(fd); }

EventLoop::TimerId EventLoop::After(Clock::duration delay, std::function<void()> action) {
  const TimerId id = next_timer_++;
  timers_.emplace(std::pair(Clock::now() + delay, id), std::move(action));
  return id;
}

void EventLoop::Cancel(TimerId id) {
  const auto found = std::find_if(timers_.begin(), timers_.end(),
                                  [id](const auto& entry) { return entry.first.second == id; });
  if (found != timers_.end()) {
    timers_.erase(found);
  }
}

void EventLoop::Run() {
  std::vector<pollfd> polled;
  while (running_) {
    polled.clear();
    for (const auto& [fd, watcher] : watchers_) {
      polled.push_back({fd, watcher.events, 0});
    }
    if (poll(polled.data(), polled.size(), MillisecondsToNextTimer()) < 0 && errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "poll");
    }
    for (const pollfd& ready : polled) {
      if (ready.revents == 0) {
        continue;
      }
      // An earlier handler of this round may have unwatched it.
      const auto found = watchers_.find(ready.fd);
      if (found == watchers_.end()) {
        continue;
      }
      const std::shared_ptr<FdHandler> handler = found->second.handler;
      (*handler)(ready.revents);
    }
    RunDueTimers();
  }
}

void EventLoop::Stop() {
  const uint64_t one = 1;
  // The only way for this to fail is a counter that is already waking the loop.
  [[maybe_unused]] const ssize_t written = write(wake_.get(), &one, sizeof one);
}

int EventLoop::MillisecondsToNextTimer() const {
  if (timers_.empty()) {
    return -1;
  }
  const auto left = timers_.begin()->first.first - Clock::now();
  const auto rounded_up = std::chrono::ceil<std::chrono::milliseconds>(left).count();
  return static_cast<int>(std::clamp<long long>(rounded_up, 0, 60000));
}

void EventLoop::RunDueTimers() {
  const Clock::time_point now = Clock::now();
  // Timers set by the actions wait for the next round, so that none can keep the loop here.
  const TimerId first_new = next_timer_;
  while (!timers_.empty()) {
    const auto first = timers_.begin();
    if (first->first.first > now || first->first.second >= first_new) {
      break;
    }
    const std::function<void()> action = std::move(first->second);
    timers_.erase(first);
    action();
  }
}
