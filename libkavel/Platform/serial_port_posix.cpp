// The terminal interface of Linux. <termios.h> knows a fixed list of rates only; the kernel's own
// termios2 takes any, and its header cannot stand beside <termios.h>.
#include <asm/termbits.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include "Platform/serial_port.h"

namespace kavel::lidar {
namespace {

using Clock = std::chrono::steady_clock;

// A rate that the driver rounded by more than this does not reach the device: a byte is sampled in
// its middle, ten bits after its beginning.
constexpr double kLargestRateError = 0.03;

std::string ErrorWords(int error) {
  char buffer[128];
  // The GNU form, which may answer with a text of its own in place of the buffer.
  return strerror_r(error, buffer, sizeof buffer);
}

std::string OpenFailure(const std::string& path, int error) {
  switch (error) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
      return "Serial port " + path + " was not found. Plug the adapter in or choose another port.";
    case EACCES:
    case EPERM:
      return "Serial port " + path +
             " may not be opened by this user. Add yourself to the dialout group (sudo usermod -aG "
             "dialout $USER), log in again and retry.";
    case EBUSY:
    case EWOULDBLOCK:
      return "Serial port " + path +
             " is in use by another program. Close that program and try again.";
    case ENOTTY:
    case EINVAL:
      return path + " is not a serial port. Choose another port.";
    default:
      return "Serial port " + path + " cannot be opened (" + ErrorWords(error) +
             "). Check the adapter and try again.";
  }
}

std::string LossMessage(const std::string& name, const std::string& why) {
  return "Serial port " + name + " was lost (" + why +
         "). Check the cable and the adapter, then connect again.";
}

bool ReadLine(int fd, termios2* line) { return ioctl(fd, TCGETS2, line) == 0; }

// Raw bytes, 8N1. VMIN is 1 so that a read of 0 bytes can only mean that the far end is gone.
void MakeRaw(termios2* line) {
  line->c_iflag = 0;
  line->c_oflag = 0;
  line->c_lflag = 0;
  line->c_cflag = CS8 | CREAD | CLOCAL;
  line->c_cc[VMIN] = 1;
  line->c_cc[VTIME] = 0;
}

void SetRate(termios2* line, uint32_t baud_rate_bps) {
  line->c_cflag = (line->c_cflag & ~static_cast<tcflag_t>(CBAUD | (CBAUD << IBSHIFT))) | BOTHER |
                  (BOTHER << IBSHIFT);
  line->c_ispeed = baud_rate_bps;
  line->c_ospeed = baud_rate_bps;
}

// Empty when the line runs at the rate asked for, else what is wrong.
std::string ApplyRate(int fd, termios2* line, const std::string& path, uint32_t baud_rate_bps) {
  const std::string prefix =
      "Serial port " + path + " cannot run at " + std::to_string(baud_rate_bps) + " baud";
  const std::string advice = ". Choose another rate or another adapter.";
  // Rate 0 would hang the line up.
  if (baud_rate_bps == 0) {
    return prefix + advice;
  }
  SetRate(line, baud_rate_bps);
  termios2 applied{};
  if (ioctl(fd, TCSETS2, line) != 0 || !ReadLine(fd, &applied)) {
    return prefix + advice;
  }
  const double error = static_cast<double>(applied.c_ospeed) / baud_rate_bps - 1.0;
  if (error > kLargestRateError || error < -kLargestRateError) {
    return prefix + " (the nearest is " + std::to_string(applied.c_ospeed) + ")" + advice;
  }
  return {};
}

}  // namespace

std::string SerialDevicePath(const std::string& port_name) {
  if (port_name.empty() || port_name.find('/') != std::string::npos) {
    return port_name;
  }
  return "/dev/" + port_name;
}

// Shared by the calls in progress, so that the descriptors stay theirs until the last one has
// returned.
struct SerialPort::Handle {
  enum class Event { kReady, kTimeout, kWoken, kFailed };

  Handle(int port_fd, int wake_fd) : port(port_fd), wake(wake_fd) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    close(port);
    close(wake);
  }

  // Not read back: every later wait ends at once, too.
  void Wake() const {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(wake, &one, sizeof one);
  }

  Event Wait(short events, uint32_t timeout_ms) const;

  const int port;
  const int wake;
};

