#pragma once

#include <cstdint>
#include <string>

#include "CmxClient/serial_client.h"
#include "session/link_state.h"
#include "session/user_report.h"

/// The mode in which a serial-attached lidar takes firmware.

/// Puts the lidar into upgrade mode: 0, or a reason of command_sender.h.
int32_t EnterUpgradeMode(kavel::lidar::SerialClient& line);

/// Puts it back to work after an upgrade that failed; the log tells when that fails, too.
void LeaveUpgradeMode(kavel::lidar::SerialClient& line, UserReport& report);

/// The user's own choice: 1 is upgrade mode, 0 is work. `line` is null where there is none. True
/// when the lidar did it; a failure goes to the error box and to the log.
bool SetUpgradeMode(kavel::lidar::SerialClient* line, const LinkState& state, int mode,
                    UserReport& report);
