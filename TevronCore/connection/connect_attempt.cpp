#include "connection/connect_attempt.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <utility>

#include "CmxClient/serial_cmx_transport.h"
#include "Source/packet_listener.h"
#include "auth/auth_config.h"
#include "auth/auth_keys.h"
#include "auth/authorized_cmx_client.h"
#include "session/quiet_report.h"
#include "variables/config_folder.h"
#include "variables/host_port.h"

namespace {

using kavel::lidar::CmxClient;
using kavel::lidar::SerialClient;
using kavel::lidar::SerialSource;

constexpr std::chrono::milliseconds kRetryPause{500};

std::string MissingAlgorithm(int id, const ConfigFolder& folder) {
  return "Authentication algorithm " + std::to_string(id) +
         " is unknown, or its keys are missing or malformed; write them into " +
         folder.layers().back().path + '/' + kAuthKeysName +
         ". Protected commands will be refused until then.";
}

}  // namespace

// The line is meant: it is what support looks for, whatever connects.
void ConnectAttempt::AnnounceTcpAttempt() {
  std::cout << "TevronManager::Init"
            << "(): try to connect to lidar with TCP connection.\n"
            << std::flush;
}

ConnectAttempt::ConnectAttempt(ConnectRequest request, std::shared_ptr<UserReport> report,
                               Handlers handlers)
    : request_(std::move(request)),
      report_(IsPatient() ? std::make_shared<QuietReport>(std::move(report)) : std::move(report)),
      handlers_(std::move(handlers)),
      patience_ends_(std::chrono::steady_clock::now() +
                     request_.patience.value_or(RestartPatience{}).returns),
      thread_([this] { Run(); }) {}

ConnectAttempt::~ConnectAttempt() {
  Cancel();
  thread_.join();
}

void ConnectAttempt::Cancel() {
  stop_.Raise();
  const std::lock_guard lock(mutex_);
  if (client_in_work_ != nullptr) {
    client_in_work_->Shutdown();
  }
}

void ConnectAttempt::Run() {
  std::shared_ptr<Connection> connection = IsPatient() ? AwaitLidar() : Connect();
  {
    // From here on the client belongs to the connection: cancelling must not end it.
    const std::lock_guard lock(mutex_);
    client_in_work_.reset();
    connection_ = std::move(connection);
  }
  handlers_.ended();
}

std::shared_ptr<Connection> ConnectAttempt::TakeConnection() {
  const std::lock_guard lock(mutex_);
  return std::move(connection_);
}

std::string ConnectAttempt::Failure() {
  const std::lock_guard lock(mutex_);
  return failure_;
}

void ConnectAttempt::NoteFailure(std::string sentence) {
  const std::lock_guard lock(mutex_);
  failure_ = std::move(sentence);
  untrusted_.reset();
}

std::optional<UntrustedLidar> ConnectAttempt::Untrusted() {
  const std::lock_guard lock(mutex_);
  return untrusted_;
}

std::shared_ptr<Connection> ConnectAttempt::AwaitLidar() {
  std::shared_ptr<Connection> connection;
  std::chrono::milliseconds pause = request_.patience->leaves;
  while (connection == nullptr && !stop_.WaitFor(pause) &&
         std::chrono::steady_clock::now() < patience_ends_) {
    connection = Connect();
    pause = kRetryPause;
    if (connection == nullptr) {
      DropClient();
    }
  }
  return connection;
}

// A serial line is free for the next try only when nothing holds the client of the last one.
void ConnectAttempt::DropClient() {
  ClientPtr client;
  const std::lock_guard lock(mutex_);
  client.swap(client_in_work_);
}

std::shared_ptr<Connection> ConnectAttempt::Connect() {
  try {
    switch (request_.model->connect_type) {
      case kSerialPair:
        return ConnectSerialPair();
      case kSerialCmx:
        return ConnectSerialCmx();
      default:
        return ConnectNetwork();
    }
  } catch (const AuthConfigError& e) {
    report_->Error("The lidar was not connected: " + e.text());
  } catch (const std::exception& e) {
    report_->Error(std::string("The lidar was not connected: ") + e.what());
  }
  return nullptr;
}

std::shared_ptr<Connection> ConnectAttempt::ConnectSerialPair() {
  const ConnectionSettings& settings = request_.settings;
  const auto requests = std::make_shared<SerialSource>(
      settings.serial_port_485, static_cast<uint32_t>(settings.command_baud_rate_bps),
      kavel::lidar::kReceiveAnswers);
  requests->SetLostHandler(handlers_.lost);
  if (!requests->Open()) {
    ReportSerialFailure("RS485", requests->LastError());
    return nullptr;
  }
  const auto answers = std::make_shared<SerialSource>(
      settings.serial_port_232, static_cast<uint32_t>(settings.point_cloud_baud_rate_bps),
      kavel::lidar::kReceiveAnswersAndPoints);
  answers->SetLostHandler(handlers_.lost);
  if (!answers->Open()) {
    ReportSerialFailure("UART", answers->LastError());
    return nullptr;
  }
  const auto serial = std::make_shared<SerialClient>(requests, answers);
  const ClientPtr client = ClientOver(serial);
  if (!KeepInterruptible(client)) {
    return nullptr;
  }
  return Join(client, serial);
}

