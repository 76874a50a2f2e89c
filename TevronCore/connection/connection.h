#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

#include "CmxClient/byte_sink.h"
#include "CmxClient/cmx_client.h"
#include "CmxClient/command_sender.h"
#include "CmxClient/device_commands.h"
#include "CmxClient/serial_client.h"

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
  uint8_t liveness_command_ = kavel::lidar::kCmdLiveness;
};

/// Which of the two liveness commands the lidar answers, the newer one first; none when it answers
/// neither, and *error (may be null) says why not. Their bytes stay out of the log window, which a
/// periodic check would flood.
std::optional<uint8_t> AnsweredLiveness(kavel::lidar::CommandSender& sender,
                                        int32_t* error = nullptr);

/// The link check: true when the lidar answers either.
bool LidarAnswers(kavel::lidar::CommandSender& sender, int32_t* error = nullptr);
