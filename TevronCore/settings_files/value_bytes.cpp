#include "settings_files/value_bytes.h"

#include <QString>
#include <algorithm>
#include <memory>

#include "CmxClient/fov_command.h"
#include "pages/fov_table.h"
#include "variables/command_code.h"
#include "variables/field_group.h"
#include "variables/str_parser.h"
#include "variables/value_text.h"

namespace {

using Kind = InputProblem::Kind;
using Bytes = std::vector<uint8_t>;

InputRule RuleOf(const VarInfo& var, bool range_counts) {
  InputRule rule;
  rule.type = var.value_type;
  rule.set_coefficient = var.set_coefficient;
  if (range_counts) {
    rule.range_min = var.range_min;
    rule.range_max = var.range_max;
  }
  rule.is_switch = var.type == kSwitch;
  return rule;
}

bool IsChoice(const VarInfo& var) { return var.type == kChoice || var.type == kTallChoice; }

InputProblem NoSuchOption(const VarInfo& var, Kind kind) {
  std::string values;
  for (const Option& option : var.options) {
    values += (values.empty() ? "" : ", ") + std::to_string(option.value);
  }
  return {kind, "None of " + values};
}

/// The value of the option with this label; else the text.
std::string OptionText(const VarInfo& var, const std::string& text) {
  if (!IsChoice(var) || OptionIndexOf(var, text) >= 0) {
    return text;
  }
  const auto option = std::find_if(var.options.begin(), var.options.end(),
                                   [&](const Option& each) { return each.label == text; });
  return option == var.options.end() ? text : std::to_string(option->value);
}

WantedValue OfBytes(const VarInfo& var, Bytes bytes, std::string text, bool range_counts) {
  const InputRule rule = RuleOf(var, range_counts);
  WantedValue wanted{std::move(bytes), std::move(text), {}};
  if (IsFovTable(var) && !kavel::lidar::IsValidFovTable(wanted.bytes)) {
    wanted.problem = {Kind::kImpossible, "Ten angles from 0 to 360 are needed"};
  } else if (IsChoice(var) && OptionIndexOf(var, wanted.text) < 0) {
    wanted.problem = NoSuchOption(var, Kind::kUnwanted);
  } else if (IsOutsideRange(rule, wanted.text)) {
    wanted.problem = {Kind::kUnwanted, "Outside " + RangeText(rule)};
  }
  return wanted;
}

WantedValue OfFovText(const VarInfo& var, const std::string& text, const Bytes& held) {
  FovTable::Degrees degrees{};
  FovTable::Degrees unused{};
  uint8_t mode = 0;
  if (!ParseFovTexts(text, &degrees)) {
    return {
        {}, text, {Kind::kImpossible, "Ten angles from 0 to 360 with commas between are needed"}};
  }
  if (!kavel::lidar::ParseFovTable(held, &unused, &mode)) {
    return {{}, text, {Kind::kImpossible, "The mode of the lidar's table is not known"}};
  }
  const Bytes bytes = kavel::lidar::BuildFovTable(degrees, kavel::lidar::kFovPairs, mode);
  return {bytes, *TextOfBytes(var, bytes), {}};
}

WantedValue OfText(const VarInfo& var, const std::string& typed, bool range_counts) {
  WantedValue wanted{{}, OptionText(var, typed), {}};
  if (!var.value_type->has_input || !FillsItsPlace(var)) {
    wanted.problem = {Kind::kImpossible, "A value of this type cannot be written as a text"};
    return wanted;
  }
  wanted.problem = FindInputProblem(RuleOf(var, range_counts), wanted.text);
  const bool is_possible = wanted.problem.kind != Kind::kImpossible;
  if (IsChoice(var) && OptionIndexOf(var, wanted.text) < 0) {
    wanted.problem = NoSuchOption(var, is_possible ? Kind::kUnwanted : Kind::kImpossible);
  }
  if (!is_possible) {
    return wanted;
  }
  wanted.bytes = CreateStrParser(var.var_type)->Parse(wanted.text, var.set_coefficient);
  wanted.text = TextOfBytes(var, wanted.bytes).value_or(wanted.text);
  return wanted;
}

}  // namespace

bool IsFovTable(const VarInfo& var) {
  return var.value_type->kind == ValueKind::kRaw &&
         IsCommand(var.set_cmd, kavel::lidar::kFovCommand);
}

bool CanBeApplied(const VarInfo& var) {
  return CanBeChanged(var) || (IsFovTable(var) && var.write->obstacle.empty());
}

std::optional<std::string> TextOfBytes(const VarInfo& var, const Bytes& bytes) {
  if (IsFovTable(var)) {
    FovTable::Degrees degrees{};
    uint8_t mode = 0;
    return kavel::lidar::ParseFovTable(bytes, &degrees, &mode) ? std::optional(FovTexts(degrees))
                                                               : std::nullopt;
  }
  std::string text;
  std::string unused_fault;
  if (!DecodeValue(var, bytes, &text, &unused_fault)) {
    return std::nullopt;
  }
  return QString::fromStdString(text).toStdString();
}

WantedValue WantedOf(const VarInfo& var, const SavedValue& value, const Bytes& held,
                     bool range_counts) {
  const bool fits = value.bytes && value.bytes->size() == static_cast<size_t>(var.offset);
  if (fits) {
    const std::optional<std::string> text = TextOfBytes(var, *value.bytes);
    if (!value.text || text == value.text) {
      return OfBytes(var, *value.bytes, text.value_or(""), range_counts);
    }
  }
  if (!value.text) {
    return {{},
            "",
            {Kind::kImpossible, "It has " + std::to_string(value.bytes->size()) +
                                    " bytes, and its place " + std::to_string(var.offset)}};
  }
  return IsFovTable(var) ? OfFovText(var, *value.text, held.empty() && fits ? *value.bytes : held)
                         : OfText(var, *value.text, range_counts);
}
