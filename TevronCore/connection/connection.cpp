#include "connection/connection.h"

#include <utility>

#include "CmxClient/device_commands.h"
#include "console/byte_flow.h"

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

void Connection::SetLogSink(const std::shared_ptr<kavel::lidar::LogSink>& sink) {
  if (serial_ != nullptr) {
    serial_->SetLogSink(sink);
  } else {
    client_->SetLogSink(sink);
  }
}

bool LidarAnswers(kavel::lidar::CommandSender& sender) {
  const ByteFlowMute mute;
  return kavel::lidar::CheckAlive(sender) == 0 || kavel::lidar::CheckAliveOld(sender) == 0;
}
