#pragma once

#include <memory>
#include <string>
#include <vector>

#include "variables/config_folder.h"
#include "variables/config_parser.h"
#include "variables/pages.h"

// Monitor tables describe the values of a model's monitor page, one table a hardware version. They
// lie in "varID", in the folder that is called like the model, of any layer, and are called
// "Monitor_", the version, ".csv". Any layer can have versions of a model that another describes.

/// The version that a file of this name describes; empty when it is no monitor table's name.
/// "Monitor_" has to be written so, ".csv" in any case; everything between is the version.
std::string MonitorVersionOf(const std::string& file_name);

/// The versions that there are tables for, sorted. Empty when no folder can be read.
std::vector<std::string> ListMonitorVersions(const ConfigFolder& config, const std::string& model);

/// The table of one version; empty when there is none.
std::string MonitorTablePath(const ConfigFolder& config, const std::string& model,
                             const std::string& version);

/// The variable that shows the monitor block, on whatever page; null without one. Read from a
/// lidar, its text is the hardware version.
const VarInfo* MonitorBlockOf(const ConfigParser& table);

/// The variables of `base` (its own, whatever else was added to it), and behind them those of the
/// monitor table in `path`, all of them on the monitor page of `base`. They follow every reading,
/// and are never written. Their ids and names need not differ from those of the own table.
///
/// Null when `base` has no monitor page, the path is empty, or the table cannot be used or has no
/// variable. *faults gets what is wrong with it either way.
std::shared_ptr<ConfigParser> WithMonitorTable(const ConfigParser& base, const std::string& path,
                                               TableFaults* faults);

/// The variables of the page that change by themselves and are numbers, in page order: what is
/// worth drawing over time. None for an index out of range.
std::vector<const VarInfo*> DrawableVariables(const PageModel& pages, int page);
