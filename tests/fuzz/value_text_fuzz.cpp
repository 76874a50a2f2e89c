#include <cmath>
#include <limits>
#include <stdexcept>

#include "fuzz/fuzz_targets.h"
#include "variables/input_hint.h"
#include "variables/input_problem.h"
#include "variables/number_text.h"
#include "variables/str_parser.h"
#include "variables/value_encoder.h"
#include "variables/value_text.h"

namespace {

constexpr size_t kMostBytes = 64;

/// Whether the text of a value says all of its bytes.
bool SaysAll(const VarInfo& var, const Bytes& bytes) {
  if (var.var_name == "HWVER") {
    return bytes[8] != 0 && bytes[15] == 0;
  }
  if (var.var_name == "SWVER_YMD") {
    return bytes[11] != 0;
  }
  if (var.var_name == "MAC") {
    return bytes.size() == 6;
  }
  const ValueType& type = *var.value_type;
  switch (type.kind) {
    case ValueKind::kInteger:
      return FillsItsPlace(var) && (type.is_exact || var.coefficient == 1.0F);
    case ValueKind::kAddress:
    case ValueKind::kMac:
      return FillsItsPlace(var);
    case ValueKind::kDuration:
      return !bytes.empty();
    default:
      return type.kind == ValueKind::kText;
  }
}

void CheckBytes(const VarInfo& var, const Bytes& bytes) {
  std::string text;
  std::string fault;
  if (!DecodeValue(var, bytes, &text, &fault)) {
    Require(!fault.empty() && text.empty(), "bytes have a text or a fault");
    return;
  }
  Bytes again;
  std::string error;
  const bool encoded = EncodeValueText(var, text, &again, &error);
  Require(again.size() == bytes.size(), "a text is encoded in the place that it has");
  Require(!SaysAll(var, bytes) || (encoded && again == bytes), "bytes are encoded as they were");
}

bool NameDecides(const VarInfo& var) {
  return var.var_name == "HWVER" || var.var_name == "SWVER_YMD" || var.var_name == "MAC";
}

/// What the user types, by the parsers and by what a field says of it meanwhile.
void CheckInput(const VarInfo& var, const std::string& text) {
  const ValueType& type = *var.value_type;
  const auto parser = CreateStrParser(std::string(type.name));
  bool parsed = false;
  Bytes bytes;
  try {
    bytes = parser != nullptr ? parser->Parse(text, var.set_coefficient) : Bytes();
    parsed = parser != nullptr;
  } catch (const std::invalid_argument& e) {
    Require(*e.what() != '\0', "a refusal has its reason");
  }
  if (!type.has_input) {
    return;
  }
  Require(!parsed || bytes.size() == static_cast<size_t>(type.size), "a value has its size");
  const InputProblem problem = FindInputProblem({&type, var.set_coefficient}, text);
  Require(parsed || problem.kind == InputProblem::Kind::kImpossible,
          "a field says what cannot be saved");
  if (problem.kind == InputProblem::Kind::kNone && !NameDecides(var)) {
    Bytes encoded;
    std::string shown;
    std::string ignored;
    Require(DecodeValue(var, bytes, &shown, &ignored), "what is typed can be shown");
    Require(!type.is_number() || SignedDecimal(shown).has_value(), "a number stays one");
    const bool is_exact = type.is_exact && EncodeValueText(var, text, &encoded, &ignored);
    Require(!is_exact || encoded == bytes, "both encoders agree");
  }
}

void CheckText(const VarInfo& var, const std::string& text) {
  Bytes bytes;
  std::string error;
  const bool encoded = EncodeValueText(var, text, &bytes, &error);
  Require(bytes.size() == static_cast<size_t>(var.offset), "a value fills its place");
  Require(encoded || !error.empty(), "a text that is no value is told");
  CheckInput(var, text);
  InputHint(var);
  SwitchIndexOf(text);
}

}  // namespace

void FuzzValueText(FuzzInput input) {
  static TextPool texts;
  VarInfo var;
  const std::string type(ValueTypeOf(input.Line()).name);
  SetValueType(texts.Share(type), &var);
  const float coefficient = DecimalNumber(input.Line()).value_or(1.0F);
  if (coefficient == 0.0F) {
    return;  // a table's fault
  }
  var.coefficient = var.set_coefficient = coefficient;
  var.var_name = input.Line();
  const Bytes rest = input.Rest();
  const std::string text(rest.begin(), rest.end());
  CheckText(var, text);
  const Bytes bytes(rest.begin(),
                    rest.begin() + static_cast<std::ptrdiff_t>(std::min(rest.size(), kMostBytes)));
  var.offset = static_cast<int32_t>(bytes.size());
  CheckBytes(var, bytes);
}
