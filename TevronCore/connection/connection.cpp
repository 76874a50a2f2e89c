#include "connection/connection.h"

#include <utility>

const char* TextOf(TrustedBy trusted_by) {
  switch (trusted_by) {
    case TrustedBy::kAuthority:
      return "authority";
    case TrustedBy::kFingerprint:
      return "fingerprint";
    default:
      return "memory";
  }
}

Connection::Connection(std::shared_ptr<kavel::lidar::CmxClient> client,
                       std::shared_ptr<kavel::lidar::CommandSender> sender,
                       std::shared_ptr<kavel::lidar::SerialClient> serial)
    : client_(std::move(client)), sender_(std::move(sender)), serial_(std::move(serial)) {}

Connection::~Connection() { Close(); }

void Connection::Close() {
  client_->Shutdown();
  if (serial_ != nullptr) {
    serial_->Close();
  }
}

void Connection::SetLivenessCommand(uint8_t cmd) {
  liveness_command_ = cmd;
  client_->SetLivenessCommand(cmd);
}

bool Connection::IsAnswered() const {
  return kavel::lidar::CheckAlive(*sender_, liveness_command_) >= 0;
}

// The serial client tells of the exchanges that do not pass through the command client.
void Connection::SetByteSink(const std::shared_ptr<kavel::lidar::ByteSink>& sink) {
  client_->SetByteSink(sink);
  if (serial_ != nullptr) {
    serial_->SetByteSink(sink);
  }
}

std::optional<uint8_t> AnsweredLiveness(kavel::lidar::CommandSender& sender, int32_t* error) {
  for (const uint8_t cmd : {kavel::lidar::kCmdLiveness, kavel::lidar::kCmdLivenessOld}) {
    const int32_t result = kavel::lidar::CheckAlive(sender, cmd);
    if (result == 0) {
      return cmd;
    }
    if (error != nullptr) {
      *error = result;
    }
  }
  return std::nullopt;
}

bool LidarAnswers(kavel::lidar::CommandSender& sender, int32_t* error) {
  return AnsweredLiveness(sender, error).has_value();
}
