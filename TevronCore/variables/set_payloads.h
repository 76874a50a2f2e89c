#pragma once

#include "variables/fault_list.h"
#include "variables/out_of_use.h"
#include "variables/table_loader.h"

/// Gives the write commands of a table the fixed bytes of their "SetCmdPayload", and hinders those
/// where it is in doubt which bytes these are. All variables have their groups.
void TakeSetPayloads(LoadedTable* table, OutOfUse* out_of_use, FaultList* faults);

/// Takes the downloads out of use whose short command is no row of hexadecimal pairs.
void CheckDownloads(const LoadedTable& table, OutOfUse* out_of_use, FaultList* faults);
