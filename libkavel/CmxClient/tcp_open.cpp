#include "CmxClient/tcp_open.h"

#include "CmxClient/tcp_stream.h"
#include "Log/logger.h"

namespace kavel::lidar {
namespace {

/// Longer than any system keeps trying, so that the system's own limit decides.
constexpr int64_t kSystemDecidesUs = int64_t{600} * 1000000;

void LogFailure(const ConnectResult& result, const char* ip) {
  const std::string reason = SocketErrorText(result.error);
  switch (result.stage) {
    case ConnectStage::kSockets:
      KAVEL_LOG(kError, "Initilize winsock error !");
      break;
    case ConnectStage::kCreate:
      KAVEL_LOG(kError, "socket errno:%d, %s", result.error, reason.c_str());
      break;
    case ConnectStage::kAddress:
      KAVEL_LOG(kError, "tcp_open inet_pton error:%s", ip);
      break;
    default:
      KAVEL_LOG(kError, "connect errno:%d, %s", result.error, reason.c_str());
  }
}

}  // namespace

int tcp_open(const char* ip, int port, const std::atomic<bool>* interrupted) {
  KAVEL_LOG(kInfo, "ip:%s port:%d", ip, port);
  StreamRequest request;
  request.ip = ip;
  request.port = static_cast<uint16_t>(port);
  request.timeout_us = kSystemDecidesUs;
  ConnectResult result = Connect(request, interrupted);
  if (!result.socket) {
    LogFailure(result, ip);
  }
  return static_cast<int>(result.socket.Release());
}

int tcp_try_open(uint16_t host_port, const char* ip, int port, uint32_t timeout_s,
                 const std::atomic<bool>* interrupted) {
  StreamRequest request;
  request.ip = ip;
  request.port = static_cast<uint16_t>(port);
  request.host_port = host_port;
  request.needs_host_port = false;
  request.timeout_us = int64_t{timeout_s} * 1000000;
  return static_cast<int>(TryConnect(request, interrupted, nullptr).Release());
}

}  // namespace kavel::lidar
