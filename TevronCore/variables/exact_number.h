#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "variables/value_type.h"

// Whole numbers of the device as decimal texts, times a coefficient, without any rounding. The
// coefficient counts as its shortest decimal text: 0.01F is a hundredth.

/// The number whose bits stand in the low bytes of `bits`, times the coefficient, with as many
/// decimals as the coefficient has: 1200 x 0.01 is "12.00". `type` is an integer type.
std::string ExactText(const ValueType& type, uint64_t bits, float coefficient);

/// The bits of the number that `text`, a decimal number without exponent, is when divided by the
/// coefficient. Or the reason why there is none: the text is no number, no multiple of the
/// coefficient, or beyond the type.
std::variant<uint64_t, std::string> ExactBits(const ValueType& type, std::string_view text,
                                              float coefficient);

/// The least and the greatest number of the type, times the coefficient; the smaller one first.
std::string ExactRange(const ValueType& type, float coefficient);
