#include <windows.h>

#include <algorithm>
#include <string>

#include "Platform/serial_port.h"

namespace kavel::lidar {
namespace {

std::string OpenFailure(const std::string& name, DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      return "Serial port " + name + " was not found. Plug the adapter in or choose another port.";
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
      return "Serial port " + name +
             " is in use by another program. Close that program and try again.";
    default:
      return "Serial port " + name + " cannot be opened (error " + std::to_string(error) +
             "). Check the adapter and try again.";
  }
}

std::string LossMessage(const std::string& name, DWORD error) {
  return "Serial port " + name + " was lost (error " + std::to_string(error) +
         "). Check the cable and the adapter, then connect again.";
}

bool ApplyRate(HANDLE port, uint32_t baud_rate_bps) {
  DCB line{};
  line.DCBlength = sizeof line;
  if (baud_rate_bps == 0 || !GetCommState(port, &line)) {
    return false;
  }
  line.BaudRate = baud_rate_bps;
  line.ByteSize = 8;
  line.Parity = NOPARITY;
  line.StopBits = ONESTOPBIT;
  line.fBinary = TRUE;
  line.fParity = FALSE;
  line.fOutxCtsFlow = FALSE;
  line.fOutxDsrFlow = FALSE;
  line.fDtrControl = DTR_CONTROL_ENABLE;
  line.fRtsControl = RTS_CONTROL_ENABLE;
  line.fOutX = FALSE;
  line.fInX = FALSE;
  line.fNull = FALSE;
  line.fAbortOnError = FALSE;
  return SetCommState(port, &line) != 0;
}

std::string RateFailure(const std::string& name, uint32_t baud_rate_bps) {
  return "Serial port " + name + " cannot run at " + std::to_string(baud_rate_bps) +
         " baud. Choose another rate or another adapter.";
}

// A read returns as soon as there is a byte and waits for the first one only; how long is decided
// by the wait on its event.
bool ApplyTimeouts(HANDLE port) {
  COMMTIMEOUTS timeouts{};
  timeouts.ReadIntervalTimeout = MAXDWORD;
  timeouts.ReadTotalTimeoutMultiplier = MAXDWORD;
  timeouts.ReadTotalTimeoutConstant = MAXDWORD - 1;
  return SetCommTimeouts(port, &timeouts) != 0;
}

}  // namespace

std::string SerialDevicePath(const std::string& port_name) { return R"(\\.\)" + port_name; }

struct SerialPort::Handle {
  enum class Result { kDone, kTimeout, kWoken, kFailed };

  explicit Handle(HANDLE port_handle)
      : port(port_handle), wake(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    CloseHandle(port);
    CloseHandle(wake);
  }

  // Waits for an overlapped call that was started with the result `started`; one that is not over
  // in time is cancelled. `*count` is what it moved, `*error` why it failed.
  Result Finish(bool started, OVERLAPPED* call, uint32_t timeout_ms, DWORD* count,
                DWORD* error) const {
    Result result = Result::kDone;
    if (!started) {
      *error = GetLastError();
      if (*error != ERROR_IO_PENDING) {
        return Result::kFailed;
      }
      const HANDLE events[] = {wake, call->hEvent};
      const DWORD signalled = WaitForMultipleObjects(2, events, FALSE, timeout_ms);
      if (signalled != WAIT_OBJECT_0 + 1) {
        CancelIoEx(port, call);
      }
      if (signalled == WAIT_OBJECT_0) {
        result = Result::kWoken;
      }
      if (signalled == WAIT_TIMEOUT) {
        result = Result::kTimeout;
      }
    }
    if (GetOverlappedResult(port, call, count, TRUE)) {
      return result == Result::kTimeout && *count > 0 ? Result::kDone : result;
    }
    *error = GetLastError();
    return *error == ERROR_OPERATION_ABORTED ? result : Result::kFailed;
  }

  const HANDLE port;
  const HANDLE wake;
};

namespace {

// The event that an overlapped call signals, freed with the call.
class OverlappedCall {
 public:
  OverlappedCall() { call_.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr); }
  OverlappedCall(const OverlappedCall&) = delete;
  OverlappedCall& operator=(const OverlappedCall&) = delete;
  ~OverlappedCall() { CloseHandle(call_.hEvent); }
  OVERLAPPED* get() { return &call_; }

