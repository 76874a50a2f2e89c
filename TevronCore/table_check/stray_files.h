#pragma once

#include <string>

#include "variables/config_folder.h"
#include "variables/table_fault.h"

/// Warns of tables and key files that nobody reads: their names are only nearly right, or no model
/// is called like their folder. A site would wonder why nothing of them counts. `model` limits the
/// monitor tables to its own, unless it is empty.
void CheckStrayFiles(const ConfigFolder& folder, const std::string& model, TableFaults* faults);
