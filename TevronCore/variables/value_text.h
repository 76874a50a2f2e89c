#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "variables/var_info.h"

/// Turns a variable's bytes, as cut out of a reply, into the text that the user sees.
///
/// The names "MAC", "HWVER" and "SWVER_YMD" decide before the type does. Integers are written in
/// decimal, or times the variable's coefficient with two decimals when that is not 1; "float32" and
/// "double" likewise times the coefficient, always with two decimals; "DT" is a duration in
/// seconds. Trailing zero bytes of a text are padding and left out. Independent of the locale.
///
/// Returns false and fills *fault when the bytes do not fit the variable or the type has no text
/// form; *text is then untouched. Neither pointer may be null.
bool DecodeValue(const VarInfo& var, const std::vector<uint8_t>& slice, std::string* text,
                 std::string* fault);
