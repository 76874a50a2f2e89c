#pragma once

namespace kavel::lidar {

/// How long to wait for bytes of an earlier exchange before a command leaves.
enum class StaleInput {
  /// Before every command, until 50 ms have passed in silence. At most 20 commands a second.
  kAlways,
  /// As `kAlways` after connecting, after an exchange that did not end cleanly (complete reply to
  /// the command sent, nothing before it) and whenever a byte is found waiting; otherwise only what
  /// is already there is looked at, without waiting.
  kAfterTrouble,
};

}  // namespace kavel::lidar
