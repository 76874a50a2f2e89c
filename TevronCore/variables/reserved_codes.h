#pragma once

#include <cstdint>

#include "variables/model_traits.h"
#include "variables/table_loader.h"

// Command codes that the program sends by itself, with a layout and at a time of its own. What a
// table sent with one of them would restart the lidar, switch its mode or break into a handshake.

/// The variables that restart and reset the lidar, and that alone may name the commands for it.
inline constexpr char kRestart[] = "Restart";
inline constexpr char kReset[] = "Reset";

/// Whether lidars of this family know the code whatever their table says.
bool IsBuiltIn(uint8_t code, SerialFamily family);

/// Takes the codes that are not the table's to use from the rows that name them, each with a fault;
/// the commands of the rows beside those, which would lack bytes, are out of use as well.
/// "Restart" keeps 0x10 and "Reset" 0x25; 0x21 and 0x22 may be written with, and the maintenance
/// commands of the serial models that ask for something may be read with. Downloads are left alone:
/// they travel as long commands.
void TakeReservedCodes(SerialFamily family, LoadedTable* table, FaultList* faults);
