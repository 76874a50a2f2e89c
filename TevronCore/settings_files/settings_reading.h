#pragma once

#include <map>
#include <string>
#include <vector>

#include "settings_files/settings_file.h"
#include "settings_files/settings_work.h"

/// The variables that a settings file of this table has: those that can be read, hidden ones and
/// those of no page among them, in table order. Not those that stand for a download, nor key
/// material, nor what the monitor table of a hardware version adds, which is measured.
std::vector<const VarInfo*> SavedVariables(const ConfigParser& table);

/// A file of this model without values, dated now; who it is and what it runs is not known yet.
SettingsFile BeginSettings(const LidarModel& model);

/// What a row of a file says of the variable apart from its value, which is unread.
SavedValue DescribeVariable(const VarInfo& var);

/// How a reading of many variables went.
struct ManyRead {
  std::map<const VarInfo*, std::string> failed;  ///< with the reason
  /// Why it ended before its end: the lidar was lost or stayed silent, it may not be asked
  /// now, or somebody stopped it. "" when it came to its end. What was not asked for is in
  /// `failed`.
  std::string ended;
  bool lost = false;  ///< it ended because no answer came any more
};

/// Asks for the variables, one read command after the other, in the order of the first variable of
/// each. Values go to the table, where edits stay as they are. Ends after an exchange in progress
/// when it is stopped, the link is lost, or `patience` commands in a row found no answer.
ManyRead ReadMany(const SettingsLidar& lidar, const std::vector<const VarInfo*>& vars,
                  const WorkWatch& watch, int patience = 2);

/// What a lidar holds.
struct SettingsReading {
  SettingsFile file;  ///< what could not be read is unread in it, with the reason
  std::string ended;  ///< as ManyRead has it
  bool lost = false;
};

/// Reads every variable from the lidar itself; what the user has typed and not saved is not in it.
/// Part and serial number and firmware are those of the variables "PN", "SN" and "SWVER_YMD"; of a
/// lidar that tells them otherwise the caller fills them in.
SettingsReading ReadSettings(const SettingsLidar& lidar, const WorkWatch& watch = {});
