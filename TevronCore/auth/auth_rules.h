#pragma once

#include <string>
#include <vector>

#include "variables/config_folder.h"
#include "variables/config_parser.h"
#include "variables/model_traits.h"
#include "variables/table_fault.h"

// What the authentication tables and keys of a folder have to keep to, beyond what stops a
// connection; see docs/config-files.md. Nothing here tells a key.

/// Everything that is wrong with the way the model authenticates: the tables as they are looked up
/// for it, its row, the keys that it needs, and how both go with `table`, the model's own.
void CheckAuth(const ConfigFolder& folder, const std::string& model, SerialFamily family,
               const ConfigParser& table, TableFaults* faults);

/// What no model of its own would find: rows of models without a table, key files that are wrong or
/// badly kept, and that there is no table at all.
void CheckAuthFiles(const ConfigFolder& folder, TableFaults* faults);
