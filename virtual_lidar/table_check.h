#pragma once

#include <ostream>
#include <string>

/// Loads every table of a configuration folder as the programs do and writes each fault as one line
/// "file, line N: reason": variable tables (also their defaults and command texts), the feature
/// table and the authentication table with its keys.
/// Returns the number of faults.
int CheckTables(const std::string& config_folder, std::ostream& out);
