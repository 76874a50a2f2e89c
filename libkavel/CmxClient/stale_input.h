#pragma once

namespace kavel::lidar {

/// How to keep the answers of earlier exchanges away from a command.
enum class StaleInput {
  /// Before every command, wait until 50 ms have passed in silence. At most 20 commands a second.
  kAlways,
  /// As `kAlways` after connecting and after an exchange that found no answer; otherwise only what
  /// is already there is looked at, without waiting. When an answer or stray bytes may still be on
  /// their way, the command is preceded by a liveness exchange besides, see `CmxExchange`; as long
  /// as no command for that is known, stray bytes are waited out, too.
  kAfterTrouble,
};

}  // namespace kavel::lidar
