#include <mswsock.h>

#include <algorithm>
#include <system_error>

#include "Platform/socket.h"

namespace kavel::lidar {
namespace {

int SetTimeoutOption(SocketHandle socket, int name, uint32_t ms) {
  const DWORD time = ms;
  return setsockopt(socket, SOL_SOCKET, name, reinterpret_cast<const char*>(&time), sizeof time);
}

uint32_t TimeoutOption(SocketHandle socket, int name) {
  DWORD time = 0;
  int size = sizeof time;
  getsockopt(socket, SOL_SOCKET, name, reinterpret_cast<char*>(&time), &size);
  return time;
}

bool ClosesAbortively(SocketHandle socket) {
  linger setting{};
  int size = sizeof setting;
  return getsockopt(socket, SOL_SOCKET, SO_LINGER, reinterpret_cast<char*>(&setting), &size) == 0 &&
         setting.l_onoff != 0 && setting.l_linger == 0;
}

timeval TimeOf(int64_t us) {
  timeval time{};
  time.tv_sec = static_cast<long>(us / 1000000);
  time.tv_usec = static_cast<long>(us % 1000000);
  return time;
}

fd_set SetOf(SocketHandle socket) {
  fd_set set;
  FD_ZERO(&set);
  FD_SET(socket, &set);
  return set;
}

}  // namespace

bool StartSockets() {
  WSADATA data;
  return WSAStartup(MAKEWORD(2, 2), &data) == 0;
}

void StopSockets() { WSACleanup(); }

int LastSocketError() { return WSAGetLastError(); }

void ClearSocketError() { WSASetLastError(0); }

std::string SocketErrorText(int error) { return std::system_category().message(error); }

SocketHandle CreateSocket(int type, int protocol) {
  const SocketHandle socket = WSASocketW(AF_INET, type, protocol, nullptr, 0,
                                         WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
  if (socket != kInvalidSocket && type == SOCK_DGRAM) {
    // Else the next receive would fail with the refusal of a packet that was sent.
    BOOL tells = FALSE;
    DWORD unused = 0;
    WSAIoctl(socket, SIO_UDP_CONNRESET, &tells, sizeof tells, nullptr, 0, &unused, nullptr,
             nullptr);
  }
  return socket;
}

void CloseSocket(SocketHandle socket) {
  if (socket != kInvalidSocket) {
    closesocket(socket);
  }
}

void ShutdownSocket(SocketHandle socket) {
  shutdown(socket, ClosesAbortively(socket) ? SD_RECEIVE : SD_BOTH);
  // A receive that waits already need not notice.
  CancelIoEx(reinterpret_cast<HANDLE>(socket), nullptr);
}

bool SetNonBlocking(SocketHandle socket, bool non_blocking) {
  u_long mode = non_blocking ? 1 : 0;
  return ioctlsocket(socket, FIONBIO, &mode) == 0;
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
  return setsockopt(socket, level, name, reinterpret_cast<const char*>(&value), sizeof value) == 0;
}

bool GetSocketOption(SocketHandle socket, int level, int name, int* value) {
  int size = sizeof *value;
  return getsockopt(socket, level, name, reinterpret_cast<char*>(value), &size) == 0;
}

bool SetReusablePort(SocketHandle /*socket*/) { return true; }

bool SetAbortiveClose(SocketHandle socket) {
  const linger reset{1, 0};
  return setsockopt(socket, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&reset),
                    sizeof reset) == 0;
}

int SendBytes(SocketHandle socket, const void* data, size_t size, int flags) {
  return send(socket, static_cast<const char*>(data), static_cast<int>(size), flags);
}

int ReceiveBytes(SocketHandle socket, void* buffer, size_t size, int flags) {
  return recv(socket, static_cast<char*>(buffer), static_cast<int>(size), flags);
}

int ReceivePacket(SocketHandle socket, void* buffer, size_t size, int flags, sockaddr_in* sender) {
  int sender_size = sizeof *sender;
  const int count = recvfrom(socket, static_cast<char*>(buffer), static_cast<int>(size), flags,
                             reinterpret_cast<sockaddr*>(sender), &sender_size);
  const bool is_cut = count == -1 && WSAGetLastError() == WSAEMSGSIZE;
  return is_cut ? static_cast<int>(size) : count;
}

int ReceiveWithoutWaiting(SocketHandle socket, void* buffer, size_t size, PollFault* fault) {
  *fault = PollFault::kNone;
  if (!SetNonBlocking(socket, true)) {
    *fault = PollFault::kCannotEnter;
    return -1;
  }
  const int received = ReceiveBytes(socket, buffer, size, 0);
  if (!SetNonBlocking(socket, false)) {
    *fault = PollFault::kCannotLeave;
  }
  return received;
}

int WaitReadable(SocketHandle socket, int64_t timeout_us) {
  fd_set readable = SetOf(socket);
  timeval time = TimeOf(timeout_us);
  return select(0, &readable, nullptr, nullptr, &time);
}

int WaitWritable(SocketHandle socket, int64_t timeout_us) {
  fd_set writable = SetOf(socket);
  fd_set failed = SetOf(socket);  // where a connection attempt reports its failure
  timeval time = TimeOf(timeout_us);
  return std::min(1, select(0, nullptr, &writable, &failed, &time));
}

bool MakeAddress(const std::string& ip, uint16_t port, sockaddr_in* address) {
  *address = {};
  address->sin_family = AF_INET;
  address->sin_port = htons(port);
  return inet_pton(AF_INET, ip.c_str(), &address->sin_addr) == 1;
}

// There is no such signal on this system.
BrokenPipeGuard::BrokenPipeGuard() = default;
BrokenPipeGuard::~BrokenPipeGuard() = default;

}  // namespace kavel::lidar
