#pragma once

#include <QJsonObject>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

/// What the program ends with; part of what scripts rely on.
enum class ExitCode : int {
  kDone = 0,
  kNo = 1,            ///< the lidar or the comparison said no
  kUsage = 2,         ///< the command line, a name or a file makes no sense
  kNoConnection = 3,  ///< no lidar was reached
  kBrokenOff = 4,     ///< the link was lost in the middle; what was done is listed
  kInterrupted = 130,
};

/// Ends a command. what() is a sentence for the user without the full stop.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& message, std::optional<int32_t> lidar_code = {})
      : std::runtime_error(message), code_(code), lidar_code_(lidar_code) {}

  /// What was done before it, in the keys of the command's result.
  Failure With(QJsonObject result) && {
    result_ = std::move(result);
    return std::move(*this);
  }

  ExitCode code() const { return code_; }
  /// The return code of the lidar that refused.
  const std::optional<int32_t>& lidar_code() const { return lidar_code_; }
  const QJsonObject& result() const { return result_; }

 private:
  const ExitCode code_;
  const std::optional<int32_t> lidar_code_;
  QJsonObject result_;
};

/// The failure that a reason of command_sender.h is, of an exchange over an open link.
Failure FailureOf(int32_t reason);
