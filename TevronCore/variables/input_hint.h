#pragma once

#include <string>

#include "variables/var_info.h"

/// What a user has to know before typing a value, as one or more short sentences: range, format and
/// unit, and whatever would be refused on saving (a type that cannot be changed, the narrow range
/// of "uint32" and "uint64"). Never empty.
std::string InputHint(const VarInfo& var);
