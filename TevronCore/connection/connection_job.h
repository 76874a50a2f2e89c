#pragma once

#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include "connection/connection.h"
#include "session/stop_signal.h"

/// A thread that works over one connection. The destructor raises its stop signal and waits for
/// it: whoever cannot wait for an exchange in progress closes the connection before.
struct ConnectionJob {
  /// Begins at once. `used` may be null for work that needs no lidar.
  ConnectionJob(std::shared_ptr<Connection> used, std::shared_ptr<StopSignal> raised_at_end,
                std::function<void()> work)
      : connection(std::move(used)), stop(std::move(raised_at_end)), thread(std::move(work)) {}
  ~ConnectionJob() {
    stop->Raise();
    thread.join();
  }
  ConnectionJob(const ConnectionJob&) = delete;
  ConnectionJob& operator=(const ConnectionJob&) = delete;

  const std::shared_ptr<Connection> connection;
  const std::shared_ptr<StopSignal> stop;
  std::thread thread;
};
