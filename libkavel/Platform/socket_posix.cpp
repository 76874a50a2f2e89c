#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/time.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <system_error>

#include "Platform/socket.h"

namespace kavel::lidar {
namespace {

int SetTimeoutOption(SocketHandle socket, int name, uint32_t ms) {
  timeval time{};
  time.tv_sec = ms / 1000;
  time.tv_usec = static_cast<suseconds_t>(ms % 1000) * 1000;
  return setsockopt(socket, SOL_SOCKET, name, &time, sizeof time);
}

uint32_t TimeoutOption(SocketHandle socket, int name) {
  timeval time{};
  socklen_t size = sizeof time;
  getsockopt(socket, SOL_SOCKET, name, &time, &size);
  return static_cast<uint32_t>(time.tv_sec * 1000 + time.tv_usec / 1000);
}

bool ClosesAbortively(SocketHandle socket) {
  linger setting{};
  socklen_t size = sizeof setting;
  return getsockopt(socket, SOL_SOCKET, SO_LINGER, &setting, &size) == 0 && setting.l_onoff != 0 &&
         setting.l_linger == 0;
}

// A signal must not stretch the wait, so every round starts from what is left of the time.
int WaitFor(SocketHandle socket, short events, int64_t timeout_us) {
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + std::chrono::microseconds(timeout_us);
  pollfd entry{socket, events, 0};
  while (true) {
    timespec left{};
    left.tv_sec = timeout_us / 1000000;
    left.tv_nsec = (timeout_us % 1000000) * 1000;
    const int ready = ppoll(&entry, 1, &left, nullptr);
    if (ready >= 0 || errno != EINTR) {
      return ready;
    }
    const auto rest = deadline - Clock::now();
    timeout_us = std::chrono::duration_cast<std::chrono::microseconds>(rest).count();
    if (timeout_us <= 0) {
      return 0;
    }
  }
}

sigset_t BrokenPipeSet() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGPIPE);
  return set;
}

bool IsBrokenPipePending() {
  sigset_t pending;
  sigemptyset(&pending);
  sigpending(&pending);
  return sigismember(&pending, SIGPIPE) == 1;
}

}  // namespace

bool StartSockets() { return true; }

void StopSockets() {}

int LastSocketError() { return errno; }

void ClearSocketError() { errno = 0; }

std::string SocketErrorText(int error) { return std::generic_category().message(error); }

SocketHandle CreateSocket(int type, int protocol) {
  return socket(AF_INET, type | SOCK_CLOEXEC, protocol);
}

void CloseSocket(SocketHandle socket) {
  if (socket != kInvalidSocket) {
    close(socket);
  }
}

void ShutdownSocket(SocketHandle socket) {
  shutdown(socket, ClosesAbortively(socket) ? SHUT_RD : SHUT_RDWR);
}

bool SetNonBlocking(SocketHandle socket, bool non_blocking) {
  const int flags = fcntl(socket, F_GETFL, 0);
  if (flags == -1) {
    return false;
  }
  return fcntl(socket, F_SETFL, non_blocking ? flags | O_NONBLOCK : flags & ~O_NONBLOCK) == 0;
}

int SetReceiveTimeoutMs(SocketHandle socket, uint32_t ms) {
  return SetTimeoutOption(socket, SO_RCVTIMEO, ms);
}

int SetSendTimeoutMs(SocketHandle socket, uint32_t ms) {
  return SetTimeoutOption(socket, SO_SNDTIMEO, ms);
}

uint32_t ReceiveTimeoutMs(SocketHandle socket) { return TimeoutOption(socket, SO_RCVTIMEO); }

uint32_t SendTimeoutMs(SocketHandle socket) { return TimeoutOption(socket, SO_SNDTIMEO); }

bool SetSocketOption(SocketHandle socket, int level, int name, int value) {
  return setsockopt(socket, level, name, &value, sizeof value) == 0;
}

bool GetSocketOption(SocketHandle socket, int level, int name, int* value) {
  socklen_t size = sizeof *value;
  return getsockopt(socket, level, name, value, &size) == 0;
}

bool SetReusablePort(SocketHandle socket) {
  return SetSocketOption(socket, SOL_SOCKET, SO_REUSEADDR, 1);
}

bool SetAbortiveClose(SocketHandle socket) {
  const linger reset{1, 0};
  return setsockopt(socket, SOL_SOCKET, SO_LINGER, &reset, sizeof reset) == 0;
}

int SendBytes(SocketHandle socket, const void* data, size_t size, int flags) {
  ssize_t sent = 0;
  do {
    sent = send(socket, data, size, flags | MSG_NOSIGNAL);
  } while (sent == -1 && errno == EINTR);
  return static_cast<int>(sent);
}

int ReceiveBytes(SocketHandle socket, void* buffer, size_t size, int flags) {
  ssize_t received = 0;
  do {
    received = recv(socket, buffer, size, flags);
  } while (received == -1 && errno == EINTR);
  return static_cast<int>(received);
}

int ReceivePacket(SocketHandle socket, void* buffer, size_t size, int flags, sockaddr_in* sender) {
  socklen_t sender_size = sizeof *sender;
  return static_cast<int>(
      recvfrom(socket, buffer, size, flags, reinterpret_cast<sockaddr*>(sender), &sender_size));
}

int ReceiveWithoutWaiting(SocketHandle socket, void* buffer, size_t size, PollFault* fault) {
  *fault = PollFault::kNone;
  return ReceiveBytes(socket, buffer, size, MSG_DONTWAIT);
}

int WaitReadable(SocketHandle socket, int64_t timeout_us) {
  return WaitFor(socket, POLLIN, timeout_us);
}

int WaitWritable(SocketHandle socket, int64_t timeout_us) {
  return WaitFor(socket, POLLOUT, timeout_us);
}

bool MakeAddress(const std::string& ip, uint16_t port, sockaddr_in* address) {
  *address = {};
  address->sin_family = AF_INET;
  address->sin_port = htons(port);
  return inet_pton(AF_INET, ip.c_str(), &address->sin_addr) == 1;
}

BrokenPipeGuard::BrokenPipeGuard() {
  // One that is pending already belongs to somebody else and stays pending.
  if (IsBrokenPipePending()) {
    return;
  }
  const sigset_t broken_pipe = BrokenPipeSet();
  sigset_t previous;
  pthread_sigmask(SIG_BLOCK, &broken_pipe, &previous);
  blocked_here_ = sigismember(&previous, SIGPIPE) == 0;
}

BrokenPipeGuard::~BrokenPipeGuard() {
  if (!blocked_here_) {
    return;
  }
  const sigset_t broken_pipe = BrokenPipeSet();
  const timespec no_wait{};
  while (sigtimedwait(&broken_pipe, nullptr, &no_wait) == -1 && errno == EINTR) {
  }
  pthread_sigmask(SIG_UNBLOCK, &broken_pipe, nullptr);
}

}  // namespace kavel::lidar