std::shared_ptr<Connection> ConnectAttempt::ConnectSerialCmx() {
  AnnounceTcpAttempt();
  const SerialPtr serial = OpenSerialCmx();
  if (serial == nullptr) {
    return nullptr;
  }
  const ClientPtr client = ClientOver(serial);
  if (!KeepInterruptible(client)) {
    return nullptr;
  }
  return CheckAlive(client, Join(client, serial));
}

ConnectAttempt::SerialPtr ConnectAttempt::OpenSerialCmx() {
  const auto line =
      std::make_shared<SerialSource>(request_.settings.serial_port_485,
                                     static_cast<uint32_t>(request_.settings.command_baud_rate_bps),
                                     kavel::lidar::kReceiveAnswers);
  line->SetLostHandler(handlers_.lost);
  if (line->Open()) {
    return std::make_shared<SerialClient>(line, line);
  }
  const std::string reason = line->LastError();
  NoteFailure(reason);
  report_->LogLine(reason, LogType::kError);
  // The words of the network, deliberately: one message for a command client that does not open.
  report_->ErrorWithRemedy(kOpenFailed, reason);
  return nullptr;
}

ConnectAttempt::ClientPtr ConnectAttempt::ClientOver(const SerialPtr& serial) {
  return std::make_shared<CmxClient>(std::make_shared<kavel::lidar::SerialCmxTransport>(serial),
                                     kProtocolVersion, kExchangeTimeoutMs, kExchangeTimeoutMs);
}

std::shared_ptr<Connection> ConnectAttempt::Join(const ClientPtr& client, const SerialPtr& serial) {
  if (IsPatient() && !LidarAnswers(*client)) {
    return nullptr;  // before the probe, whose answer would be taken for the lidar's
  }
  const ConfigFolder& folder = request_.model->config;
  const AuthConfig config = AuthConfigOf(folder, request_.model->name);
  if (folder.FilesCalled(kAuthTableName).empty()) {
    report_->LogLine(
        folder.path() + '/' + kAuthTableName + " is missing: connecting without authentication.",
        LogType::kWarning);
  }
  std::unique_ptr<IAuthAlgorithm> algorithm = AlgorithmFor(config);
  const bool reply_prefix = request_.model->connect_type != kNetworkLink;
  const auto sender = std::make_shared<AuthorizedCmxClient>(
      client, config, reply_prefix, request_.auth_log, std::move(algorithm));
  auto connection = std::make_shared<Connection>(client, sender, serial);
  connection->SetByteSink(std::make_shared<ByteFlowSink>(
      request_.byte_flow, SecretCommands(*request_.model->table, config)));
  sender->Probe();
  return connection;
}

std::unique_ptr<IAuthAlgorithm> ConnectAttempt::AlgorithmFor(const AuthConfig& config) {
  if (!config.enabled) {
    return nullptr;
  }
  const ConfigFolder& folder = request_.model->config;
  auto algorithm = CreateAuthAlgorithm(config.algorithm_id, LoadAuthKeys(folder));
  if (algorithm == nullptr) {
    report_->LogLine(MissingAlgorithm(config.algorithm_id, folder), LogType::kWarning);
    return nullptr;
  }
  for (const std::string& file : folder.FilesCalled(kAuthKeysName)) {
    if (const std::string warning = AuthKeyFileWarning(file); !warning.empty()) {
      report_->LogLine(warning, LogType::kWarning);
    }
  }
  return algorithm;
}

std::shared_ptr<Connection> ConnectAttempt::CheckAlive(const ClientPtr& client,
                                                       std::shared_ptr<Connection> connection) {
  if (connection == nullptr) {
    return nullptr;
  }
  if (!connection->sender()->IsOpen()) {
    std::cout << "CmxClient haven't initialized\n" << std::flush;
  }
  int32_t error = 0;
  if (const auto liveness = AnsweredLiveness(*connection->sender(), &error)) {
    connection->SetLivenessCommand(*liveness);
    return connection;
  }
  TellSilence(client, error);
  return nullptr;
}

void ConnectAttempt::TellSilence(const ClientPtr& client, int32_t error) {
  // A lidar may end the link where it does not take our certificate.
  const std::string ending = client->ConnectFailure();
  const std::string place = PlaceText(request_.settings, request_.model->connect_type);
  NoteFailure(!ending.empty() ? ending
              : error == kavel::lidar::kNoReply
                  ? place + ": the connection is taken, but no command is answered."
                  : place + ": something answers, but not as a lidar does (" +
                        CmxClient::ErrorText(error) + ").");
  // The missing first letter is part of the line.
  std::cout << "DEBUG: heckLidarConnection() == false\n" << std::flush;
  report_->Error("Lidar has No CMX reply.");
}

bool ConnectAttempt::KeepInterruptible(const ClientPtr& client) {
  const std::lock_guard lock(mutex_);
  client_in_work_ = client;
  return !stop_.IsRaised();
}

void ConnectAttempt::ReportSerialFailure(const char* port_kind, const std::string& reason) {
  const std::string kind = port_kind;
  NoteFailure(reason);
  report_->ErrorWithRemedy("Connection Failed. Please check your " + kind + " serial port.",
                           reason);
  report_->LogLine("Connection Error: " + kind + " serial open fail", LogType::kError);
  report_->LogLine(reason, LogType::kError);
}
