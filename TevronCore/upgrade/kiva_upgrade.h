#pragma once

#include "upgrade/upgrade_work.h"

/// Sends the components of a package to a Kiva on one serial line and restarts it. Of the two
/// application images only that of the partition which does not run now is sent. Tells the user how
/// it went, in fixed words. Returns when the restart was ordered or something failed, or soon after
/// `*work.stop` was raised and the connection closed.
UpgradeResult RunKivaUpgrade(UpgradeWork& work);
