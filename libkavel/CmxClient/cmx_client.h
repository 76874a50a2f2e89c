#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "CmxClient/byte_sink.h"
#include "CmxClient/client_base.h"
#include "CmxClient/cmx_exchange.h"
#include "CmxClient/command_sender.h"
#include "CmxClient/stale_input.h"
#include "CmxClient/ticket_mutex.h"

namespace kavel::lidar {

/// Talks to one lidar with command frames over a byte transport.
///
/// A thread of its own connects; `QueryCommand` then runs one exchange at a time, for any number of
/// threads. Nothing throws for a bad answer. All members may be called on any thread, the
/// constructors and the destructor excepted.
class CmxClient : public CommandSender {
 public:
  /// Starts connecting at once, from a thread of its own.
  ///
  /// `lidar_ip`             dotted IPv4; empty: waits until `SetLidarIp` fills it
  /// `connection_type`      0 plain TCP, 1 TLS, where that is built (TEVRON_TLS); with any other
  /// the client never opens `protocol_version`     1 or 2; with any other every exchange fails with
  /// `kSendIncomplete` `cert_path` ...        PEM files, "" for none; TLS only `recv_timeout_ms`,
  /// `send_timeout_ms`   applied on connecting when both are non-zero, else 500
  /// `connect_time_limit_s` gives up after so many seconds; negative: never. An attempt takes up to
  ///                        1 s and is finished first
  /// `host_port`            local port, 0 for any
  /// Throws std::system_error when the thread cannot be started.
  CmxClient(const std::string& lidar_ip, uint16_t port, bool auto_receive, uint32_t connection_type,
            uint8_t protocol_version, const std::string& cert_path,
            const std::string& private_key_path, const std::string& ca_path,
            uint32_t recv_timeout_ms, uint32_t send_timeout_ms, float connect_time_limit_s,
            uint16_t host_port);

  /// Where the lidar is, and how long it is tried.
  struct Target {
    std::string lidar_ip;  ///< dotted IPv4; empty: waits until `SetLidarIp` fills it
    uint16_t port = 0;
    uint16_t host_port = 0;        ///< local port, 0 for any
    float connect_limit_s = -1;    ///< gives up after so many seconds; negative: never
    uint32_t attempt_limit_s = 1;  ///< for each attempt, which is finished first
    bool auto_receive = false;
    // PEM files, "" for none; they matter to TLS only.
    std::string cert_path = {};
    std::string private_key_path = {};
    std::string ca_path = {};
  };

  /// Connects as the first constructor does, by opening `transport` (null: the client never opens).
  /// The transport is closed with the client.
  CmxClient(std::shared_ptr<ClientBase> transport, Target target, uint8_t protocol_version,
            uint32_t recv_timeout_ms, uint32_t send_timeout_ms);

  /// Works over a transport that is open already, and starts no thread. The transport is closed
  /// with the client.
  CmxClient(std::shared_ptr<ClientBase> open_transport, uint8_t protocol_version,
            uint32_t recv_timeout_ms, uint32_t send_timeout_ms);

  /// Shuts down and waits for the connection thread: at most 1.5 s, whatever the lidar does. Other
  /// threads must have left the client; `Shutdown` gets them out of it.
  ~CmxClient() override;

  CmxClient(const CmxClient&) = delete;
  CmxClient& operator=(const CmxClient&) = delete;

  bool IsOpen() override;

  using CommandSender::QueryCommand;

  /// See `CommandSender`, and `CmxExchange` for the time that it takes. Threads are let in in the
  /// order in which they come. A block of one byte cannot start a header and is dropped. A frame
  /// longer than 65535 bytes, the most that one send takes, fails with `kSendIncomplete` before
  /// anything is sent; an answer above 64 MiB, or one that memory does not hold, with
  /// `kReplyBrokeOff`.
  int32_t QueryCommand(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result,
                       uint8_t cmd, bool with_header, int32_t* error) override;
  int32_t QueryQuietly(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result,
                       uint8_t cmd, int32_t* error) override;
  int32_t QueryWithin(uint32_t timeout_ms, const std::vector<uint8_t>& payload,
                      std::vector<uint8_t>& result, uint8_t cmd, int32_t* error) override;
  int32_t QueryLong(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result, uint8_t cmd,
                    ReplyProgress& progress, int32_t* error) override;

