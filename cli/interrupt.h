#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

/// Ctrl+C and SIGTERM. The first one asks the command to end by itself, the second one ends the
/// process at once. Create it before any other thread, since threads inherit which signals they
/// leave to it.
class Interrupt {
 public:
  Interrupt();
  ~Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;

  bool raised() const { return raised_; }

  /// Throws the Failure that ends the command when it was raised.
  void ThrowIfRaised() const;

  /// What is to be done when it comes, on a thread of its own; at once when it has come. Empty:
  /// nothing. Once this returns, the action before is not running.
  void SetAction(std::function<void()> action);

 private:
  void Listen();

  std::atomic<bool> raised_{false};
  std::atomic<bool> ending_{false};
  std::mutex mutex_;
  std::function<void()> action_;  ///< guarded by mutex_
  std::thread thread_;
};
