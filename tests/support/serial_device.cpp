#include "support/serial_device.h"

#include <utility>

#include "Wire/serial_stream.h"

namespace kavel::lidar::testing {

const Bytes SerialDevice::kVanish = {'v', 'a', 'n', 'i', 's', 'h'};

SerialDevice::SerialDevice(Answer answer) : answer_(std::move(answer)) {
  thread_ = std::thread(&SerialDevice::Run, this);
}

SerialDevice::~SerialDevice() {
  running_ = false;
  thread_.join();
}

void SerialDevice::SetAnswer(const Bytes& bytes) {
  const std::lock_guard<std::mutex> lock(mutex_);
  answer_ = [bytes](const Bytes&) { return bytes; };
}

Bytes SerialDevice::last_request() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return last_request_;
}

Bytes SerialDevice::AnswerTo(const Bytes& request) {
  const std::lock_guard<std::mutex> lock(mutex_);
  last_request_ = request;
  return answer_(request);
}

void SerialDevice::Run() {
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

}  // namespace kavel::lidar::testing
