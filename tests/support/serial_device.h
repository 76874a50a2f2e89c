#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/pty_pair.h"

namespace kavel::lidar::testing {

/// A device on a pseudo-terminal that answers every whole request frame with whatever bytes the
/// test wants, from a thread of its own.
class SerialDevice {
 public:
  /// Called on the device's thread with one "$LDCMD," or "$LDOTA," request; what it returns is
  /// written to the line, and `kVanish` hangs up instead.
  using Answer = std::function<std::vector<uint8_t>(const std::vector<uint8_t>& request)>;
  static const std::vector<uint8_t> kVanish;

  explicit SerialDevice(Answer answer);
  ~SerialDevice();

  /// From the next request on.
  void SetAnswer(const std::vector<uint8_t>& bytes);

  const std::string& path() const { return line_.path(); }
  std::vector<uint8_t> last_request() const;
  std::vector<uint8_t> last_answer() const;

 private:
  void Run();
  std::vector<uint8_t> AnswerTo(const std::vector<uint8_t>& request);

  PtyPair line_;
  mutable std::mutex mutex_;
  Answer answer_;
  std::vector<uint8_t> last_request_;
  std::vector<uint8_t> last_answer_;
  std::atomic<bool> running_{true};
  std::thread thread_;
};

}  // namespace kavel::lidar::testing
