#pragma once

#include "variables/fault_list.h"
#include "variables/var_info.h"

/// Tells what in the cells of one row does not fit together. The variable is complete but for its
/// places; its commands are still those of the table.
void CheckRow(const VarInfo& var, FaultList* faults);
