#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

#include "server/event_loop.h"
#include "server/unique_fd.h"

/// How slow a serial line is.
struct LineSpeed {
  uint32_t baud = 0;  ///< ten bits a byte; 0: as fast as it goes
  std::chrono::milliseconds latency{0};

  bool is_limited() const { return baud != 0 || latency.count() != 0; }
};

/// Stands between a port and the device and lets bytes through as slowly as a real line does, in
/// both directions and in their order. The latency comes on top of the time on the line. What the
/// line cannot take yet stays where it is, so that both ends feel its pace.
class SlowLine {
 public:
  /// `port` is non-blocking, stays the caller's and must outlive this object. `on_bytes` is called
  /// when bytes of the client were read, before they are on their way; it may call Reset().
  /// Throws std::system_error when the system gives no pair of sockets.
  SlowLine(EventLoop* loop, int port, LineSpeed speed, std::function<void()> on_bytes);
  ~SlowLine();
  SlowLine(const SlowLine&) = delete;
  SlowLine& operator=(const SlowLine&) = delete;

  /// Where the device reads and writes.
  int device_fd() const { return device_end_.get(); }

  /// Whether everything that the device has written is on its way.
  bool HasTakenAll() const;

  /// Forgets every byte on its way.
  void Reset();

 private:
  using TimePoint = EventLoop::Clock::time_point;
  struct Chunk {
    TimePoint due;
    std::vector<uint8_t> bytes;
  };
  struct Direction {
    int from = -1;
    int to = -1;
    bool busy = false;     ///< bytes are on the line, so that `free_at` tells when it is free
    bool blocked = false;  ///< the far end takes no more for now
    TimePoint free_at;
    std::deque<Chunk> on_the_way;
  };

  void OnEvents(int fd, short events);
  void Pump();
  void TakeBytes(Direction* way, TimePoint now);
  void HandOver(Direction* way, TimePoint now);
  size_t BytesSince(TimePoint then, TimePoint now) const;
  void UpdateWatches();
  void SetTimer(TimePoint now);

  EventLoop* loop_;
  LineSpeed speed_;
  std::function<void()> on_bytes_;
  UniqueFd line_end_;
  UniqueFd device_end_;
  Direction requests_;
  Direction answers_;
  EventLoop::TimerId timer_ = 0;
};
