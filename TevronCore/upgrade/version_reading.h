#pragma once

#include <memory>
#include <string>

#include "CmxClient/command_sender.h"
#include "session/lidar_model.h"
#include "session/user_report.h"

/// Which lidar it is and what it runs, each "" when it does not say.
struct RunningFirmware {
  std::string version;
  std::string serial_number;
};

/// Asks the lidar for both: a network model for the variables "SWVER_YMD" and "SN", which are kept
/// in the table, a serial-attached one for its versions, those of a Kiva's boards included, and its
/// number. Two exchanges, or one when it does not tell its version, on the caller's thread;
/// failures go to the log. Throws nothing.
RunningFirmware ReadRunningFirmware(kavel::lidar::CommandSender& sender, const LidarModel& model,
                                    const std::shared_ptr<UserReport>& report);
