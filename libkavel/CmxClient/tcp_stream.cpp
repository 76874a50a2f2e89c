#include "CmxClient/tcp_stream.h"

#include <algorithm>
#include <chrono>
#include <cstring>

#include "Log/logger.h"

namespace kavel::lidar {
namespace {

/// How soon an interruption is noticed while connecting.
constexpr int64_t kInterruptionCheckUs = 50000;

int StartConnecting(SocketHandle socket, const sockaddr_in& address) {
  if (!SetNonBlocking(socket, true)) {
    return LastSocketError();
  }
  const auto* generic = reinterpret_cast<const sockaddr*>(&address);
  return connect(socket, generic, sizeof address) == 0 ? 0 : LastSocketError();
}

// A free port of this machine, tried again and again, is one day given to the trying socket itself,
// which then connects to itself. That is no lidar.
bool IsConnectedToItself(SocketHandle socket) {
  sockaddr_in here{};
  sockaddr_in there{};
  socklen_t here_size = sizeof here;
  socklen_t there_size = sizeof there;
  if (getsockname(socket, reinterpret_cast<sockaddr*>(&here), &here_size) != 0 ||
      getpeername(socket, reinterpret_cast<sockaddr*>(&there), &there_size) != 0) {
    return false;
  }
  return here.sin_port == there.sin_port && here.sin_addr.s_addr == there.sin_addr.s_addr;
}

int FinishConnecting(SocketHandle socket, int64_t timeout_us,
                     const std::atomic<bool>* interrupted) {
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + std::chrono::microseconds(timeout_us);
  while (interrupted == nullptr || !interrupted->load()) {
    const auto left =
        std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now());
    const int64_t wait_us = std::clamp<int64_t>(left.count(), 0, kInterruptionCheckUs);
    const int ready = WaitWritable(socket, wait_us);
    if (ready == -1) {
      return LastSocketError();
    }
    if (ready > 0) {
      int error = 0;
      if (!GetSocketOption(socket, SOL_SOCKET, SO_ERROR, &error)) {
        return LastSocketError();
      }
      return error == 0 && IsConnectedToItself(socket) ? kSocketInProgress : error;
    }
    if (left.count() <= 0) {
      break;
    }
  }
  return kSocketInProgress;
}

bool BindLocalPort(SocketHandle socket, uint16_t host_port) {
  if (!SetSocketOption(socket, SOL_SOCKET, SO_REUSEADDR, 1)) {
    KAVEL_LOG(kError, "setsockopt SO_REUSEADDR failed, WSAGetLastError:%d", LastSocketError());
  }
  if (!SetAbortiveClose(socket)) {
    KAVEL_LOG(kError, "setsockopt SO_LINGER failed, WSAGetLastError:%d", LastSocketError());
  }
  sockaddr_in local{};
  local.sin_family = AF_INET;
  local.sin_addr.s_addr = htonl(INADDR_ANY);
  local.sin_port = htons(host_port);
  return bind(socket, reinterpret_cast<const sockaddr*>(&local), sizeof local) == 0;
}

std::string BindFailureText(uint16_t host_port, int error) {
  const std::string port = "Local port " + std::to_string(host_port);
  if (error == kSocketAddressInUse) {
    return port + " is in use by another program. Choose another host port or \"ANY\".";
  }
  return port + " cannot be used: " + SocketErrorText(error) +
         ". Choose another host port or \"ANY\".";
}

}  // namespace

bool IsPending(int error) { return error == kSocketInProgress || error == kSocketWouldBlock; }

SocketHandle CreateStream() {
  const SocketHandle socket = CreateSocket(SOCK_STREAM, IPPROTO_TCP);
  if (socket != kInvalidSocket) {
    // Without it a frame waits up to 40 ms for the acknowledgement of the one before.
    SetSocketOption(socket, IPPROTO_TCP, TCP_NODELAY, 1);
  }
  return socket;
}

int ConnectWithin(SocketHandle socket, const sockaddr_in& address, int64_t timeout_us,
                  const std::atomic<bool>* interrupted) {
  int error = StartConnecting(socket, address);
  if (error == 0 || IsPending(error)) {
    error = FinishConnecting(socket, timeout_us, interrupted);
  }
  SetNonBlocking(socket, false);
  return error;
}

