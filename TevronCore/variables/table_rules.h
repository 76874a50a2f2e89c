#pragma once

#include <string>

#include "variables/config_folder.h"
#include "variables/table_loader.h"

// What a model's table has to keep to as a whole, beyond what each of its rows says by itself; see
// docs/variable-tables.md. Whoever loads a model loads it here, so that a fault is told everywhere
// in the same words.

/// Reads the table of a model and adds what is wrong with it as a whole to its faults, in the order
/// of the lines; behind them stands what is wrong with the folders. Commands that are not the
/// table's to use are taken from the rows that name them. Where LoadTable throws, the table is
/// empty and has that one fault of its own.
LoadedTable LoadModelTable(const ConfigFolder& config, const std::string& model);

/// The same for the rows of a monitor table, as LoadTable gave them.
void ApplyMonitorTableRules(LoadedTable* table, FaultList* faults);
