#include "variables/options_cell.h"

#include <limits>
#include <optional>
#include <vector>

#include "variables/number_text.h"

namespace {

constexpr std::string_view kListPrefix = "list:";
constexpr std::string_view kSwitchWord = "switch";

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

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

// Whether a number of the device can be this value at all.
bool IsOfType(int64_t value, const ValueType& type) {
  const int value_bits = 8 * type.size - (type.is_signed ? 1 : 0);
  const int64_t highest =
      value_bits > 32 ? std::numeric_limits<int64_t>::max() : (int64_t{1} << value_bits) - 1;
  return value <= highest && value >= (type.is_signed ? -highest - 1 : 0);
}

// Values of a control that is not text are compared as texts, so they have to be whole numbers as
// the device sends them.
std::string CheckPlainInteger(const VarInfo& var, const char* control) {
  if (var.value_type->kind != ValueKind::kInteger) {
    return std::string("a ") + control + " needs an integer VarType, not " + Quoted(var.var_type);
  }
  if (var.coefficient != 1.0F || var.set_coefficient != 1.0F) {
    return std::string("a ") + control + " needs the coefficients 1";
  }
  return {};
}

std::string ReadRange(std::string_view text, VarInfo* var) {
  const size_t dots = text.find("..");
  const auto low = WholeNumber(Trim(text.substr(0, dots)));
  const auto high = WholeNumber(Trim(text.substr(dots + 2)));
  if (!low || !high) {
    return "Options " + Quoted(text) + " is no range of 32-bit whole numbers";
  }
  if (*low > *high) {
    return "Options " + Quoted(text) + ": the range ends before it begins";
  }
  if (*low == 0 && *high == 0) {
    return "Options " + Quoted(text) + " would not limit anything";
  }
  if (!var->value_type->is_number()) {
    return "a range needs a numeric VarType, not " + Quoted(var->var_type);
  }
  var->range_min = *low;
  var->range_max = *high;
  var->type = kText;
  return {};
}

// The labels of a switch are only for show: that they are two is checked when it is shown.
void ReadSwitchLabels(std::string_view descriptions, VarInfo* var) {
  if (descriptions.empty()) {
    return;
  }
  const std::vector<std::string_view> labels = Split(descriptions, '|');
  var->option_labels.assign(labels.begin(), labels.end());
  var->options = {0, 1};
  var->option_values = {"0", "1"};
  var->option_num = 2;
  for (size_t i = 0; i < labels.size() && i < var->option_values.size(); ++i) {
    var->varname_value_to_option.emplace(var->option_values[i], labels[i]);
  }
}

std::string ReadSwitch(std::string_view text, std::string_view descriptions, VarInfo* var) {
  if (std::string reason = CheckPlainInteger(*var, "switch"); !reason.empty()) {
    return reason;
  }
  text.remove_prefix(kSwitchWord.size());
  if (!text.empty()) {
    if (text.front() != ':' || text.find("..") == std::string_view::npos) {
      return "Options " + Quoted(text) + " after \"switch\" is no range";
    }
    if (std::string reason = ReadRange(text.substr(1), var); !reason.empty()) {
      return reason;
    }
  }
  var->type = kSwitch;
  ReadSwitchLabels(descriptions, var);
  return {};
}

std::string ReadChoice(std::string_view text, std::string_view descriptions, RowKind kind,
                       VarInfo* var) {
  if (std::string reason = CheckPlainInteger(*var, "choice"); !reason.empty()) {
    return reason;
  }
  const std::vector<std::string_view> values = Split(text, '|');
  const std::vector<std::string_view> labels =
      descriptions.empty() ? values : Split(descriptions, '|');
  if (labels.size() != values.size()) {
    return "Options has " + std::to_string(values.size()) + " values, OptionDescription " +
           std::to_string(labels.size()) + " labels";
  }
  for (size_t i = 0; i < values.size(); ++i) {
    const auto value = WholeNumber(values[i]);
    if (!value) {
      return "Options: " + Quoted(values[i]) + " is no 32-bit whole number";
    }
    if (!IsOfType(*value, *var->value_type)) {
      return "Options: " + Quoted(values[i]) + " does not fit " + var->var_type;
    }
    if (!var->varname_value_to_option.emplace(std::to_string(*value), labels[i]).second) {
      return "Options: the value " + Quoted(values[i]) + " stands twice";
    }
    var->options.push_back(*value);
    var->option_values.push_back(std::to_string(*value));
    var->option_labels.emplace_back(labels[i]);
  }
  var->option_num = static_cast<int32_t>(values.size());
  var->type = kind;
  return {};
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

std::string ReadControl(std::string_view text, std::string_view descriptions, VarInfo* var) {
  if (text.empty()) {
    return {};
  }
  if (text.substr(0, kSwitchWord.size()) == kSwitchWord) {
    return ReadSwitch(text, descriptions, var);
  }
  if (text.substr(0, kListPrefix.size()) == kListPrefix) {
    return ReadChoice(text.substr(kListPrefix.size()), descriptions, kTallChoice, var);
  }
  if (text.find("..") != std::string_view::npos) {
    return ReadRange(text, var);
  }
  if (text.find('|') != std::string_view::npos) {
    return ReadChoice(text, descriptions, kChoice, var);
  }
  if (text == "file") {
    var->type = kFile;
  } else if (text == "monitor") {
    var->type = kMonitor;
  } else if (text == "hidden") {
    var->hidden = true;
    var->visible = 0;
  } else {
    return "Options " + Quoted(text) + " is no range, choice, switch or known word";
  }
  return {};
}

bool TakesSwitchReference(const VarInfo& var) {
  return !var.hidden && (var.type == kReadOnlyText || var.type == kText || var.type == kChoice ||
                         var.type == kSwitch);
}

void MakePlainText(VarInfo* var) {
  var->type = var->permission == 0 ? kReadOnlyText : kText;
  var->hidden = false;
  var->visible = 1;
  var->range_min = 0;
  var->range_max = 0;
  var->option_num = 0;
  var->options.clear();
  var->option_values.clear();
  var->option_labels.clear();
  var->varname_value_to_option.clear();
  var->switch_var_id.clear();
}

}  // namespace

std::string ReadOptions(std::string_view options, std::string_view descriptions, VarInfo* var) {
  var->type = var->permission == 0 ? kReadOnlyText : kText;
  std::string_view control = Trim(options);
  const bool refers = control.find('@') != std::string_view::npos;
  const std::string_view reference = TakeSwitchReference(&control);

  std::string reason = ReadControl(control, Trim(descriptions), var);
  if (reason.empty() && refers) {
    if (!IsVariableId(reference)) {
      reason = "Options: \"@\" is not followed by a GroupID, \"-\" and an Index";
    } else if (!TakesSwitchReference(*var)) {
      reason = "Options " + Quoted(control) + " cannot depend on a switch";
    } else {
      var->switch_var_id = reference;
    }
  }
  if (!reason.empty()) {
    MakePlainText(var);
  }
  return reason;
}
