#pragma once

#include <cstdint>
#include <string>

#include "variables/value_type.h"

/// Four decimal numbers up to 255 between dots; leading zeros are taken.
bool IsAddressText(const std::string& text);
/// Six pairs of hexadecimal digits between colons.
bool IsMacText(const std::string& text);

/// What is wrong with a text that is being typed for a value of this type, in a few words; empty
/// when nothing is. Follows the check of a page (RangeCheck), so that a field never accepts in
/// silence what saving would then question. `range_min` and `range_max` both 0: no range.
std::string InputProblem(const ValueType& type, int32_t range_min, int32_t range_max,
                         const std::string& text);
