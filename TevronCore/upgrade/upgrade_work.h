#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "CmxClient/file_transfer.h"
#include "CmxClient/firmware_stream_client.h"
#include "connection/connection.h"
#include "connection/restart_patience.h"
#include "session/lidar_model.h"
#include "session/link_state.h"
#include "session/stop_signal.h"
#include "session/user_report.h"
#include "upgrade/upgrade_status.h"

/// The pauses of an upgrade.
struct UpgradeWaits {
  std::chrono::milliseconds begin{300};       ///< before anything is sent
  std::chrono::milliseconds partition{3000};  ///< from the partition query to the first component
  std::chrono::milliseconds reboot{10000};    ///< from a network transfer to the restart
  /// From the order to restart on, for the lidar to fall silent; 0 does not look whether it does.
  std::chrono::milliseconds lidar_leaves{5000};
  RestartPatience lidar_returns{};  ///< for the lidar after that
  /// For the answer to a piece, by either way.
  uint32_t file_piece_ms = kavel::lidar::kFilePieceTimeoutMs;
  uint32_t stream_piece_ms = kavel::lidar::kStreamAnswerMs;
};

/// The steps that every upgrade has, by the names that the user sees.
inline constexpr char kTransferStep[] = "Transfer";
inline constexpr char kRestartStep[] = "Restart";
inline constexpr char kReturnStep[] = "Wait for the lidar";
inline constexpr char kCompareStep[] = "Compare versions";

/// Shared with the screens, which poll it.
struct UpgradeProgress {
  std::atomic<int> done_kib{0};
  std::atomic<int> total_kib{0};
};

/// A begun KiB counts whole.
inline int KibOf(const std::vector<uint8_t>& image) {
  return static_cast<int>((image.size() + 1023) / 1024);
}

/// What an upgrade works with on its thread. The functions post to the owner's thread, in order.
struct UpgradeWork {
  std::shared_ptr<Connection> connection;
  std::shared_ptr<LidarModel> model;
  uint32_t command_baud_rate_bps = 0;
  const LinkState& state;
  std::vector<uint8_t> image;  ///< the file; empty when it cannot be used
  std::string image_problem;   ///< then why, a sentence
  UpgradeWaits waits;
  std::shared_ptr<StopSignal> stop;  ///< raised: to end at once, nobody listens any more
  std::shared_ptr<UserReport> report;
  std::shared_ptr<UpgradeProgress> progress{};

  /// The lidar is no longer upgrading. Returns when the owner has said so to everybody.
  std::function<void()> transfer_ended{};
  std::function<void(const std::string& name, UpgradeStepState state)> step{};
  /// Puts the names of components in the place of kTransferStep.
  std::function<void(const std::vector<std::string>& names)> plan{};
};

/// How far an upgrade came. All texts are parts of what the user is told.
struct UpgradeResult {
  enum class End {
    kFailed,        ///< the transfer
    kNotRestarted,  ///< the lidar has the firmware and refused to restart
    kRestarts,      ///< the lidar has the firmware and restarts, as far as is known
  };
  End end = End::kFailed;
  std::string reason;  ///< of the two first ends, and of a restart that was not answered
  /// Of kFailed: the last answer alone is missing, so the lidar may have everything.
  bool may_be_whole = false;
  std::string taken;          ///< components that the lidar took, "A, B"
  bool version_shows = true;  ///< what was taken has a version that the lidar tells
  bool has_left = false;      ///< of kRestarts: it fell silent, so what answers later has restarted
};
