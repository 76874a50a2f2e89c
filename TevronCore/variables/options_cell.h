#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "variables/var_info.h"

/// Options that one row may list.
inline constexpr size_t kMaxOptions = 4096;

/// What the "Options" and "OptionDescription" cells make of a variable whose type, coefficients and
/// permission are known, or the reason why they do not fit. Whether the controlling switch exists
/// is for the caller to check.
std::variant<Control, std::string> ParseControl(std::string_view options, std::string_view labels,
                                                const VarInfo& var);

/// The control of a variable whose cells say nothing or do not fit.
Control PlainText(const VarInfo& var);
