// How an attempt reaches a lidar over the network, and makes sure of whose it is.

#include <algorithm>
#include <cmath>

#include "CmxClient/tcp_client.h"
#include "Platform/key_file.h"
#include "Source/packet_listener.h"
#include "auth/tls_files.h"
#include "connection/connect_attempt.h"
#include "pages/page_reader.h"
#include "session/quiet_report.h"
#include "variables/host_port.h"

namespace {

using kavel::lidar::CmxClient;
using kavel::lidar::TlsClient;

constexpr float kConnectTimeLimitS = 5.0F;
constexpr float kTcpAttemptS = 1.0F;

/// A text of a lidar that nobody trusts yet, as it stands in a question: whatever is not plain is
/// "\" and two digits a byte, so that it cannot pass for another line.
std::string OnOneLine(const std::string& text) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string line;
  for (const char c : text) {
    const auto byte = static_cast<uint8_t>(c);
    if (byte >= ' ' && byte <= '~' && c != '\\') {
      line += c;
    } else {
      line += {'\\', kDigits[byte >> 4], kDigits[byte & 0x0F]};
    }
  }
  return line;
}

}  // namespace

float ConnectAttempt::ConnectTimeLimitS() const {
  const std::chrono::duration<float> left = patience_ends_ - std::chrono::steady_clock::now();
  return IsPatient() ? std::clamp(left.count(), 0.0F, kConnectTimeLimitS) : kConnectTimeLimitS;
}

std::shared_ptr<Connection> ConnectAttempt::ConnectNetwork() {
  if (request_.model->link == NetworkLink::kTcp) {
    const ClientPtr client = Dial(std::make_shared<kavel::lidar::TcpClient>());
    return client == nullptr ? nullptr : CheckAlive(client, Join(client, nullptr));
  }
  // Read once: what the handshake has checked decides what is left to check.
  const kavel::lidar::TlsIdentity identity = IdentityNow();
  const auto transport = std::make_shared<TlsClient>(identity);
  const ClientPtr client = Dial(transport);
  const auto shown = client == nullptr ? std::nullopt : transport->Certificate();
  const auto certificate = shown ? CheckCertificate(identity, *shown, client) : std::nullopt;
  if (!certificate) {
    return nullptr;
  }
  std::shared_ptr<Connection> connection = CheckAlive(client, Join(client, nullptr));
  if (connection != nullptr) {
    connection->SetCertificate(*certificate);
  }
  return connection;
}

/// A client whose transport is open; null when it cannot be opened, after the reason was reported.
ConnectAttempt::ClientPtr ConnectAttempt::Dial(
    const std::shared_ptr<kavel::lidar::ClientBase>& transport) {
  CmxClient::Target target;
  if (!HostPort(&target.host_port)) {
    return nullptr;
  }
  AnnounceTcpAttempt();
  if (!CommandPort(&target.port)) {
    return nullptr;
  }
  const bool is_tls = request_.model->link == NetworkLink::kTls;
  target.lidar_ip = request_.settings.lidar_ip;
  target.auto_receive = request_.auto_receive;
  target.connect_limit_s = ConnectTimeLimitS();
  // A lidar may need a while for its side of a handshake, and another attempt would begin it anew.
  const float attempt_s = is_tls ? target.connect_limit_s : kTcpAttemptS;
  target.attempt_limit_s = static_cast<uint32_t>(std::ceil(std::max(attempt_s, kTcpAttemptS)));
  auto client = std::make_shared<CmxClient>(transport, target, kProtocolVersion, kExchangeTimeoutMs,
                                            kExchangeTimeoutMs);
  client->SetStaleInput(request_.model->stale_input);
  if (!KeepInterruptible(client)) {
    return nullptr;
  }
  if (WaitUntilConnected(client)) {
    return client;
  }
  NoteFailure(request_.settings.lidar_ip.empty() && client->ConnectFailure().empty()
                  ? "No packet came on UDP port " + std::to_string(request_.settings.udp_port) +
                        ", so that the lidar's address is not known."
                  : client->ConnectFailure());
  // While a lidar restarts it is no news that it is away.
  if (!IsPatient() && !Failure().empty()) {
    report_->LogLine(Failure(), LogType::kError);
  }
  report_->Error(kOpenFailed);
  return nullptr;
}