 private:
  OVERLAPPED call_{};
};

}  // namespace

SerialPort::SerialPort() = default;
SerialPort::~SerialPort() { Close(); }

bool SerialPort::Open(const std::string& port_name, uint32_t baud_rate_bps) {
  Close();
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    name_ = port_name;
    last_error_.clear();
  }
  const HANDLE port = CreateFileA(SerialDevicePath(port_name).c_str(), GENERIC_READ | GENERIC_WRITE,
                                  0, nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
  if (port == INVALID_HANDLE_VALUE) {
    return Refuse(OpenFailure(port_name, GetLastError()));
  }
  const auto handle = std::make_shared<Handle>(port);
  if (!ApplyTimeouts(port)) {
    return Refuse(port_name + " is not a serial port. Choose another port.");
  }
  if (!ApplyRate(port, baud_rate_bps)) {
    return Refuse(RateFailure(port_name, baud_rate_bps));
  }
  PurgeComm(port, PURGE_RXCLEAR);
  const std::lock_guard<std::mutex> lock(mutex_);
  handle_ = handle;
  baud_rate_bps_ = baud_rate_bps;
  return true;
}

bool SerialPort::SetBaudRate(uint32_t rate_bps) {
  const std::shared_ptr<Handle> handle = CurrentHandle();
  if (handle == nullptr || rate_bps == baud_rate_bps()) {
    return handle != nullptr;
  }
  if (!ApplyRate(handle->port, rate_bps)) {
    ApplyRate(handle->port, baud_rate_bps());
    return Refuse(RateFailure(name(), rate_bps));
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  baud_rate_bps_ = rate_bps;
  return true;
}

void SerialPort::Release(Handle& handle) {
  SetEvent(handle.wake);
  PurgeComm(handle.port, PURGE_TXCLEAR | PURGE_TXABORT);
}

int32_t SerialPort::Read(uint8_t* buffer, size_t size, uint32_t timeout_ms) {
  const std::shared_ptr<Handle> handle = CurrentHandle();
  if (handle == nullptr || WaitForSingleObject(handle->wake, 0) == WAIT_OBJECT_0) {
    return -1;
  }
  OverlappedCall call;
  const DWORD wanted = static_cast<DWORD>(std::min<size_t>(size, INT32_MAX));
  const bool started = ReadFile(handle->port, buffer, wanted, nullptr, call.get()) != 0;
  DWORD count = 0;
  DWORD error = 0;
  switch (handle->Finish(started, call.get(), timeout_ms, &count, &error)) {
    case Handle::Result::kDone:
    case Handle::Result::kTimeout:
      return static_cast<int32_t>(count);
    case Handle::Result::kWoken:
      return -1;
    case Handle::Result::kFailed:
      break;
  }
  Fail(handle, LossMessage(name(), error));
  return -1;
}

int32_t SerialPort::Write(const uint8_t* data, size_t size, uint32_t timeout_ms) {
  const std::shared_ptr<Handle> handle = CurrentHandle();
  if (handle == nullptr || WaitForSingleObject(handle->wake, 0) == WAIT_OBJECT_0) {
    return -1;
  }
  size_t written = 0;
  while (written < size) {
    OverlappedCall call;
    const DWORD wanted = static_cast<DWORD>(std::min<size_t>(size - written, 4096));
    const bool started = WriteFile(handle->port, data + written, wanted, nullptr, call.get()) != 0;
    DWORD count = 0;
    DWORD error = 0;
    const Handle::Result result = handle->Finish(started, call.get(), timeout_ms, &count, &error);
    if (result == Handle::Result::kWoken) {
      return -1;
    }
    if (result == Handle::Result::kFailed) {
      Fail(handle, LossMessage(name(), error));
      return -1;
    }
    if (count == 0) {
      break;
    }
    written += count;
  }
  return static_cast<int32_t>(written);
}

bool SerialPort::PurgeInput() {
  const std::shared_ptr<Handle> handle = CurrentHandle();
  return handle != nullptr && PurgeComm(handle->port, PURGE_RXCLEAR) != 0;
}

void SerialPort::Interrupt() {
  const std::shared_ptr<Handle> handle = CurrentHandle();
  if (handle != nullptr) {
    SetEvent(handle->wake);
  }
}

}  // namespace kavel::lidar
