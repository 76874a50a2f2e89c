#pragma once

#include <string>
#include <string_view>

#include "variables/var_info.h"

/// Reads the "Options" and "OptionDescription" cells into the option fields, the range, the
/// controlling switch and the kind of control of `var`, whose other cells have been read already.
/// Whether the controlling switch exists is for the caller to check.
///
/// Returns an empty text, or the reason why the cells do not fit; the variable is then a plain text
/// field.
std::string ReadOptions(std::string_view options, std::string_view descriptions, VarInfo* var);
