#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "CmxClient/lock_order.h"
#include "CmxClient/log_sink.h"
#include "CmxClient/tls_client.h"
#include "auth/auth_algorithm.h"
#include "auth/auth_config.h"
#include "connection/connection.h"
#include "connection/connection_settings.h"
#include "connection/restart_patience.h"
#include "connection/trusted_lidars.h"
#include "console/byte_flow.h"
#include "session/lidar_model.h"
#include "session/stop_signal.h"
#include "session/user_report.h"

/// Everything a connect attempt works with, copied when it starts.
struct ConnectRequest {
  ConnectionSettings settings;
  std::shared_ptr<LidarModel> model;
  bool auto_receive = true;                         ///< handed to the network client
  std::shared_ptr<ByteFlow> byte_flow;              ///< shows the bytes of every exchange
  std::shared_ptr<kavel::lidar::LogSink> auth_log;  ///< gets the lines of the authentication
  /// Set: the lidar restarts. What fails meanwhile is no failure: only the log tells.
  std::optional<RestartPatience> patience;
};

/// One attempt to connect to a lidar, on a thread of its own. The model decides how: over the
/// network, over a pair of serial ports or over one.
class ConnectAttempt {
 public:
  /// What the attempt says on its thread.
  struct Handlers {
    /// The attempt is over, see TakeConnection. The handler must not destroy the attempt.
    std::function<void()> ended;
    /// The serial port of a connection that this attempt made is gone, with a sentence for the
    /// user. Called on a thread of the connection, perhaps long after the attempt.
    std::function<void(std::string)> lost;
  };

  /// Starts at once. `report` is kept until the attempt is destroyed.
  ConnectAttempt(ConnectRequest request, std::shared_ptr<UserReport> report, Handlers handlers);
  /// Cancels, and waits for the thread: at most 1.5 s, whatever the lidar does.
  ~ConnectAttempt();
  ConnectAttempt(const ConnectAttempt&) = delete;
  ConnectAttempt& operator=(const ConnectAttempt&) = delete;

  /// Makes the attempt end as soon as it can. It then reports nothing more.
  void Cancel();

  /// Once it is over: what it connected, or null when it failed, after the reason was reported. A
  /// connection that nobody takes ends with the attempt.
  std::shared_ptr<Connection> TakeConnection();

  /// What the last try failed at, a sentence that names the place; "" while nothing has failed.
  /// Known before the failure is reported. Any thread.
  std::string Failure();

  /// The lidar whose certificate the last try did not trust, if that is what it failed at: Failure
  /// tells, and the user was told unless it is unknown, which is for the owner to ask about.
  std::optional<UntrustedLidar> Untrusted();

 private:
  static constexpr char kOpenFailed[] = "TCP connection failed.";
  static constexpr uint8_t kProtocolVersion = 1;
  static constexpr uint32_t kExchangeTimeoutMs = 500;

  using ClientPtr = std::shared_ptr<kavel::lidar::CmxClient>;
  using SerialPtr = std::shared_ptr<kavel::lidar::SerialClient>;

  static void AnnounceTcpAttempt();

  void Run();
  std::shared_ptr<Connection> AwaitLidar();
  std::shared_ptr<Connection> Connect();
  bool IsPatient() const { return request_.patience.has_value(); }
  std::shared_ptr<Connection> ConnectNetwork();
  std::shared_ptr<Connection> ConnectSerialPair();
  std::shared_ptr<Connection> ConnectSerialCmx();

  // Over the network; in connect_attempt_network.cpp.
  bool HostPort(uint16_t* port);
  bool CommandPort(uint16_t* port);
  float ConnectTimeLimitS() const;
  kavel::lidar::TlsIdentity IdentityNow();
  ClientPtr Dial(const std::shared_ptr<kavel::lidar::ClientBase>& transport);
  bool WaitUntilConnected(const ClientPtr& client);
  std::optional<TrustedCertificate> CheckCertificate(
      const kavel::lidar::TlsIdentity& identity, const kavel::lidar::TlsCertificate& certificate,
      const ClientPtr& client);
  std::string SerialNumberOf(kavel::lidar::CmxClient& client);
  void TellUntrusted(const UntrustedLidar& untrusted, const std::string& reason,
                     const std::string& remedy);

  SerialPtr OpenSerialCmx();
  ClientPtr ClientOver(const SerialPtr& serial);
  std::shared_ptr<Connection> Join(const ClientPtr& client, const SerialPtr& serial);
  std::unique_ptr<IAuthAlgorithm> AlgorithmFor(const AuthConfig& config);
  std::shared_ptr<Connection> CheckAlive(const ClientPtr& client,
                                         std::shared_ptr<Connection> connection);
  void TellSilence(const ClientPtr& client, int32_t error);
  bool KeepInterruptible(const ClientPtr& client);
  void DropClient();
  void NoteFailure(std::string sentence);
  void ReportSerialFailure(const char* port_kind, const std::string& reason);

  const ConnectRequest request_;
  const std::shared_ptr<UserReport> report_;
  const Handlers handlers_;
  StopSignal stop_;
  const std::chrono::steady_clock::time_point patience_ends_;
  kavel::lidar::BriefMutex mutex_;
  ClientPtr client_in_work_;                 ///< guarded by mutex_; what Cancel has to interrupt
  std::string failure_;                      ///< guarded by mutex_
  std::optional<UntrustedLidar> untrusted_;  ///< guarded by mutex_
  std::shared_ptr<Connection> connection_;   ///< guarded by mutex_
  std::thread thread_;
};
