#pragma once

#include <string>

#include "lidar_link.h"
#include "settings_files/settings_file.h"
#include "settings_files/settings_reading.h"
#include "settings_files/snapshots.h"
#include "settings_source.h"

// What several commands do with the settings of a lidar.

/// The lidar of the link, for work on its settings.
SettingsLidar SettingsOf(Context& context, LidarLink& link);

/// Ends the work when the user has enough, and shows how far it is.
WorkWatch WatchOf(Context& context, const std::string& what);

/// Everything that the lidar holds. Throws a Failure when it was lost or the user had enough.
SettingsFile ReadWhole(Context& context, LidarLink& link);

/// Keeps the settings before something is done to them. That they cannot be kept is a warning.
void KeepSnapshot(Context& context, const SettingsFile& present, SnapshotReason reason);
/// The same for a lidar that they have to be read from first, where its model has any here.
void KeepSnapshot(Context& context, LidarLink& link, SnapshotReason reason);