SerialPort::Handle::Event SerialPort::Handle::Wait(short events, uint32_t timeout_ms) const {
  const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeout_ms);
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd fds[] = {{port, events, 0}, {wake, POLLIN, 0}};
    const int wait_ms = static_cast<int>(std::clamp<int64_t>(left, 0, 60'000));
    const int ready = poll(fds, 2, wait_ms);
    if (ready < 0 && errno != EINTR) {
      return Event::kFailed;
    }
    if (ready > 0 && fds[1].revents != 0) {
      return Event::kWoken;
    }
    // Errors and a hang-up count as readable: the read that follows tells which it is.
    if (ready > 0 && (events & POLLIN) != 0) {
      return Event::kReady;
    }
    if (ready > 0) {
      return (fds[0].revents & (POLLERR | POLLHUP | POLLNVAL)) != 0 ? Event::kFailed
                                                                    : Event::kReady;
    }
    if (ready == 0 && left <= 60'000) {
      return Event::kTimeout;
    }
  }
}

SerialPort::SerialPort() = default;
SerialPort::~SerialPort() { Close(); }

bool SerialPort::Open(const std::string& port_name, uint32_t baud_rate_bps) {
  Close();
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    name_ = port_name;
    last_error_.clear();
  }
  const std::string path = SerialDevicePath(port_name);
  const int fd = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) {
    return Refuse(OpenFailure(path.empty() ? "\"\"" : path, errno));
  }
  const int wake = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  const auto handle = std::make_shared<Handle>(fd, wake);
  if (wake < 0) {
    return Refuse(OpenFailure(path, errno));
  }

  // The terminal's own exclusive mode lets the superuser pass, the file lock does not.
  termios2 line{};
  if (!ReadLine(fd, &line)) {
    return Refuse(OpenFailure(path, errno));
  }
  if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
    return Refuse(OpenFailure(path, errno));
  }
  ioctl(fd, TIOCEXCL);

  MakeRaw(&line);
  const std::string fault = ApplyRate(fd, &line, path, baud_rate_bps);
  if (!fault.empty()) {
    ioctl(fd, TIOCNXCL);
    return Refuse(fault);
  }
  ioctl(fd, TCFLSH, TCIFLUSH);
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
  const std::string path = SerialDevicePath(name());
  termios2 line{};
  if (!ReadLine(handle->port, &line)) {
    return Refuse(OpenFailure(path, errno));
  }
  const termios2 before = line;
  const std::string fault = ApplyRate(handle->port, &line, path, rate_bps);
  if (!fault.empty()) {
    ioctl(handle->port, TCSETS2, &before);
    return Refuse(fault);
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  baud_rate_bps_ = rate_bps;
  return true;
}

// Another opener need not wait for the last call in progress, and closing must not wait for bytes
// that a dead device will never take.
void SerialPort::Release(Handle& handle) {
  handle.Wake();
  ioctl(handle.port, TCFLSH, TCOFLUSH);
  ioctl(handle.port, TIOCNXCL);
  flock(handle.port, LOCK_UN);
}

int32_t SerialPort::Read(uint8_t* buffer, size_t size, uint32_t timeout_ms) {
  const std::shared_ptr<Handle> handle = CurrentHandle();
  if (handle == nullptr) {
    return -1;
  }
  const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeout_ms);
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    const Handle::Event event =
        handle->Wait(POLLIN, static_cast<uint32_t>(std::max<int64_t>(left, 0)));
    if (event == Handle::Event::kTimeout) {
      return 0;
    }
    if (event == Handle::Event::kWoken) {
      return -1;
    }
    const ssize_t count = read(handle->port, buffer, std::min<size_t>(size, INT32_MAX));
    if (count > 0) {
      return static_cast<int32_t>(count);
    }
    const int error = count == 0 ? EIO : errno;
    if (error == EINTR || error == EAGAIN) {
      continue;
    }
    Fail(handle, LossMessage(name(), ErrorWords(error)));
    return -1;
  }
}

int32_t SerialPort::Write(const uint8_t* data, size_t size, uint32_t timeout_ms) {
  const std::shared_ptr<Handle> handle = CurrentHandle();
  if (handle == nullptr) {
    return -1;
  }
  size_t written = 0;
  while (written < size) {
    const Handle::Event event = handle->Wait(POLLOUT, timeout_ms);
    if (event == Handle::Event::kTimeout) {
      break;
    }
    if (event == Handle::Event::kWoken) {
      return -1;
    }
    const ssize_t count = write(handle->port, data + written, size - written);
    if (count > 0) {
      written += static_cast<size_t>(count);
    }
    if (count >= 0 || errno == EINTR || errno == EAGAIN) {
      continue;
    }
    Fail(handle, LossMessage(name(), ErrorWords(errno)));
    return -1;
  }
  return static_cast<int32_t>(written);
}

bool SerialPort::PurgeInput() {
  const std::shared_ptr<Handle> handle = CurrentHandle();
  return handle != nullptr && ioctl(handle->port, TCFLSH, TCIFLUSH) == 0;
}

void SerialPort::Interrupt() {
  const std::shared_ptr<Handle> handle = CurrentHandle();
  if (handle != nullptr) {
    handle->Wake();
  }
}

}  // namespace kavel::lidar
