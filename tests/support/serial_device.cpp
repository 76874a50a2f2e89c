#include "support/serial_device.h"

#include <utility>

#include "Source/serial_stream.h"

namespace kavel::lidar::testing {

const std::vector<uint8_t> SerialDevice::kVanish = {'v', 'a', 'n', 'i', 's', 'h'};

SerialDevice::SerialDevice(Answer answer) : answer_(std::move(answer)) {
  thread_ = std::thread(&SerialDevice::Run, this);
}

SerialDevice::~SerialDevice() {
  running_ = false;
  thread_.join();
}

void SerialDevice::Run() {
  SerialStream stream(SerialListener::kDevice);
  while (running_) {
    const std::vector<uint8_t> bytes = line_.Read(20);
    stream.Append(bytes.data(), bytes.size());
    while (const auto frame = stream.Next()) {
      const std::vector<uint8_t> answer = answer_(frame->bytes);
      if (answer == kVanish) return line_.HangUp();
      line_.Write(answer);
    }
  }
}

}  // namespace kavel::lidar::testing
