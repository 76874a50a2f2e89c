#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "support/pty_pair.h"

namespace kavel::lidar::testing {

/// A device on a pseudo-terminal that answers every whole request frame with whatever bytes the
/// test wants, from a thread of its own.
class SerialDevice {
 public:
  /// Called on the device's thread with one "$LDCMD," or "$LDOTA," request; what it returns is
  /// written to the line, and `kVanish` hangs up instead.
  using Answer = std::function<Bytes(const Bytes& request)>;
  static const Bytes kVanish;

  explicit SerialDevice(Answer answer);
  ~SerialDevice();

  /// From the next request on.
  void SetAnswer(const Bytes& bytes);

  const std::string& path() const { return line_.path(); }
  Bytes last_request() const;

 private:
  void Run();
  Bytes AnswerTo(const Bytes& request);

  PtyPair line_;
  mutable std::mutex mutex_;
  Answer answer_;
  Bytes last_request_;
  std::atomic<bool> running_{true};
  std::thread thread_;
};

}  // namespace kavel::lidar::testing
