#include "variables/options_cell.h"

#include <cmath>
#include <limits>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

#include "variables/fault_list.h"
#include "variables/number_text.h"

namespace {

constexpr std::string_view kListPrefix = "list:";
constexpr std::string_view kSwitchWord = "switch";

using Parsed = std::variant<Control, std::string>;

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const size_t end = text.find(separator);
    parts.push_back(Trim(text.substr(0, end)));
    if (end == std::string_view::npos) {
      return parts;
    }
    text.remove_prefix(end + 1);
  }
}

// Whether a number of the device can be this value at all.
bool IsOfType(int64_t value, const ValueType& type) {
  const int value_bits = 8 * type.size - (type.is_signed ? 1 : 0);
  const int64_t highest =
      value_bits > 32 ? std::numeric_limits<int64_t>::max() : (int64_t{1} << value_bits) - 1;
  return value <= highest && value >= (type.is_signed ? -highest - 1 : 0);
}

// Whether a number of the device can show this text at all. It is cut off at the point.
bool IsShownBy(int32_t shown, const VarInfo& var) {
  const ValueType& type = *var.value_type;
  if (type.kind != ValueKind::kInteger) {
    return true;
  }
  const double number = static_cast<double>(shown) / AsWritten(var.set_coefficient);
  const int value_bits = 8 * type.size - (type.is_signed ? 1 : 0);
  const double beyond = std::ldexp(1.0, value_bits);
  return number < beyond && number >= (type.is_signed ? -beyond : 0.0);
}

// Values of a control that is not text are compared as texts, so they have to be whole numbers as
// the device sends them.
std::string CheckPlainInteger(const VarInfo& var, const char* control) {
  if (var.value_type->kind != ValueKind::kInteger) {
    return std::string("a ") + control + " needs an integer VarType; write one instead of " +
           Quoted(var.var_type);
  }
  if (var.coefficient != 1.0F || var.set_coefficient != 1.0F) {
    return std::string("a ") + control + " needs the coefficients 1; leave those cells empty";
  }
  return {};
}

Parsed ParseRange(std::string_view text, const VarInfo& var) {
  const size_t dots = text.find("..");
  const auto low = WholeNumber(Trim(text.substr(0, dots)));
  const auto high = WholeNumber(Trim(text.substr(dots + 2)));
  if (!low || !high) {
    return "Options " + Quoted(text) + " is no range of 32-bit whole numbers; write it as 1..10";
  }
  if (*low > *high) {
    return "Options " + Quoted(text) + ": the range ends before it begins; write " +
           Quoted(std::to_string(*high) + ".." + std::to_string(*low));
  }
  if (*low == 0 && *high == 0) {
    return "Options " + Quoted(text) + " would not limit anything; write a range, or nothing";
  }
  if (!var.value_type->is_number()) {
    return "a range needs a numeric VarType; write one instead of " + Quoted(var.var_type);
  }
  for (const int32_t end : {*low, *high}) {
    if (!IsShownBy(end, var)) {
      return "Options " + Quoted(text) + ": " + std::to_string(end) + " does not fit " +
             var.var_type.str() +
             (var.set_coefficient == 1.0F ? std::string()
                                          : " when divided by " + ShortText(var.set_coefficient)) +
             "; write a range within the type";
    }
  }
  Control control;
  control.type = kText;
  control.range_min = *low;
  control.range_max = *high;
  return control;
}

Parsed ParseSwitch(std::string_view text, std::string_view labels, const VarInfo& var) {
  if (std::string reason = CheckPlainInteger(var, "switch"); !reason.empty()) {
    return reason;
  }
  Control control;
  text.remove_prefix(kSwitchWord.size());
  if (!text.empty()) {
    if (text.front() != ':' || text.find("..") == std::string_view::npos) {
      return "Options " + Quoted(text) + " after \"switch\" is no range; write it as switch:1..10";
    }
    Parsed range = ParseRange(text.substr(1), var);
    if (range.index() != 0) {
      return range;
    }
    control = std::get<Control>(std::move(range));
  }
  control.type = kSwitch;
  // Only for show, so that another number of them than two is no reason to do without the switch.
  if (!labels.empty()) {
    for (const std::string_view label : Split(labels, '|')) {
      control.options.push_back({static_cast<int32_t>(control.options.size()), std::string(label)});
    }
  }
  return control;
}

