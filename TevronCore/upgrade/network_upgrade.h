#pragma once

#include "upgrade/upgrade_work.h"

/// Sends one image to a lidar, as the model takes it, and has the lidar started anew:
///
/// | link | image | restart |
/// |---|---|---|
/// | network | file pieces | ordered, after UpgradeWaits::reboot |
/// | one serial line, Kiva | file pieces | the same |
/// | one serial line, other models | stream | the lidar's own, with the last frame |
/// | pair of serial lines | stream | the same |
///
/// Tells the user how it went, in fixed words. Returns when the restart was ordered or something
/// failed, or soon after `*work.stop` was raised and the connection closed.
UpgradeResult RunNetworkUpgrade(UpgradeWork& work);
