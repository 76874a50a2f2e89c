#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kavel::lidar {

/// Who is told of the bytes that exchanges send and receive. Called on whichever thread runs the
/// exchange, while that client's exchange is locked: an implementation must neither block nor call
/// the client.
class ByteSink {
 public:
  /// What is asked of the lidar, however it travels.
  struct Request {
    uint8_t cmd;
    const std::vector<uint8_t>& payload;
  };

  virtual ~ByteSink() = default;

  /// `frame` was handed to the line.
  virtual void Sent(const Request& request, const std::vector<uint8_t>& frame) = 0;
  /// What the lidar answered to the last request.
  virtual void Received(const std::vector<uint8_t>& bytes) = 0;
  /// The last exchange failed for the reason `error`, see command_sender.h. Of an exchange over a
  /// serial line that brings no answer nothing more is told.
  virtual void Failed(int32_t error) = 0;
};

/// The form in which bytes are shown: "SEND: " or "RECV: " and hexadecimal pairs, and for a failure
/// "RECV: ret_code is " and its reason.
std::string SentLine(const std::vector<uint8_t>& frame);
std::string ReceivedLine(const std::vector<uint8_t>& bytes);
std::string FailedLine(int32_t error);

}  // namespace kavel::lidar
