#pragma once

#include <memory>
#include <string>

#include "context.h"
#include "settings_files/settings_file.h"
#include "variables/config_parser.h"

/// A settings file. Throws a Failure that says what is wrong with it.
SettingsFile LoadFile(const std::string& path);

/// The settings of the lidar that the command line names, for `command`; *table gets the table of
/// its model. Throws a Failure when they cannot be had.
SettingsFile ReadFromLidar(Context& context, const std::string& command,
                           std::shared_ptr<const ConfigParser>* table);
