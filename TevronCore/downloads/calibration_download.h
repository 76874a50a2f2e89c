#pragma once

#include <QString>
#include <cstdint>

#include "CmxClient/command_sender.h"
#include "session/link_state.h"
#include "session/user_report.h"

/// Saves the calibration of a Lumo to the file `path`, with one exchange, on the calling thread. A
/// folder in its place gets the file "calibration_yyyyMMdd-hhmmss.bin". `sender` is null without a
/// connection.
///
/// Returns 0 when the file is there, else the reason, see command_sender.h (-1 when nothing was
/// asked or nothing written); what went wrong is reported, and a success as well. *saved (may be
/// null) gets the name of the file.
int32_t DownloadCalibration(kavel::lidar::CommandSender* sender, const LinkState& state,
                            const QString& path, UserReport& report, QString* saved = nullptr);
