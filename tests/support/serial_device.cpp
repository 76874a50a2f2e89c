#include "support/serial_device.h"

#include <utility>

#include "Wire/serial_stream.h"

namespace kavel::lidar::testing {

const std::vector<uint8_t> SerialDevice::kVanish = {'v', 'a', 'n', 'i', 's', 'h'};

SerialDevice::SerialDevice(Answer answer) : answer_(std::move(answer)) {
  thread_ = std::thread(&SerialDevice::Run, this);
}

SerialDevice::~SerialDevice() {
  running_ = false;
  thread_.join();
}

void SerialDevice::SetAnswer(const std::vector<uint8_t>& bytes) {
  const std::lock_guard<std::mutex> lock(mutex_);
  answer_ = [bytes](const std::vector<uint8_t>&) { return bytes; };
}

std::vector<uint8_t> SerialDevice::last_request() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return last_request_;
}

std::vector<uint8_t> SerialDevice::last_answer() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return last_answer_;
}

std::vector<uint8_t> SerialDevice::AnswerTo(const std::vector<uint8_t>& request) {
  const std::lock_guard<std::mutex> lock(mutex_);
  last_request_ = request;
  last_answer_ = answer_(request);
  return last_answer_;
}

void SerialDevice::Run() {
  SerialStream stream(SerialListener::kDevice);
  while (running_) {
    const std::vector<uint8_t> bytes = line_.Read(20);
    stream.Append(bytes.data(), bytes.size());
    while (const auto frame = stream.Next()) {
      const std::vector<uint8_t> answer = AnswerTo(frame->bytes);
      if (answer == kVanish) {
        return line_.HangUp();
      }
      line_.Write(answer);
    }
  }
}

}  // namespace kavel::lidar::testing
