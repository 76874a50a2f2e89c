#pragma once

#include <cstdint>
#include <string>

#include "variables/value_type.h"

/// Four decimal numbers up to 255 between dots; leading zeros are taken.
bool IsAddressText(const std::string& text);
/// Six pairs of hexadecimal digits between colons.
bool IsMacText(const std::string& text);

/// What decides about a text for a variable; the fields are those of VarInfo.
struct InputRule {
  const ValueType* type = &kUnknownType;  ///< never null
  float set_coefficient = 1.0F;           ///< not 0
  int32_t range_min = 0;                  ///< both ends 0: no range
  int32_t range_max = 0;
  bool is_switch = false;  ///< "0" is off, whatever the range
};

/// What becomes of a text that is being typed.
struct InputProblem {
  enum class Kind {
    kNone,
    kRounded,    ///< another value than the text would be stored
    kUnwanted,   ///< can be written, and saving asks first, as the check of a page does
    kImpossible  ///< has no bytes: saving would fail
  };
  Kind kind = Kind::kNone;
  std::string text;  ///< In a few words for the user; empty for kNone.
};

/// Follows the conversion to bytes (StrParser) and the check of a page (RangeCheck), so that a
/// field never accepts in silence what saving would then change, question or refuse. A type without
/// input has no problem here.
InputProblem FindInputProblem(const InputRule& rule, const std::string& text);

/// Whether a number lies outside the rule's range, as the check of a page sees it; never without a
/// range, of a switch that is off, or of a type that is no number.
bool IsOutsideRange(const InputRule& rule, const std::string& text);

/// The range for the user, as "5 to 500".
std::string RangeText(const InputRule& rule);

/// The ends of what the integer type `type` holds, times the coefficient, as "0 to 127.5".
std::string TypeRange(const ValueType& type, float set_coefficient);

/// Whether an integer type lets only what truncates to 0 through; see UintParser.
bool TakesOnlyZero(const ValueType& type);