Parsed ParseChoice(std::string_view text, std::string_view descriptions, RowKind kind,
                   const VarInfo& var) {
  if (std::string reason = CheckPlainInteger(var, "choice"); !reason.empty()) {
    return reason;
  }
  const std::vector<std::string_view> values = Split(text, '|');
  const std::vector<std::string_view> labels =
      descriptions.empty() ? values : Split(descriptions, '|');
  if (values.size() < 2) {
    return "Options " + Quoted(text) + " is a choice of one; write two values or more, split by |";
  }
  if (values.size() > kMaxOptions) {
    return "Options has " + std::to_string(values.size()) + " values; write at most " +
           std::to_string(kMaxOptions);
  }
  if (labels.size() != values.size()) {
    return "Options has " + std::to_string(values.size()) + " values, OptionDescription " +
           std::to_string(labels.size()) + " labels; write as many, split by |";
  }
  Control control;
  control.type = kind;
  std::unordered_set<int32_t> known;
  for (size_t i = 0; i < values.size(); ++i) {
    const auto value = WholeNumber(values[i]);
    if (!value) {
      return "Options: " + Quoted(values[i]) +
             " is no 32-bit whole number; write numbers as the lidar sends them, and the words in "
             "OptionDescription";
    }
    if (!IsOfType(*value, *var.value_type)) {
      return "Options: " + Quoted(values[i]) + " does not fit " + var.var_type.str() +
             "; write values within the type";
    }
    if (!known.insert(*value).second) {
      return "Options: the value " + Quoted(values[i]) + " stands twice; write each once";
    }
    control.options.push_back({*value, std::string(labels[i])});
  }
  return control;
}

// Cuts "@GroupID-Index" off the end of the cell.
std::string_view TakeSwitchReference(std::string_view* text) {
  const size_t at = text->rfind('@');
  if (at == std::string_view::npos) {
    return {};
  }
  const std::string_view reference = Trim(text->substr(at + 1));
  *text = Trim(text->substr(0, at));
  return reference;
}

bool IsVariableId(std::string_view text) {
  const size_t dash = text.find('-');
  return dash != std::string_view::npos && WholeNumber(text.substr(0, dash)) &&
         WholeNumber(text.substr(dash + 1));
}

Parsed ParseWords(std::string_view text, std::string_view labels, const VarInfo& var) {
  if (text.substr(0, kSwitchWord.size()) == kSwitchWord) {
    return ParseSwitch(text, labels, var);
  }
  if (text.substr(0, kListPrefix.size()) == kListPrefix) {
    return ParseChoice(text.substr(kListPrefix.size()), labels, kTallChoice, var);
  }
  if (text.find("..") != std::string_view::npos) {
    return ParseRange(text, var);
  }
  if (text.find('|') != std::string_view::npos) {
    return ParseChoice(text, labels, kChoice, var);
  }
  Control control = PlainText(var);
  if (text == "file") {
    if (var.value_type->kind != ValueKind::kRaw || var.offset != 0 || !var.get_cmd.empty() ||
        !var.set_cmd.empty()) {
      return "a file is raw with VarLen 0 and neither Get nor Set; write it so";
    }
    control.type = kFile;
  } else if (text == "monitor") {
    control.type = kMonitor;
  } else if (text == "hidden") {
    control.hidden = true;
  } else if (!text.empty()) {
    return "Options " + Quoted(text) +
           " is no range, choice, switch or known word; write it as 1..10, 1|2|3, switch, "
           "list:1|2, "
           "file, monitor or hidden";
  }
  return control;
}

bool TakesSwitchReference(const Control& control) {
  return !control.hidden && (control.type == kReadOnlyText || control.type == kText ||
                             control.type == kChoice || control.type == kSwitch);
}

}  // namespace

Control PlainText(const VarInfo& var) {
  Control control;
  control.type = var.permission == 0 ? kReadOnlyText : kText;
  return control;
}

std::variant<Control, std::string> ParseControl(std::string_view options, std::string_view labels,
                                                const VarInfo& var) {
  std::string_view words = Trim(options);
  const bool refers = words.find('@') != std::string_view::npos;
  const std::string_view reference = TakeSwitchReference(&words);

  Parsed parsed = ParseWords(words, Trim(labels), var);
  if (parsed.index() != 0 || !refers) {
    return parsed;
  }
  auto& control = std::get<Control>(parsed);
  if (!IsVariableId(reference)) {
    return "Options: \"@\" is not followed by a switch; write its GroupID, \"-\" and its Index";
  }
  if (!TakesSwitchReference(control)) {
    return "Options " + Quoted(words) + " cannot depend on a switch; leave out what begins with @";
  }
  control.switch_var_id = reference;
  return parsed;
}
