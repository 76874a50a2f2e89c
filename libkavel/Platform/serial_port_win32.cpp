#include <windows.h>

#include <algorithm>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <system_error>

#include "Platform/serial_port.h"

namespace kavel::lidar {
namespace {

std::string ErrorWords(DWORD error) {
  return std::system_category().message(static_cast<int>(error));
}

std::string OpenFailure(const std::string& name, DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
      return "Serial port " + name + " was not found. Plug the adapter in or choose another port.";
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
      return "Serial port " + name +
             " is in use by another program. Close that program and try again.";
    default:
      return "Serial port " + name + " cannot be opened (" + ErrorWords(error) +
             "). Check the adapter and try again.";
  }
}

std::string LossMessage(const std::string& name, DWORD error) {
  return "Serial port " + name + " was lost (" + ErrorWords(error) +
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
  line.fDsrSensitivity = FALSE;
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

// None: how long a call lasts is decided by the wait on its event.
bool ClearTimeouts(HANDLE port) {
  COMMTIMEOUTS timeouts{};
  return SetCommTimeouts(port, &timeouts) != 0;
}

// The compiler's own std::shared_mutex fails now and then.
class SharedLock {
 public:
  void lock() { AcquireSRWLockExclusive(&lock_); }
  void unlock() { ReleaseSRWLockExclusive(&lock_); }
  void lock_shared() { AcquireSRWLockShared(&lock_); }
  void unlock_shared() { ReleaseSRWLockShared(&lock_); }

 private:
  SRWLOCK lock_ = SRWLOCK_INIT;
};

// An overlapped call, with the event that it signals.
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

std::string SerialDevicePath(const std::string& port_name) { return R"(\\.\)" + port_name; }

struct SerialPort::Handle {
  enum class Result { kDone, kTimeout, kWoken, kFailed };
  struct Outcome {
    Result result = Result::kDone;
    DWORD count = 0;
    DWORD error = ERROR_SUCCESS;
  };

  explicit Handle(HANDLE port_handle)
      : port(port_handle), wake(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    Close();
    CloseHandle(wake);
  }

  // Waits for the calls in progress, so that the port is free for the next one afterwards.
  void Close() {
    SetEvent(wake);
    const std::lock_guard<SharedLock> lock(in_use);
    if (port != INVALID_HANDLE_VALUE) {
      PurgeComm(port, PURGE_TXCLEAR | PURGE_TXABORT);
      CloseHandle(port);
    }
    port = INVALID_HANDLE_VALUE;
  }

  // The rest is for callers that hold `in_use`, shared.
  bool IsWoken() const { return WaitForSingleObject(wake, 0) == WAIT_OBJECT_0; }

  DWORD Arrived() const {
    COMSTAT state{};
    DWORD errors = 0;
    return ClearCommError(port, &errors, &state) ? state.cbInQue : 0;
  }

  Outcome Read(uint8_t* buffer, size_t size, uint32_t timeout_ms) const {
    OverlappedCall call;
    return Finish(ReadFile(port, buffer, static_cast<DWORD>(size), nullptr, call.get()), &call,
                  timeout_ms);
  }

  Outcome Write(const uint8_t* data, size_t size, uint32_t timeout_ms) const {
    OverlappedCall call;
    return Finish(WriteFile(port, data, static_cast<DWORD>(size), nullptr, call.get()), &call,
                  timeout_ms);
  }

  // Waits for the call that was started with the result `started`; one that is not over in time is
  // cancelled.
  Outcome Finish(BOOL started, OverlappedCall* call, uint32_t timeout_ms) const {
    Outcome outcome;
    if (!started) {
      outcome.error = GetLastError();
      if (outcome.error != ERROR_IO_PENDING) {
        outcome.result = Result::kFailed;
        return outcome;
      }
      const HANDLE events[] = {wake, call->get()->hEvent};
      const DWORD signalled = WaitForMultipleObjects(2, events, FALSE, timeout_ms);
      if (signalled != WAIT_OBJECT_0 + 1) {
        CancelIoEx(port, call->get());
        outcome.result = signalled == WAIT_OBJECT_0 ? Result::kWoken : Result::kTimeout;
      }
    }
    if (!GetOverlappedResult(port, call->get(), &outcome.count, TRUE)) {
      outcome.error = GetLastError();
      if (outcome.error != ERROR_OPERATION_ABORTED) {
        outcome.result = Result::kFailed;
      }
    }
    return outcome;
  }

  HANDLE port;  // changed under `in_use`
  const HANDLE wake;
  mutable SharedLock in_use;
};

SerialPort::SerialPort() = default;
SerialPort::~SerialPort() { Close(); }

bool SerialPort::Open(const std::string& port_name, uint32_t baud_rate_bps) {
  Close();
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    name_ = port_name;
    last_error_.clear();
  }
  if (port_name.empty()) {
    return Refuse(OpenFailure("\"\"", ERROR_FILE_NOT_FOUND));
  }
  const HANDLE port = CreateFileA(SerialDevicePath(port_name).c_str(), GENERIC_READ | GENERIC_WRITE,
                                  0, nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
  if (port == INVALID_HANDLE_VALUE) {
    return Refuse(OpenFailure(port_name, GetLastError()));
  }
  const auto handle = std::make_shared<Handle>(port);
  if (!ClearTimeouts(port)) {
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
  const std::shared_lock<SharedLock> use(handle->in_use);
  if (!ApplyRate(handle->port, rate_bps)) {
    ApplyRate(handle->port, baud_rate_bps());
    return Refuse(RateFailure(name(), rate_bps));
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  baud_rate_bps_ = rate_bps;
  return true;
}

void SerialPort::Release(Handle& handle) { handle.Close(); }

// One byte is waited for; what has arrived with it is there at once.
int32_t SerialPort::Read(uint8_t* buffer, size_t size, uint32_t timeout_ms) {
  const std::shared_ptr<Handle> handle = CurrentHandle();
  if (handle == nullptr) {
    return -1;
  }
  Handle::Outcome first;
  Handle::Outcome rest;
  {
    const std::shared_lock<SharedLock> use(handle->in_use);
    if (handle->IsWoken()) {
      return -1;
    }
    first = handle->Read(buffer, std::min<size_t>(size, 1), timeout_ms);
    const size_t more = first.count == 1 ? std::min<size_t>(size - 1, handle->Arrived()) : 0;
    if (more > 0) {
      rest = handle->Read(buffer + 1, more, 0);
    }
  }
  if (first.count == 0 && first.result == Handle::Result::kWoken) {
    return -1;
  }
  if (first.result == Handle::Result::kFailed) {
    Fail(handle, LossMessage(name(), first.error));
    return -1;
  }
  return static_cast<int32_t>(first.count + rest.count);
}

int32_t SerialPort::Write(const uint8_t* data, size_t size, uint32_t timeout_ms) {
  const std::shared_ptr<Handle> handle = CurrentHandle();
  size_t written = 0;
  while (handle != nullptr && written < size) {
    Handle::Outcome piece;
    {
      const std::shared_lock<SharedLock> use(handle->in_use);
      if (handle->IsWoken()) {
        return -1;
      }
      piece = handle->Write(data + written, std::min<size_t>(size - written, 4096), timeout_ms);
    }
    if (piece.result == Handle::Result::kWoken) {
      return -1;
    }
    if (piece.result == Handle::Result::kFailed) {
      Fail(handle, LossMessage(name(), piece.error));
      return -1;
    }
    if (piece.count == 0) {
      break;
    }
    written += piece.count;
  }
  return handle != nullptr ? static_cast<int32_t>(written) : -1;
}

bool SerialPort::PurgeInput() {
  const std::shared_ptr<Handle> handle = CurrentHandle();
  if (handle == nullptr) {
    return false;
  }
  const std::shared_lock<SharedLock> use(handle->in_use);
  return PurgeComm(handle->port, PURGE_RXCLEAR) != 0;
}

void SerialPort::Interrupt() {
  const std::shared_ptr<Handle> handle = CurrentHandle();
  if (handle != nullptr) {
    SetEvent(handle->wake);
  }
}

}  // namespace kavel::lidar
