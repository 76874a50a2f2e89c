#include "Platform/serial_port.h"

#include "Log/logger.h"

namespace kavel::lidar {

bool SerialPort::IsOpen() const { return CurrentHandle() != nullptr; }

uint32_t SerialPort::baud_rate_bps() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return baud_rate_bps_;
}

std::string SerialPort::LastError() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return last_error_;
}

std::string SerialPort::name() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return name_;
}

std::shared_ptr<SerialPort::Handle> SerialPort::CurrentHandle() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return handle_;
}

bool SerialPort::Refuse(const std::string& message) {
  KAVEL_LOG(kError, "%s", message.c_str());
  const std::lock_guard<std::mutex> lock(mutex_);
  last_error_ = message;
  return false;
}

void SerialPort::Close() {
  std::shared_ptr<Handle> handle;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    handle.swap(handle_);
  }
  if (handle != nullptr) {
    Release(*handle);
  }
}

// A handle that was closed meanwhile fails because of that, which is no news. The reason is there
// before the port is seen closed.
void SerialPort::Fail(const std::shared_ptr<Handle>& handle, const std::string& message) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (handle_ != handle) {
      return;
    }
    last_error_ = message;
    handle_.reset();
  }
  KAVEL_LOG(kError, "%s", message.c_str());
  Release(*handle);
}

}  // namespace kavel::lidar
