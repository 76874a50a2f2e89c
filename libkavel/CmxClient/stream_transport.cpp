#include "CmxClient/stream_transport.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "Log/logger.h"

namespace kavel::lidar {
namespace {

constexpr int64_t kSlowReceiveUs = 1000000;

std::string TextOf(const char* path) { return path != nullptr ? path : ""; }

}  // namespace

bool StreamTransport::Open(const std::string& ip, uint16_t port, bool /*auto_receive*/,
                           const char* cert, const char* private_key, const char* ca) {
  if (IsOpenTo(ip, port)) {
    return true;
  }
  KAVEL_LOG(kInfo, "Open() IP %s port %u", ip.c_str(), unsigned{port});
  Close();
  target_ = {ip, port, TextOf(cert), TextOf(private_key), TextOf(ca)};
  return OpenPlainly();
}

bool StreamTransport::TryOpen(uint16_t host_port, const std::string& ip, uint16_t port,
                              bool /*auto_receive*/, const char* cert, const char* private_key,
                              const char* ca, uint32_t timeout_s) {
  if (IsOpenTo(ip, port)) {
    return true;
  }
  Close();
  target_ = {ip, port, TextOf(cert), TextOf(private_key), TextOf(ca)};
  return OpenWithin(host_port, timeout_s);
}

bool StreamTransport::IsOpenTo(const std::string& ip, uint16_t port) {
  return IsOpened() && ip == target_.ip && port == target_.port;
}

bool StreamTransport::Adopt(UniqueSocket socket) {
  const std::lock_guard<std::mutex> lock(socket_mutex_);
  socket_ = std::move(socket);
  SetReceiveTimeoutMs(handle(), recv_timeout_ms_);
  SetSendTimeoutMs(handle(), send_timeout_ms_);
  GrowReceiveBuffer();
  if (interrupted_) {
    socket_.Reset();
  }
  return HasSocket();
}

void StreamTransport::Close() {
  opened_ = 0;
  const std::lock_guard<std::mutex> lock(socket_mutex_);
  socket_.Reset();
}

void StreamTransport::Interrupt() {
  const std::lock_guard<std::mutex> lock(socket_mutex_);
  interrupted_ = true;
  if (HasSocket()) {
    ShutdownSocket(handle());
  }
}

bool StreamTransport::IsOpened() { return opened_ != 0 && !interrupted_; }

bool StreamTransport::EnsureOpen() { return IsOpened() || (!interrupted_ && OpenPlainly()); }

int32_t StreamTransport::Send(uint8_t* data, uint16_t length, int32_t flags) {
  if (!EnsureOpen()) {
    return -1;
  }
  ClearSocketError();  // a short send sets none
  const int32_t sent = Write(data, length, flags);
  if (sent == length) {
    return sent;
  }
  const int error = LastSocketError();
  const bool silent =
      error == kSocketInterrupted || error == kSocketTryAgain || error == kSocketWouldBlock;
  if (!silent) {
    KAVEL_LOG(kError, "Send errno %d", error);
  }
  return sent;
}

int32_t StreamTransport::Receive(uint8_t* buffer, uint32_t length, int32_t flags) {
  if (flags == kPoll) {
    return Poll(buffer, length);
  }
  if (!EnsureOpen()) {
    return -1;
  }
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const int32_t received = Read(buffer, length, flags);
  const auto took = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
  if (took.count() >= kSlowReceiveUs) {
    KAVEL_LOG(kTrace, "%s: %uus", SlowReceiveText(), static_cast<unsigned>(took.count()));
  }
  return received;
}

int32_t StreamTransport::SetTimeout(uint32_t recv_ms, uint32_t send_ms) {
  if (!HasSocket()) {
    KAVEL_LOG(kWarning, "TcpClient not open");
    return -1;
  }
  recv_timeout_ms_ = recv_ms;
  send_timeout_ms_ = send_ms;
  const int result = SetReceiveTimeoutMs(handle(), recv_ms);
  return result != 0 ? result : SetSendTimeoutMs(handle(), send_ms);
}

bool StreamTransport::SetReceiveTimeout(uint32_t ms) {
  if (!HasSocket()) {
    KAVEL_LOG(kWarning, "TcpClient not open");
    return false;
  }
  return SetReceiveTimeoutMs(handle(), ms) == 0;
}

void StreamTransport::SetReceiveBufferSize(const uint32_t& bytes) {
  if (!HasSocket()) {
    KAVEL_LOG(kWarning, "TcpClient not open");
    return;
  }
  receive_buffer_size_ = bytes;
  GrowReceiveBuffer();
}

void StreamTransport::GrowReceiveBuffer() {
  int current = 0;
  const auto wanted = static_cast<int>(std::min<uint32_t>(receive_buffer_size_, INT32_MAX));
  if (GetSocketOption(handle(), SOL_SOCKET, SO_RCVBUF, &current) && current < wanted) {
    SetSocketOption(handle(), SOL_SOCKET, SO_RCVBUF, wanted);
  }
}

bool StreamTransport::HasSocket() const { return static_cast<bool>(socket_); }

}  // namespace kavel::lidar
