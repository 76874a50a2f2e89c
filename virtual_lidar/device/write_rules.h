#pragma once

#include <cstdint>
#include <vector>

#include "variables/var_info.h"

/// Whether the device takes these bytes as a new value of the variable: a number within the table's
/// range (0 always passes for a switch), one of the options of a choice, a finite float.
/// `bytes` has exactly the variable's length.
bool IsAcceptableValue(const VarInfo& var, const std::vector<uint8_t>& bytes);
