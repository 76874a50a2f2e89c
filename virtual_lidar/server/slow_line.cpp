#include "server/slow_line.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

namespace {

using std::chrono::nanoseconds;

constexpr int64_t kBitsPerByte = 10;
constexpr int64_t kNanosecondsPerSecond = 1000000000;
constexpr size_t kMostAtOnce = 4096;
// poll(2) counts in milliseconds.
constexpr std::chrono::milliseconds kTick{1};

void Drain(int fd) {
  std::array<uint8_t, kMostAtOnce> buffer;
  while (read(fd, buffer.data(), buffer.size()) > 0) {
  }
}

}  // namespace

SlowLine::SlowLine(EventLoop* loop, int port, LineSpeed speed, std::function<void()> on_bytes)
    : loop_(loop), speed_(speed), on_bytes_(std::move(on_bytes)) {
  std::array<int, 2> ends = {};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot make a slow line");
  }
  line_end_ = UniqueFd(ends[0]);
  device_end_ = UniqueFd(ends[1]);
  requests_.from = answers_.to = port;
  requests_.to = answers_.from = line_end_.get();
  UpdateWatches();
}

SlowLine::~SlowLine() {
  loop_->Cancel(timer_);
  loop_->Unwatch(requests_.from);
  loop_->Unwatch(requests_.to);
}

void SlowLine::Reset() {
  Drain(device_end_.get());
  Drain(line_end_.get());
  for (Direction* way : {&requests_, &answers_}) {
    way->on_the_way.clear();
    way->busy = way->blocked = false;
  }
  UpdateWatches();
}

bool SlowLine::HasTakenAll() const {
  int waiting = 0;
  return ioctl(line_end_.get(), FIONREAD, &waiting) == 0 && waiting == 0;
}

void SlowLine::OnEvents(int fd, short events) {
  for (Direction* way : {&requests_, &answers_}) {
    if (fd == way->to && (events & POLLOUT) != 0) {
      way->blocked = false;
      // The time in which nobody fetched anything is lost to the line.
      way->free_at = EventLoop::Clock::now();
    }
    if (fd == way->from && (events & (POLLIN | POLLHUP | POLLERR)) != 0 && !way->busy) {
      way->busy = true;
      way->free_at = EventLoop::Clock::now();
    }
  }
  Pump();
}

void SlowLine::Pump() {
  const TimePoint now = EventLoop::Clock::now();
  for (Direction* way : {&requests_, &answers_}) {
    TakeBytes(way, now);
    HandOver(way, now);
  }
  UpdateWatches();
  SetTimer(now);
}

// A loop that comes late takes what has crossed the line meanwhile, so that the rate is kept.
void SlowLine::TakeBytes(Direction* way, TimePoint now) {
  std::array<uint8_t, kMostAtOnce> buffer;
  while (way->busy && !way->blocked) {
    const size_t most = std::min(BytesSince(way->free_at, now), buffer.size());
    if (most == 0) {
      return;
    }
    const ssize_t got = read(way->from, buffer.data(), most);
    if (got <= 0) {
      way->busy = false;
      return;
    }
    if (way == &requests_) {
      on_bytes_();
    }
    if (speed_.baud != 0) {
      way->free_at += nanoseconds(got * kBitsPerByte * kNanosecondsPerSecond / speed_.baud);
    } else {
      way->free_at = now;
    }
    way->busy = true;
    way->on_the_way.push_back(
        {way->free_at + speed_.latency, {buffer.begin(), buffer.begin() + got}});
    // Less than the line could have carried is all that there is.
    if (static_cast<size_t>(got) < most) {
      way->busy = false;
      return;
    }
  }
}

void SlowLine::HandOver(Direction* way, TimePoint now) {
  while (!way->blocked && !way->on_the_way.empty() && way->on_the_way.front().due <= now) {
    std::vector<uint8_t>& bytes = way->on_the_way.front().bytes;
    const ssize_t sent = write(way->to, bytes.data(), bytes.size());
    if (sent < 0 && errno == EINTR) {
      continue;
    }
    if (sent < 0) {
      way->blocked = true;
      return;
    }
    bytes.erase(bytes.begin(), bytes.begin() + sent);
    if (bytes.empty()) {
      way->on_the_way.pop_front();
    }
  }
}

size_t SlowLine::BytesSince(TimePoint then, TimePoint now) const {
  if (speed_.baud == 0) {
    return kMostAtOnce;
  }
  const int64_t waited = std::max<int64_t>(nanoseconds(now - then).count(), 0);
  // More than a second late is more than is taken at once in any case.
  const int64_t counted = std::min(waited, kNanosecondsPerSecond);
  return static_cast<size_t>(counted * speed_.baud / (kBitsPerByte * kNanosecondsPerSecond));
}

void SlowLine::UpdateWatches() {
  for (const auto& [in, out] : {std::pair(&requests_, &answers_), {&answers_, &requests_}}) {
    const short events =
        static_cast<short>((in->busy || in->blocked ? 0 : POLLIN) | (out->blocked ? POLLOUT : 0));
    loop_->Watch(in->from, events, [this, fd = in->from](short seen) { OnEvents(fd, seen); });
  }
}

void SlowLine::SetTimer(TimePoint now) {
  loop_->Cancel(timer_);
  timer_ = 0;
  std::optional<TimePoint> next;
  const auto consider = [&next](TimePoint moment) {
    next = next ? std::min(*next, moment) : moment;
  };
  for (const Direction* way : {&requests_, &answers_}) {
    if (way->blocked) {
      continue;
    }
    if (way->busy) {
      consider(now + kTick);
    }
    if (!way->on_the_way.empty()) {
      consider(way->on_the_way.front().due);
    }
  }
  if (next) {
    timer_ = loop_->After(*next - now, [this] {
      timer_ = 0;
      Pump();
    });
  }
}
