#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

#include "CmxClient/stream_transport.h"
#include "CmxClient/tls_certificate.h"
#include "CmxClient/tls_identity.h"
#include "CmxClient/tls_session.h"

namespace kavel::lidar {

class TlsPeerCheck;

/// A TLS stream over TCP: version 1.2 or newer, without renegotiation. See `ClientBase` for the
/// contract. `Receive` gives what one record or the rest of one holds, up to `length` bytes;
/// `flags` other than `kPoll` are ignored.
///
/// `Open`, and the open that `Send` and `Receive` try on a closed transport, give up after 5 s,
/// `TryOpen` after its `timeout_s`: TCP and the handshake together. The identity alone says which
/// files are used; the three paths of `Open` and `TryOpen` are ignored. Its files are read at every
/// open; a file of no use, or an unusable fingerprint, fails it before anything connects.
///
/// Without a `ca` and a fingerprint every certificate passes. The owner then has to look at
/// `Certificate` and to decide before it sends anything that matters. The decision holds: until the
/// object is destroyed it accepts no other certificate, also where `Send` or `Receive` open anew.
class TlsClient : public StreamTransport {
 public:
  /// A key file that every user can read is worth a line in the log, see `KeyFileWarning`.
  explicit TlsClient(TlsIdentity identity);

  /// Also tells why the lidar ended a link that was open with a TLS alert: under TLS 1.3 it refuses
  /// a certificate of ours, or the lack of one, only after its own side of the handshake is made,
  /// so that the open has succeeded and the first `Receive` fails.
  std::string OpenFailure() override;

  /// False when the last open failed for the identity's files, or for what the lidar has shown or
  /// said: its certificate, an alert, an answer without TLS.
  bool MayTryAgain() override { return may_try_again_; }

  /// The lidar's certificate as the last open saw it, also when it was refused. None when the open
  /// did not get so far. Any thread.
  std::optional<TlsCertificate> Certificate() const;

  void Close() override;

 protected:
  bool OpenPlainly() override;
  bool OpenWithin(uint16_t host_port, uint32_t timeout_s) override;
  int32_t Write(const uint8_t* data, uint16_t length, int32_t flags) override;
  int32_t Read(uint8_t* buffer, uint32_t length, int32_t flags) override;
  int32_t Poll(uint8_t* buffer, uint32_t length) override;
  const char* SlowReceiveText() const override { return "Receive executed"; }

 private:
  std::string OpenWith(TlsPeerCheck* check, uint16_t host_port, uint32_t timeout_s);
  std::string About(const std::string& what) const;
  void TellOutcome(std::string failure, std::optional<TlsCertificate> shown);
  int32_t CountOf(const TlsStep& step);

  TlsIdentity identity_;
  TlsSession tls_;
  std::atomic<bool> may_try_again_{true};
  mutable std::mutex outcome_mutex_;
  std::string open_failure_;                   // guarded by outcome_mutex_
  std::optional<TlsCertificate> certificate_;  // guarded by outcome_mutex_
};

}  // namespace kavel::lidar
