#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace kavel::lidar::testing {

/// Waits until the condition holds; false when it did not within ten seconds.
inline bool WaitFor(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace kavel::lidar::testing