  /// The reason of the last exchange that failed, on whichever thread; 0 before any failed. Another
  /// thread may have used the client since yours did: prefer the `error` of `QueryCommand`.
  int32_t GetLastErrorCode();

  /// Since when no exchange has found an answer: the start of the first of them. Nothing while the
  /// last one found any, a refusal or a broken one too. Any thread.
  std::optional<std::chrono::system_clock::time_point> SilentSince();

  /// Plain English for any of the codes in command_sender.h and for return codes of the lidar.
  static std::string ErrorText(int32_t code);

  /// Returns when connecting has succeeded, was given up or was shut down: `IsOpen`.
  bool WaitUntilConnected();

  /// Why the last try to connect failed, as a sentence for the user; "" when it did not.
  std::string ConnectFailure();

  /// Ends connecting and every exchange, running and to come. Returns at once; idempotent.
  void Shutdown();

  /// Fills an empty address while the client waits for one; ignored once it has one.
  void SetLidarIp(const std::string& ip);
  /// Where the lidar is, as far as it is known.
  std::string LidarIp();

  /// Who is told of the bytes from the next exchange on; null for nobody. Of a serial line it is
  /// the bytes of the line, frames included.
  void SetByteSink(std::shared_ptr<ByteSink> sink);

  /// From the next exchange on; `StaleInput::kAlways` until then.
  void SetStaleInput(StaleInput mode) { exchange_.SetStaleInput(mode); }

  /// See `CmxExchange::SetLivenessCommand`.
  void SetLivenessCommand(uint8_t cmd) { exchange_.SetLivenessCommand(cmd); }

  /// The connection thread's body: waits for an address, connects, applies the time-outs. Called by
  /// the constructor's thread only.
  void TryOpen();

 private:
  using Clock = std::chrono::steady_clock;
  bool WaitForAddress(Clock::time_point start);
  void Connect(Clock::time_point start);
  void SettleConnection();
  bool TimeIsUp(Clock::time_point start) const;
  void SleepBetweenAttempts();

  /// What one exchange has beside its command. Without time-outs it has those of the connection.
  struct Terms {
    bool with_header = false;
    ByteSink* sink = nullptr;
    std::optional<CmxExchange::Timeouts> timeouts;
    ReplyProgress* progress = nullptr;
  };
  int32_t Query(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result, uint8_t cmd,
                const Terms& terms, int32_t* error);
  CmxExchange::Outcome RunExchange(const std::vector<uint8_t>& payload,
                                   std::vector<uint8_t>& result, uint8_t cmd, const Terms& terms);
  void NoteAnswer(bool found, std::chrono::system_clock::time_point asked_at);
  std::shared_ptr<ByteSink> Sink();

  std::atomic<uint8_t> running_{1};
  /// Held for a whole exchange, and by the connection thread until the time-outs are applied.
  TicketMutex exchange_mutex_{Turn::kExchange};
  std::atomic<int32_t> last_error_{0};
  const std::shared_ptr<ClientBase> transport_;
  CmxExchange exchange_;           // guarded by exchange_mutex_
  CmxExchange::Timeouts usual_{};  // of the connection; guarded by exchange_mutex_
  std::thread connection_thread_;
  const Target target_;   // but for the address
  std::string lidar_ip_;  // guarded by state_mutex_
  const CmxExchange::Timeouts configured_;
  std::shared_ptr<ByteSink> byte_sink_;  // guarded by state_mutex_

  /// Guards what is marked so; never held while the transport works.
  std::mutex state_mutex_;
  std::condition_variable state_changed_;
  bool connecting_ended_ = false;                                      // guarded by state_mutex_
  std::optional<std::chrono::system_clock::time_point> silent_since_;  // guarded by state_mutex_
};

}  // namespace kavel::lidar
