#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

#include "CmxClient/client_base.h"
#include "CmxClient/tcp_stream.h"

namespace kavel::lidar {

/// What the plain and the encrypted transport have in common: where the lidar is, and the socket,
/// owned in a way that another thread can interrupt. See `ClientBase` for the contract of the
/// overridden operations.
///
/// Time-outs are 500 ms in both directions until they are set. They and the size of the receive
/// buffer are kept across a reconnection.
class StreamTransport : public ClientBase {
 public:
  bool Open(const std::string& ip, uint16_t port, bool auto_receive, const char* cert,
            const char* private_key, const char* ca) override;

  /// A `host_port` other than 0 is free again as soon as the transport is closed, which resets the
  /// connection.
  bool TryOpen(uint16_t host_port, const std::string& ip, uint16_t port, bool auto_receive,
               const char* cert, const char* private_key, const char* ca,
               uint32_t timeout_s) override;

  void Close() override;
  bool IsOpened() override;
  int32_t Send(uint8_t* data, uint16_t length, int32_t flags) override;
  int32_t Receive(uint8_t* buffer, uint32_t length, int32_t flags) override;
  bool SetReceiveTimeout(uint32_t ms) override;
  int32_t SetTimeout(uint32_t recv_ms, uint32_t send_ms) override;
  void SetReceiveBufferSize(const uint32_t& bytes) override;
  void Interrupt() override;

 protected:
  struct Target {
    std::string ip;
    uint16_t port = 0;
    std::string cert, private_key, ca;  ///< paths, "" for none
  };

  /// Connect to the target, adopt the socket and mark the transport open, or say in the log why
  /// not.
  virtual bool OpenPlainly() = 0;
  virtual bool OpenWithin(uint16_t host_port, uint32_t timeout_s) = 0;

  /// On an open transport, as `Send` and `Receive`.
  virtual int32_t Write(const uint8_t* data, uint16_t length, int32_t flags) = 0;
  virtual int32_t Read(uint8_t* buffer, uint32_t length, int32_t flags) = 0;
  /// The whole of a `Receive` that must not wait.
  virtual int32_t Poll(uint8_t* buffer, uint32_t length) = 0;
  /// The log line of a `Receive` of a second and more; takes its microseconds.
  virtual const char* SlowReceiveText() const = 0;

  /// Takes over a connected socket and gives it the stored time-outs and receive buffer size.
  /// False, with the socket closed, after an interruption.
  bool Adopt(UniqueSocket socket);
  void MarkOpen() { opened_ = 1; }
  /// True on an open transport; tries one plain open on a closed one.
  bool EnsureOpen();

  const Target& target() const { return target_; }
  SocketHandle handle() const { return socket_.handle(); }
  const std::atomic<bool>& interrupted() const { return interrupted_; }

 private:
  bool IsOpenTo(const std::string& ip, uint16_t port);
  bool HasSocket() const;
  void GrowReceiveBuffer();

  Target target_;
  /// Held while the socket changes and while an interruption uses it, so that an interruption never
  /// hits a handle that the system has given to somebody else.
  std::mutex socket_mutex_;
  UniqueSocket socket_;
  std::atomic<uint8_t> opened_{0};
  std::atomic<bool> interrupted_{false};
  uint32_t receive_buffer_size_ = 4096;
  uint32_t recv_timeout_ms_ = 500;
  uint32_t send_timeout_ms_ = 500;
};

}  // namespace kavel::lidar
