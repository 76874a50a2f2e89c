#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "CmxClient/byte_sink.h"
#include "CmxClient/cmx_client.h"
#include "CmxClient/command_sender.h"
#include "CmxClient/device_commands.h"
#include "CmxClient/serial_client.h"
#include "CmxClient/tls_certificate.h"

/// Why the certificate of a lidar is taken for its own.
enum class TrustedBy {
  kAuthority,    ///< a certificate authority of the model's vouches for it
  kFingerprint,  ///< it is the one that was given for this connection
  kMemory,       ///< it was trusted before, see TrustedLidars
};

/// "authority", "fingerprint" or "memory".
const char* TextOf(TrustedBy trusted_by);

/// The certificate of a lidar that is connected over TLS.
struct TrustedCertificate {
  kavel::lidar::TlsCertificate certificate;
  TrustedBy trusted_by = TrustedBy::kAuthority;
};

/// An open connection to one lidar: everything that ends with it. Operations hold the sender; the
/// session holds the connection and ends it.
class Connection {
 public:
  /// `sender` is what operations use, with authentication in front of `client`. `serial` is null
  /// for a connection over the network.
  Connection(std::shared_ptr<kavel::lidar::CmxClient> client,
             std::shared_ptr<kavel::lidar::CommandSender> sender,
             std::shared_ptr<kavel::lidar::SerialClient> serial);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Ends every exchange, running and to come, and frees the ports. Any thread; idempotent. Those
  /// who still hold the sender find it not open.
  void Close();

  /// Of a connection over TLS, set before anybody else has the connection; else none.
  void SetCertificate(TrustedCertificate certificate) { certificate_ = std::move(certificate); }
  const std::optional<TrustedCertificate>& certificate() const { return certificate_; }

  /// Who is told of the bytes of every exchange.
  void SetByteSink(const std::shared_ptr<kavel::lidar::ByteSink>& sink);

  /// The liveness command that this lidar answers: it keeps late answers away from other commands.
  void SetLivenessCommand(uint8_t cmd);
  /// Asks once, with that command. False without an answer; a refusal is one.
  bool IsAnswered() const;

  /// Since when the lidar answers nothing; see CmxClient.
  std::optional<std::chrono::system_clock::time_point> SilentSince() const {
    return client_->SilentSince();
  }

  const std::shared_ptr<kavel::lidar::CommandSender>& sender() const { return sender_; }
  /// Null for a connection over the network.
  const std::shared_ptr<kavel::lidar::SerialClient>& serial() const { return serial_; }

 private:
  const std::shared_ptr<kavel::lidar::CmxClient> client_;
  const std::shared_ptr<kavel::lidar::CommandSender> sender_;
  const std::shared_ptr<kavel::lidar::SerialClient> serial_;
  std::optional<TrustedCertificate> certificate_;
  uint8_t liveness_command_ = kavel::lidar::kCmdLiveness;
};

/// Which of the two liveness commands the lidar answers, the newer one first; none when it answers
/// neither, and *error (may be null) says why not. Their bytes stay out of the log window, which a
/// periodic check would flood.
std::optional<uint8_t> AnsweredLiveness(kavel::lidar::CommandSender& sender,
                                        int32_t* error = nullptr);

/// The link check: true when the lidar answers either.
bool LidarAnswers(kavel::lidar::CommandSender& sender, int32_t* error = nullptr);
