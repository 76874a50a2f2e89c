#pragma once

#include "variables/fault_list.h"
#include "variables/out_of_use.h"
#include "variables/table_loader.h"

/// Takes the codes that stand both in "Get" and in "Set" of a table out of use, and tells the rows
/// that are likely wrong: the few among the many, or else the later. All variables have their
/// groups.
void FindCodeConflicts(const LoadedTable& table, OutOfUse* out_of_use, FaultList* faults);
