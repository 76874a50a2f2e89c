#pragma once

#include <string>

#include "variables/var_info.h"

/// What a user has to know before typing a value, and cannot see from the control: "5 to 500", "1
/// to 10, or off", "-100 to 100, steps of 0.25", or why a value cannot be changed although the user
/// is permitted to. Empty where there is nothing to say.
std::string InputHint(const VarInfo& var);
