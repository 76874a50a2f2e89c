#include "CmxClient/tcp_stream.h"

#include <algorithm>
#include <chrono>
#include <utility>

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

// 0, or why the port cannot be bound.
int BindLocalPort(SocketHandle socket, uint16_t host_port) {
  if (!SetReusablePort(socket)) {
    KAVEL_LOG(kError, "setsockopt SO_REUSEADDR failed, WSAGetLastError:%d", LastSocketError());
  }
  if (!SetAbortiveClose(socket)) {
    KAVEL_LOG(kError, "setsockopt SO_LINGER failed, WSAGetLastError:%d", LastSocketError());
  }
  sockaddr_in local{};
  local.sin_family = AF_INET;
  local.sin_addr.s_addr = htonl(INADDR_ANY);
  local.sin_port = htons(host_port);
  const auto* generic = reinterpret_cast<const sockaddr*>(&local);
  return bind(socket, generic, sizeof local) == 0 ? 0 : LastSocketError();
}

std::string BindFailureText(uint16_t host_port, int error) {
  const std::string port = "Local port " + std::to_string(host_port);
  if (error == kSocketAddressInUse) {
    return port + " is in use by another program. Choose another host port or \"ANY\".";
  }
  return port + " cannot be used: " + SocketErrorText(error) +
         ". Choose another host port or \"ANY\".";
}

// A port may be bound by several, but only one of them can be connected to one lidar.
int LocalPortFault(const StreamRequest& request, const ConnectResult& result) {
  const bool is_taken = request.host_port != 0 && result.stage == ConnectStage::kStart &&
                        result.error == kSocketAddressTaken;
  return is_taken ? kSocketAddressInUse : result.bind_error;
}

std::string ConnectFailureText(const StreamRequest& request, const ConnectResult& result) {
  const int port_fault = LocalPortFault(request, result);
  if (port_fault != 0) {
    return BindFailureText(request.host_port, port_fault);
  }
  const std::string place = request.ip + ", port " + std::to_string(request.port);
  switch (result.stage) {
    case ConnectStage::kDone:
      return {};
    case ConnectStage::kAddress:
      return "\"" + request.ip + "\" is no IPv4 address.";
    default:
      break;
  }
  if (result.error == kSocketRefused) {
    return place + ": the connection was refused, nothing takes connections there.";
  }
  if (result.error == kSocketNoNetwork || result.error == kSocketNoHost) {
    return place + ": there is no route to this address.";
  }
  if (IsPending(result.error) || result.error == kSocketTimedOut) {
    return place + ": nothing answered.";
  }
  return place + ": " + SocketErrorText(result.error) + '.';
}

void LogTry(const StreamRequest& request, const ConnectResult& result) {
  const unsigned port = request.port;
  const unsigned host_port = request.host_port;
  if (result.bind_error != 0 && result.stage != ConnectStage::kBind) {
    KAVEL_LOG(kError, "Failed to bind local port, system will auto assign one");
  }
  switch (result.stage) {
    case ConnectStage::kSockets:
      KAVEL_LOG(kError, "Initilize winsock error !");
      break;
    case ConnectStage::kBind:
      KAVEL_LOG(kError, "Failed to bind local port %u, WSAGetLastError:%d", host_port,
                result.error);
      break;
    case ConnectStage::kAddress:
      KAVEL_LOG(kError, "TryOpen inet_pton error:%s", request.ip.c_str());
      break;
    case ConnectStage::kStart:
      KAVEL_LOG(kError, "socket Connection error.");
      break;
    case ConnectStage::kDone:
      KAVEL_LOG(kInfo, "TryOpen succeed, IP %s port %u", request.ip.c_str(), port);
      break;
    default:
      break;
  }
}

}  // namespace

bool IsPending(int error) { return error == kSocketInProgress || error == kSocketWouldBlock; }

ConnectResult Connect(const StreamRequest& request, const std::atomic<bool>* interrupted) {
  ConnectResult result;
  const auto end_at = [&result](ConnectStage stage, int error) {
    result.stage = stage;
    result.error = error;
    return std::move(result);
  };
  UniqueSocket socket(SOCK_STREAM, IPPROTO_TCP);
  if (!socket) {
    const int error = LastSocketError();
    return end_at(socket.started() ? ConnectStage::kCreate : ConnectStage::kSockets, error);
  }
  // Without it a frame waits up to 40 ms for the acknowledgement of the one before.
  SetSocketOption(socket.handle(), IPPROTO_TCP, TCP_NODELAY, 1);
  if (request.host_port != 0) {
    result.bind_error = BindLocalPort(socket.handle(), request.host_port);
    if (result.bind_error != 0 && request.needs_host_port) {
      return end_at(ConnectStage::kBind, result.bind_error);
    }
  }
  sockaddr_in address{};
  if (!MakeAddress(request.ip, request.port, &address)) {
    return end_at(ConnectStage::kAddress, 0);
  }
  const int start_error = StartConnecting(socket.handle(), address);
  if (start_error != 0 && !IsPending(start_error)) {
    return end_at(ConnectStage::kStart, start_error);
  }
  const int error = FinishConnecting(socket.handle(), request.timeout_us, interrupted);
  if (error != 0) {
    return end_at(ConnectStage::kConnect, error);
  }
  SetNonBlocking(socket.handle(), false);
  result.socket = std::move(socket);
  return result;
}

UniqueSocket TryConnect(const StreamRequest& request, const std::atomic<bool>* interrupted,
                        std::string* failure) {
  ConnectResult result = Connect(request, interrupted);
  LogTry(request, result);
  if (failure != nullptr) {
    *failure = ConnectFailureText(request, result);
  }
  return std::move(result.socket);
}

}  // namespace kavel::lidar
