#pragma once

namespace kavel::lidar {

/// How to keep the answers of earlier exchanges away from a command.
enum class StaleInput {
  /// Before every command, wait until 50 ms have passed in silence. At most 20 commands a second.
  kAlways,
  /// As `kAlways` after connecting, after an exchange that did not end cleanly (complete reply to
  /// the command sent, nothing before it) and whenever a byte is found waiting; otherwise only what
  /// is already there is looked at, without waiting. When an answer may still be on its way, the
  /// command is preceded by a liveness exchange besides, see `CmxExchange`.
  kAfterTrouble,
};

}  // namespace kavel::lidar
