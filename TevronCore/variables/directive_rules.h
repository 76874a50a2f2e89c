#pragma once

#include "variables/table_loader.h"

/// Tells which rows with "GroupID" 0 do nothing, or not what they seem to.
void CheckDirectives(const LoadedTable& table, FaultList* faults);
