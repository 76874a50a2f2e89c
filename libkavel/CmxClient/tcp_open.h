#pragma once

#include <atomic>
#include <cstdint>

namespace kavel::lidar {

/// Connects to `ip` and `port`, waiting as long as the system does, or until `*interrupted` (may be
/// null) is set. Returns the socket, or -1 after logging why. Who takes the socket closes it, with
/// `StopSockets` after it.
int tcp_open(const char* ip, int port, const std::atomic<bool>* interrupted = nullptr);

/// The same within `timeout_s` seconds and from the local port `host_port` (0: any); that one which
/// cannot be bound is only logged.
int tcp_try_open(uint16_t host_port, const char* ip, int port, uint32_t timeout_s,
                 const std::atomic<bool>* interrupted = nullptr);

}  // namespace kavel::lidar
