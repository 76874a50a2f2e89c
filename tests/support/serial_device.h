#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

#include "Wire/serial_stream.h"
#include "support/pty_pair.h"

namespace kavel::lidar::testing {

/// A device on a pseudo-terminal that answers every whole request frame with whatever bytes the
/// test wants, from a thread of its own.
class SerialDevice {
 public:
  /// Called on the device's thread with one "$LDCMD," or "$LDOTA," request; what it returns is
  /// written to the line, and `kVanish` hangs up instead.
  using Answer = std::function<Bytes(const Bytes& request)>;
  static inline const Bytes kVanish = {'v', 'a', 'n', 'i', 's', 'h'};

  explicit SerialDevice(Answer answer) : answer_(std::move(answer)), thread_([this] { Run(); }) {}
  ~SerialDevice() {
    running_ = false;
    thread_.join();
  }

  /// From the next request on.
  void SetAnswer(const Bytes& bytes) {
    const std::lock_guard<std::mutex> lock(mutex_);
    answer_ = [bytes](const Bytes&) { return bytes; };
  }

  const std::string& path() const { return line_.path(); }
  Bytes last_request() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return last_request_;
  }

 private:
  Bytes AnswerTo(const Bytes& request) {
    const std::lock_guard<std::mutex> lock(mutex_);
    last_request_ = request;
    return answer_(request);
  }
  void Run() {
    SerialStream stream(SerialListener::kDevice);
    while (running_) {
      const Bytes bytes = line_.Read(20);
      stream.Append(bytes.data(), bytes.size());
      while (const auto frame = stream.Next()) {
        const Bytes answer = AnswerTo(frame->bytes);
        if (answer == kVanish) {
          return line_.HangUp();
        }
        line_.Write(answer);
      }
    }
  }

  PtyPair line_;
  mutable std::mutex mutex_;
  Answer answer_;
  Bytes last_request_;
  std::atomic<bool> running_{true};
  std::thread thread_;
};

}  // namespace kavel::lidar::testing
