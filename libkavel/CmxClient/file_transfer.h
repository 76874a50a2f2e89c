#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "CmxClient/command_sender.h"

namespace kavel::lidar {

/// How long a lidar may take for a piece: it may have to erase its memory first.
inline constexpr uint32_t kFilePieceTimeoutMs = 60000;

/// Sends `data` in the numbered pieces of docs/wire-formats.md ("File pieces"), one exchange each
/// with the time-out `timeout_ms`, kept out of what shows bytes to the user. They go under command
/// 255 when `long_command` is set and under the low byte of `code` otherwise.
///
/// Returns 0 when the lidar accepted every piece. Stops at the first that fails and returns -1;
/// `*error` (may be null) is then the reason of its exchange, see command_sender.h, and
/// kBadArgument when `data` is empty. `*progress` (may be null) is the number of the piece in
/// flight, from 1, and stays at the one that failed. Runs on the caller's thread and ends with the
/// sender's link. Takes no memory beside that of a piece.
int32_t TransferFile(CommandSender& sender, const std::vector<uint8_t>& data, uint32_t code,
                     bool long_command, std::atomic<int>* progress, int32_t* error,
                     uint32_t timeout_ms = kFilePieceTimeoutMs);

}  // namespace kavel::lidar
