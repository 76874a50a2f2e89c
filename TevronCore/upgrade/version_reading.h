#pragma once

#include <memory>
#include <string>

#include "CmxClient/command_sender.h"
#include "session/lidar_model.h"
#include "session/user_report.h"

/// Asks the lidar which firmware it runs: of a network model the variable "SWVER_YMD", which is
/// kept in the table, of a serial-attached one its versions, those of a Kiva's boards included.
/// "" when it does not say. One exchange, on the caller's thread; failures go to the log.
std::string ReadRunningVersion(kavel::lidar::CommandSender& sender, const LidarModel& model,
                               const std::shared_ptr<UserReport>& report);
