#pragma once

#include <memory>

#include "CmxClient/cmx_client.h"
#include "CmxClient/command_sender.h"
#include "CmxClient/log_sink.h"
#include "CmxClient/serial_client.h"

/// An open connection to one lidar: everything that ends with it. Operations hold the sender; the
/// manager holds the connection and ends it.
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

  /// Where the bytes of every exchange go: for a serial line those of the line, frames included.
  void SetLogSink(const std::shared_ptr<kavel::lidar::LogSink>& sink);

  const std::shared_ptr<kavel::lidar::CommandSender>& sender() const { return sender_; }
  /// Null for a connection over the network.
  const std::shared_ptr<kavel::lidar::SerialClient>& serial() const { return serial_; }

 private:
  const std::shared_ptr<kavel::lidar::CmxClient> client_;
  const std::shared_ptr<kavel::lidar::CommandSender> sender_;
  const std::shared_ptr<kavel::lidar::SerialClient> serial_;
};

/// The link check: true when the lidar answers the liveness command or the older form of it. Its
/// bytes stay out of the log window, which a periodic check would flood.
bool LidarAnswers(kavel::lidar::CommandSender& sender);