kavel::lidar::TlsIdentity ConnectAttempt::IdentityNow() {
  const ConfigFolder& folder = request_.model->config;
  kavel::lidar::TlsIdentity identity = TlsFilesOf(folder, request_.model->name);
  if (const std::string warning = kavel::lidar::KeyFileWarning(identity.key); !warning.empty()) {
    report_->LogLine(warning, LogType::kWarning);
  }
  identity.pinned_sha256 = request_.settings.tls_pin;
  return identity;
}

// Ahead of everything else that is sent: what authenticates or sets something is not for a
// stranger.
std::optional<TrustedCertificate> ConnectAttempt::CheckCertificate(
    const kavel::lidar::TlsIdentity& identity, const kavel::lidar::TlsCertificate& certificate,
    const ClientPtr& client) {
  if (!identity.pinned_sha256.empty()) {
    return TrustedCertificate{certificate, TrustedBy::kFingerprint};
  }
  if (!identity.ca.empty()) {
    return TrustedCertificate{certificate, TrustedBy::kAuthority};
  }
  int32_t error = 0;
  if (!LidarAnswers(*client, &error)) {
    TellSilence(client, error);
    return std::nullopt;
  }
  ConnectionSettings reached = request_.settings;
  reached.lidar_ip = client->LidarIp();
  UntrustedLidar lidar{{SerialNumberOf(*client), PlaceText(reached, kNetworkLink), certificate},
                       CertificateVerdict::kUnknown};
  std::string reason;
  std::string remedy;
  lidar.verdict = TrustedLidars().Judge(lidar.lidar, &reason, &remedy);
  if (lidar.verdict == CertificateVerdict::kTrusted) {
    return TrustedCertificate{certificate, TrustedBy::kMemory};
  }
  TellUntrusted(lidar, reason, remedy);
  return std::nullopt;
}

// The values that the screens show are those of the last lidar that was connected, and stay so.
std::string ConnectAttempt::SerialNumberOf(CmxClient& client) {
  ConfigParser table(*request_.model->table, LoadedTable());
  if (const VarInfo* number = table.FindByName("SN")) {
    table.DropEdits({number});
  }
  QuietReport quiet(report_);
  return OnOneLine(ReadTextOf("SN", client, table, quiet));
}

void ConnectAttempt::TellUntrusted(const UntrustedLidar& untrusted, const std::string& reason,
                                   const std::string& remedy) {
  NoteFailure(remedy.empty() ? reason : reason + ' ' + remedy);
  if (untrusted.verdict == CertificateVerdict::kUnknown) {
    report_->LogLine(reason, LogType::kInfo);
  } else {
    report_->ErrorWithRemedy(reason, remedy);
  }
  const std::lock_guard lock(mutex_);
  untrusted_ = untrusted;
}

bool ConnectAttempt::HostPort(uint16_t* port) {
  if (!request_.model->host_port_enabled) {
    return true;
  }
  std::string reason;
  if (ParseHostPort(request_.settings.host_port, port, &reason)) {
    return true;
  }
  report_->Error(reason);
  return false;
}

bool ConnectAttempt::CommandPort(uint16_t* port) {
  if (ParsePort(request_.settings.command_port, port)) {
    return true;
  }
  report_->Error("The command port \"" + request_.settings.command_port +
                 "\" is no number from 1 to 65535. Correct it and connect again.");
  return false;
}

bool ConnectAttempt::WaitUntilConnected(const ClientPtr& client) {
  if (!request_.settings.lidar_ip.empty()) {
    return client->WaitUntilConnected();
  }
  const auto udp_port = static_cast<uint16_t>(request_.settings.udp_port);
  kavel::lidar::PacketListener::Handlers handlers;
  handlers.on_first = [this, client](const std::string& address) {
    report_->LogLine("Lidar address learned from its packets: " + address, LogType::kInfo);
    client->SetLidarIp(address);
  };
  handlers.on_broken = [this, udp_port] {
    report_->LogLine("Receiving on UDP port " + std::to_string(udp_port) +
                         " failed, so the lidar's address cannot be learned. Enter the address.",
                     LogType::kWarning);
  };
  kavel::lidar::PacketListener listener(udp_port, "", "", std::move(handlers));
  if (!listener.Start()) {
    report_->LogLine("UDP port " + std::to_string(udp_port) +
                         " cannot be opened, so the lidar's address cannot be learned. Close the "
                         "program that uses the port, or enter the address.",
                     LogType::kWarning);
  }
  return client->WaitUntilConnected();
}
