#include "CmxClient/tcp_client.h"

#include <iostream>
#include <utility>

#include "Log/logger.h"

namespace kavel::lidar {
namespace {

constexpr int64_t kPlainOpenLimitUs = 5000000;

void LogFailure(const ConnectResult& result, const std::string& ip) {
  switch (result.stage) {
    case ConnectStage::kSockets:
      std::cerr << "Initilize winsock error !";
      return;
    case ConnectStage::kCreate:
      return;
    case ConnectStage::kAddress:
      KAVEL_LOG(kError, "Open inet_pton error:%s", ip.c_str());
      return;
    default:
      break;
  }
  if (!IsPending(result.error)) {
    KAVEL_LOG(kError, "connect failed %d", result.error);
  }
  if (result.error == kSocketInProgress) {
    KAVEL_LOG(kWarning, "connect lidar time out");
  }
  KAVEL_LOG(kError, "connect lidar fail errno %d", result.error);
}

}  // namespace

bool TcpClient::OpenPlainly() {
  StreamRequest request;
  request.ip = target().ip;
  request.port = target().port;
  request.timeout_us = kPlainOpenLimitUs;
  ConnectResult result = Connect(request, &interrupted());
  if (!result.socket) {
    LogFailure(result, request.ip);
    return false;
  }
  if (!Adopt(std::move(result.socket))) {
    return false;
  }
  // The blank at the start is meant: log readers look for it.
  KAVEL_LOG(kInfo, " succeed, IP %s port %u", request.ip.c_str(), unsigned{request.port});
  MarkOpen();
  return true;
}

bool TcpClient::OpenWithin(uint16_t host_port, uint32_t timeout_s) {
  StreamRequest request;
  request.ip = target().ip;
  request.port = target().port;
  request.host_port = host_port;
  request.timeout_us = int64_t{timeout_s} * 1000000;
  std::string failure;
  UniqueSocket socket = TryConnect(request, &interrupted(), &failure);
  {
    const std::lock_guard<std::mutex> lock(failure_mutex_);
    open_failure_ = failure;
  }
  if (!socket || !Adopt(std::move(socket))) {
    return false;
  }
  MarkOpen();
  return true;
}

int32_t TcpClient::Write(const uint8_t* data, uint16_t length, int32_t flags) {
  return SendBytes(handle(), data, length, flags);
}

int32_t TcpClient::Read(uint8_t* buffer, uint32_t length, int32_t flags) {
  const int received = ReceiveBytes(handle(), buffer, length, flags);
  const int error = received == -1 ? LastSocketError() : 0;
  if (received == 0) {
    KAVEL_LOG(kError, "Connection closed by peer, recv returned 0");
  } else if (received == -1 && error != kSocketWouldBlock && error != kSocketTimedOut) {
    KAVEL_LOG(kError, "Receive failed, WSA error: %d", error);
  }
  return received;
}

int32_t TcpClient::Poll(uint8_t* buffer, uint32_t length) {
  if (!EnsureOpen()) {
    return -1;
  }
  PollFault fault = PollFault::kNone;
  const int received = ReceiveWithoutWaiting(handle(), buffer, length, &fault);
  if (fault == PollFault::kCannotEnter) {
    KAVEL_LOG(kError, "Failed to set non-blocking mode");
  } else if (fault == PollFault::kCannotLeave) {
    KAVEL_LOG(kError, "Failed to restore original socket mode");
  }
  return received;
}

std::string TcpClient::OpenFailure() {
  const std::lock_guard<std::mutex> lock(failure_mutex_);
  return open_failure_;
}

}  // namespace kavel::lidar