SocketHandle TryConnect(uint16_t host_port, const std::string& ip, uint16_t port,
                        uint32_t timeout_s, BindFailure on_bind_failure,
                        const std::atomic<bool>* interrupted, std::string* failure) {
  if (!StartSockets()) {
    KAVEL_LOG(kError, "Initilize winsock error !");
    return kInvalidSocket;
  }
  const SocketHandle socket = CreateStream();
  const auto give_up = [socket] {
    CloseSocket(socket);
    StopSockets();
    return kInvalidSocket;
  };
  if (socket == kInvalidSocket) {
    return give_up();
  }
  if (host_port != 0 && !BindLocalPort(socket, host_port)) {
    const int error = LastSocketError();
    if (failure != nullptr) {
      *failure = BindFailureText(host_port, error);
    }
    if (on_bind_failure == BindFailure::kEndsAttempt) {
      KAVEL_LOG(kError, "Failed to bind local port %u, WSAGetLastError:%d", unsigned{host_port},
                error);
      return give_up();
    }
    KAVEL_LOG(kError, "Failed to bind local port, system will auto assign one");
  }
  sockaddr_in address{};
  if (!MakeAddress(ip, port, &address)) {
    const SocketHandle none = give_up();
    KAVEL_LOG(kError, "TryOpen inet_pton error:%s", ip.c_str());
    return none;
  }
  const int start_error = StartConnecting(socket, address);
  if (start_error != 0 && !IsPending(start_error)) {
    KAVEL_LOG(kError, "socket Connection error.");
    // A port may be bound by several, but only one of them can be connected to one lidar.
    if (host_port != 0 && start_error == kSocketAddressTaken && failure != nullptr) {
      *failure = BindFailureText(host_port, kSocketAddressInUse);
    }
    return give_up();
  }
  if (FinishConnecting(socket, int64_t{timeout_s} * 1000000, interrupted) != 0) {
    return give_up();
  }
  KAVEL_LOG(kInfo, "TryOpen succeed, IP %s port %u", ip.c_str(), unsigned{port});
  SetNonBlocking(socket, false);
  return socket;
}

StreamSocket::~StreamSocket() { Close(); }

bool StreamSocket::Adopt(SocketHandle socket) {
  Close();
  const std::lock_guard<std::mutex> lock(mutex_);
  handle_ = socket;
  ApplyTimeouts();
  GrowReceiveBuffer();
  if (!interrupted_) {
    return true;
  }
  CloseSocket(handle_);
  StopSockets();
  handle_ = kInvalidSocket;
  return false;
}

void StreamSocket::ApplyTimeouts() {
  SetReceiveTimeoutMs(handle_, recv_timeout_ms_);
  SetSendTimeoutMs(handle_, send_timeout_ms_);
}

void StreamSocket::Close() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (IsConnected()) {
    CloseSocket(handle_);
    StopSockets();
    handle_ = kInvalidSocket;
  }
}

void StreamSocket::Interrupt() {
  const std::lock_guard<std::mutex> lock(mutex_);
  interrupted_ = true;
  if (IsConnected()) {
    ShutdownSocket(handle_);
  }
}

int32_t StreamSocket::SetTimeout(uint32_t recv_ms, uint32_t send_ms) {
  if (!IsConnected()) {
    KAVEL_LOG(kWarning, "TcpClient not open");
    return -1;
  }
  recv_timeout_ms_ = recv_ms;
  send_timeout_ms_ = send_ms;
  const int result = SetReceiveTimeoutMs(handle_, recv_ms);
  return result != 0 ? result : SetSendTimeoutMs(handle_, send_ms);
}

bool StreamSocket::SetReceiveTimeout(uint32_t ms) {
  if (!IsConnected()) {
    KAVEL_LOG(kWarning, "TcpClient not open");
    return false;
  }
  return SetReceiveTimeoutMs(handle_, ms) == 0;
}

void StreamSocket::SetReceiveBufferSize(uint32_t bytes) {
  if (!IsConnected()) {
    KAVEL_LOG(kWarning, "TcpClient not open");
    return;
  }
  receive_buffer_size_ = bytes;
  GrowReceiveBuffer();
}

void StreamSocket::GrowReceiveBuffer() {
  int current = 0;
  const auto wanted = static_cast<int>(std::min<uint32_t>(receive_buffer_size_, INT32_MAX));
  if (GetSocketOption(handle_, SOL_SOCKET, SO_RCVBUF, &current) && current < wanted) {
    SetSocketOption(handle_, SOL_SOCKET, SO_RCVBUF, wanted);
  }
}

bool StreamSocket::IsConnected() const { return handle_ != kInvalidSocket; }

}  // namespace kavel::lidar
