#include "CmxClient/tcp_client.h"

#include <cerrno>
#include <chrono>
#include <iostream>

#include "Log/logger.h"

namespace kavel::lidar {
namespace {

constexpr int64_t kPlainOpenLimitUs = 5000000;
constexpr int64_t kLongReceiveUs = 1000000;

}  // namespace

bool TcpClient::Open(const std::string& ip, uint16_t port, bool /*auto_receive*/,
                     const char* /*cert*/, const char* /*private_key*/, const char* /*ca*/) {
  if (IsOpened() && ip == lidar_ip_ && port == lidar_port_) {
    return true;
  }
  KAVEL_LOG(kInfo, "Open() IP %s port %u", ip.c_str(), unsigned{port});
  Close();
  lidar_ip_ = ip;
  lidar_port_ = port;
  return PlainOpen();
}

bool TcpClient::PlainOpen() {
  if (!StartSockets()) {
    std::cerr << "Initilize winsock error !";
    return false;
  }
  const SocketHandle socket = CreateStream();
  const auto give_up = [socket] {
    CloseSocket(socket);
    StopSockets();
  };
  if (socket == kInvalidSocket) {
    StopSockets();
    return false;
  }
  sockaddr_in address{};
  if (!MakeAddress(lidar_ip_, lidar_port_, &address)) {
    give_up();
    KAVEL_LOG(kError, "Open inet_pton error:%s", lidar_ip_.c_str());
    return false;
  }
  const int error = ConnectWithin(socket, address, kPlainOpenLimitUs, &socket_.interrupted());
  if (error != 0) {
    if (!IsPending(error)) {
      KAVEL_LOG(kError, "connect failed %d", error);
    }
    if (error == kSocketInProgress) {
      KAVEL_LOG(kWarning, "connect lidar time out");
    }
    give_up();
    KAVEL_LOG(kError, "connect lidar fail errno %d", error);
    return false;
  }
  if (!socket_.Adopt(socket)) {
    return false;
  }
  // The blank at the start is meant: log readers look for it.
  KAVEL_LOG(kInfo, " succeed, IP %s port %u", lidar_ip_.c_str(), unsigned{lidar_port_});
  opened_ = 1;
  return true;
}

bool TcpClient::TryOpen(uint16_t host_port, const std::string& ip, uint16_t port,
                        bool /*auto_receive*/, const char* /*cert*/, const char* /*private_key*/,
                        const char* /*ca*/, uint32_t timeout_s) {
  if (IsOpened()) {
    if (ip == lidar_ip_ && port == lidar_port_) {
      return true;
    }
    Close();
  }
  lidar_ip_ = ip;
  lidar_port_ = port;
  std::string failure;
  const SocketHandle socket = TryConnect(host_port, ip, port, timeout_s, BindFailure::kEndsAttempt,
                                         &socket_.interrupted(), &failure);
  {
    const std::lock_guard<std::mutex> lock(failure_mutex_);
    open_failure_ = failure;
  }
  if (socket == kInvalidSocket || !socket_.Adopt(socket)) {
    return false;
  }
  opened_ = 1;
  return true;
}

void TcpClient::Close() {
  opened_ = 0;
  socket_.Close();
}

bool TcpClient::IsOpened() { return opened_ != 0 && !socket_.interrupted(); }

bool TcpClient::EnsureOpen() { return IsOpened() || (!socket_.interrupted() && PlainOpen()); }

int32_t TcpClient::Send(uint8_t* data, uint16_t length, int32_t flags) {
  if (!EnsureOpen()) {
    return -1;
  }
  errno = 0;  // a short send sets no error, and an older one must not speak for it
  const int sent = SendBytes(socket_.handle(), data, length, flags);
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

int32_t TcpClient::Receive(uint8_t* buffer, uint32_t length, int32_t flags) {
  if (!EnsureOpen()) {
    return -1;
  }
  if (flags == kPoll) {
    return Poll(buffer, length);
  }
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const int received = ReceiveBytes(socket_.handle(), buffer, length, flags);
  const int error = received == -1 ? LastSocketError() : 0;
  if (received == 0) {
    KAVEL_LOG(kError, "Connection closed by peer, recv returned 0");
  } else if (received == -1 && error != kSocketWouldBlock && error != kSocketTimedOut) {
    KAVEL_LOG(kError, "Receive failed, WSA error: %d", error);
  }
  const auto took = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
  if (took.count() >= kLongReceiveUs) {
    KAVEL_LOG(kTrace, "Receive executed: %uus", static_cast<unsigned>(took.count()));
  }
  return received;
}

int32_t TcpClient::Poll(uint8_t* buffer, uint32_t length) {
  PollFault fault = PollFault::kNone;
  const int received = ReceiveWithoutWaiting(socket_.handle(), buffer, length, &fault);
  if (fault == PollFault::kCannotEnter) {
    KAVEL_LOG(kError, "Failed to set non-blocking mode");
  } else if (fault == PollFault::kCannotLeave) {
    KAVEL_LOG(kError, "Failed to restore original socket mode");
  }
  return received;
}

bool TcpClient::SetReceiveTimeout(uint32_t ms) { return socket_.SetReceiveTimeout(ms); }

int32_t TcpClient::SetTimeout(uint32_t recv_ms, uint32_t send_ms) {
  return socket_.SetTimeout(recv_ms, send_ms);
}

void TcpClient::SetReceiveBufferSize(const uint32_t& bytes) { socket_.SetReceiveBufferSize(bytes); }

void TcpClient::Interrupt() { socket_.Interrupt(); }

std::string TcpClient::OpenFailure() {
  const std::lock_guard<std::mutex> lock(failure_mutex_);
  return open_failure_;
}

}  // namespace kavel::lidar
