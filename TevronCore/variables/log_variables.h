#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "variables/command_code.h"
#include "variables/config_parser.h"

/// Variables that stand for something a lidar hands out whole: a log, its configuration. Their
/// value is never shown; they are saved to files.

/// The log of what the lidar's software did, which comes in four parts.
inline constexpr char kOperationLog[] = "Operation Log";
/// The lidar's configuration as one file.
inline constexpr char kConfigFile[] = "Config File";

/// The directive that puts a variable on the list from which the user downloads.
inline constexpr char kLogDirective[] = "log";

/// The variables that the table's "log" directives name and that can be asked for, in the order of
/// the directives, each once. The operation log is none of them: it has its own download.
std::vector<const VarInfo*> OfferedLogs(const ConfigParser& table);

/// The names of what is downloaded: the two above, and those in the "log" directives.
std::unordered_set<std::string> DownloadNames(const LoadedTable& table);

/// The request for what `var` stands for: its read command, or its write command where it has no
/// other, as a long command with its "SetCmdPayload". Throws std::invalid_argument when both are
/// empty ("Can not find " + `called` + " command") or the text is no command.
WireCommand DownloadRequestOf(const VarInfo& var, const std::string& called);

/// The same for the variable named `name`. Throws std::invalid_argument "Can not find " + `called`
/// + " name" when the table has none.
WireCommand DownloadRequestOf(const ConfigParser& table, const std::string& name,
                              const std::string& called);
