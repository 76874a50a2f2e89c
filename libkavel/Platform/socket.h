#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <cerrno>
#endif

/// The system's sockets behind one set of calls. Nothing here logs or throws; where a call can
/// fail, `LastSocketError` on the same thread tells why.
namespace kavel::lidar {

#ifdef _WIN32
using SocketHandle = SOCKET;
constexpr int kSocketInProgress = WSAEWOULDBLOCK;
constexpr int kSocketWouldBlock = WSAEWOULDBLOCK;
constexpr int kSocketTryAgain = WSAETIMEDOUT;
constexpr int kSocketInterrupted = WSAEINTR;
constexpr int kSocketTimedOut = WSAETIMEDOUT;
constexpr int kSocketAddressInUse = WSAEADDRINUSE;
constexpr int kSocketAddressTaken = WSAEADDRINUSE;
constexpr int kSocketNoAddress = WSAEADDRNOTAVAIL;
constexpr int kSocketRefused = WSAECONNREFUSED;
constexpr int kSocketNoNetwork = WSAENETUNREACH;
constexpr int kSocketNoHost = WSAEHOSTUNREACH;
#else
using SocketHandle = int;
constexpr int kSocketInProgress = EINPROGRESS;
constexpr int kSocketWouldBlock = EWOULDBLOCK;
constexpr int kSocketTryAgain = EAGAIN;
constexpr int kSocketInterrupted = EINTR;
constexpr int kSocketTimedOut = ETIMEDOUT;
constexpr int kSocketAddressInUse = EADDRINUSE;
constexpr int kSocketAddressTaken = EADDRNOTAVAIL;
constexpr int kSocketNoAddress = EADDRNOTAVAIL;
constexpr int kSocketRefused = ECONNREFUSED;
constexpr int kSocketNoNetwork = ENETUNREACH;
constexpr int kSocketNoHost = EHOSTUNREACH;
#endif
constexpr SocketHandle kInvalidSocket = static_cast<SocketHandle>(-1);

/// Every successful start is paired with one stop. Both do nothing where the system needs neither.
bool StartSockets();
void StopSockets();

int LastSocketError();
/// For calls that may fail without setting one: an older error must not speak for them.
void ClearSocketError();
std::string SocketErrorText(int error);

/// An IPv4 socket that no child process inherits, or `kInvalidSocket`. A datagram socket hears
/// nothing of packets that it sent in vain.
SocketHandle CreateSocket(int type, int protocol);

/// Ignores `kInvalidSocket`.
void CloseSocket(SocketHandle socket);

/// Whatever waits on the socket, on any thread, returns. The handle stays. The peer is told that
/// nothing follows, except after `SetAbortiveClose`: an orderly end would hold the local port, so
/// there the peer hears of it when the socket is closed, and a send ends with its time-out.
void ShutdownSocket(SocketHandle socket);

bool SetNonBlocking(SocketHandle socket, bool non_blocking);

/// 0 waits for ever. Returns what the system's call returned: 0, or -1 on failure.
int SetReceiveTimeoutMs(SocketHandle socket, uint32_t ms);
int SetSendTimeoutMs(SocketHandle socket, uint32_t ms);
uint32_t ReceiveTimeoutMs(SocketHandle socket);
uint32_t SendTimeoutMs(SocketHandle socket);

/// Options whose value is an int.
bool SetSocketOption(SocketHandle socket, int level, int name, int value);
bool GetSocketOption(SocketHandle socket, int level, int name, int* value);

/// The socket may be bound to a local port whose last connection ended a moment ago. On Windows it
/// may be without being asked; the option of that name would let it take a port in use.
bool SetReusablePort(SocketHandle socket);

/// Closing will reset the connection instead of lingering, so that its local port is free at once.
bool SetAbortiveClose(SocketHandle socket);

/// Sends without ever raising a broken-pipe signal. Returns the count or -1.
int SendBytes(SocketHandle socket, const void* data, size_t size, int flags);

/// One receive, restarted when a signal interrupts it. Returns the count, 0 at the end, or -1.
int ReceiveBytes(SocketHandle socket, void* buffer, size_t size, int flags);

/// One packet, as `ReceiveBytes`; what does not fit is lost. `*sender` is where it comes from.
int ReceivePacket(SocketHandle socket, void* buffer, size_t size, int flags, sockaddr_in* sender);

/// What can go wrong around a receive that must not wait.
enum class PollFault { kNone, kCannotEnter, kCannotLeave };

/// One receive that takes what is there and never waits, whatever mode the socket is in. Systems
/// without such a flag switch the mode there and back, which can fail: see `fault`.
int ReceiveWithoutWaiting(SocketHandle socket, void* buffer, size_t size, PollFault* fault);

/// Waits for at most `timeout_us` microseconds. 1: ready (or broken, which the next call tells),
/// 0: not within the time, -1: failed.
int WaitReadable(SocketHandle socket, int64_t timeout_us);
int WaitWritable(SocketHandle socket, int64_t timeout_us);

/// An IPv4 address in dotted text and a port in host order; false when the text is no address.
bool MakeAddress(const std::string& ip, uint16_t port, sockaddr_in* address);

/// A socket that is closed with its owner.
class UniqueSocket {
 public:
  /// None.
  UniqueSocket() = default;

  /// Starts the system's sockets and makes one. On failure there is none, and `LastSocketError`
  /// tells why.
  UniqueSocket(int type, int protocol) : started_(StartSockets()) {
    if (started_) {
      handle_ = CreateSocket(type, protocol);
    }
  }

  /// Takes over what `Release` gave away.
  static UniqueSocket Owning(SocketHandle handle) {
    UniqueSocket socket;
    socket.handle_ = handle;
    socket.started_ = handle != kInvalidSocket;
    return socket;
  }

  ~UniqueSocket() { Reset(); }
  UniqueSocket(UniqueSocket&& other) noexcept
      : handle_(std::exchange(other.handle_, kInvalidSocket)),
        started_(std::exchange(other.started_, false)) {}
  UniqueSocket& operator=(UniqueSocket&& other) noexcept {
    std::swap(handle_, other.handle_);
    std::swap(started_, other.started_);
    return *this;
  }

  explicit operator bool() const { return handle_ != kInvalidSocket; }
  SocketHandle handle() const { return handle_; }
  /// Whether the system's sockets could be started.
  bool started() const { return started_; }

  void Reset() {
    CloseSocket(std::exchange(handle_, kInvalidSocket));
    if (std::exchange(started_, false)) {
      StopSockets();
    }
  }

  /// Gives the handle away: who takes it closes it, with `StopSockets` after it.
  SocketHandle Release() {
    started_ = false;
    return std::exchange(handle_, kInvalidSocket);
  }

 private:
  SocketHandle handle_ = kInvalidSocket;
  bool started_ = false;
};

/// While it lives, a write to a broken connection does not end the program. For writes that happen
/// inside other libraries; `SendBytes` does not need it. To be destroyed on the thread that made
/// it.
class BrokenPipeGuard {
 public:
  BrokenPipeGuard();
  ~BrokenPipeGuard();
  BrokenPipeGuard(const BrokenPipeGuard&) = delete;
  BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;

 private:
  bool blocked_here_ = false;
};

}  // namespace kavel::lidar
