#include "pages/range_check.h"

#include <QDebug>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>

#include "variables/input_problem.h"
#include "variables/number_text.h"

namespace {

constexpr char kOutOfRange[] = " is out of range";
constexpr char kInvalidIp[] = " has invalid IP format";
constexpr char kInvalidMac[] = " has invalid MAC format";

/// The words of the debug log for a violation.
const char* Tag(const std::string& suffix) {
  if (suffix == kInvalidIp) {
    return "has invalid IP format:";
  }
  if (suffix == kInvalidMac) {
    return "has invalid MAC format:";
  }
  return ": detected that";
}

void LogDebug(const char* function, const char* tag, const std::string& text) {
  qDebug().noquote() << function << tag << QString::fromStdString(text);
}

// Both conversions throw with the words of the log, which differ between standard libraries.

int WholeNumberAtStart(const std::string& text) {
  try {
    return std::stoi(text);
  } catch (const std::out_of_range&) {
    throw std::out_of_range("stoi argument out of range");
  } catch (const std::invalid_argument&) {
    throw std::invalid_argument("invalid stoi argument");
  }
}

double DecimalOf(const std::string& text) {
  const std::optional<double> value = SignedDecimal(text);
  if (!value) {
    throw std::invalid_argument("no decimal number");
  }
  return *value;
}

float FloatAtStart(const std::string& text) {
  float value = 0;
  const Conversion outcome = ToFloat(text, &value);
  if (outcome == Conversion::kOutOfRange) {
    throw std::out_of_range("stof argument out of range");
  }
  if (outcome != Conversion::kDone) {
    throw std::invalid_argument("invalid stof argument");
  }
  return value;
}

void LogConversion(const char* function, const std::logic_error& e) {
  const bool too_large = dynamic_cast<const std::out_of_range*>(&e) != nullptr;
  LogDebug(function, too_large ? " Out of range: " : " Invalid argument: ", e.what());
}

bool TruncatesInto(float value, int32_t min, int32_t max) {
  // Outside these bounds the conversion has no defined result, and no range reaches there.
  if (!(value > -2147483904.0F && value < 2147483648.0F)) {
    return false;
  }
  const auto whole = static_cast<int64_t>(value);
  return whole >= min && whole <= max;
}

}  // namespace

bool RangeCheck::CheckPage(const std::vector<const VarInfo*>& vars,
                           const NameHandler& on_violation) {
  constexpr char kFunction[] = "TevronManager::CheckModuleVarsWithinRange";
  bool all_within = true;
  for (const VarInfo* var : vars) {
    if (!IsChecked(*var)) {
      continue;
    }
    const std::string text = table_.ValueOf(*var).text;
    std::string suffix;
    try {
      suffix = Violation(*var, text);
    } catch (const std::logic_error& e) {
      LogConversion(kFunction, e);
      report_.LogLine(
          "The value of " + var->var_name + " is no whole number that can be checked: " + text,
          LogType::kWarning);
      return false;
    }
    if (suffix.empty()) {
      continue;
    }
    all_within = false;
    report_.LogLine("Detected that the user set " + var->var_name + suffix, LogType::kWarning);
    LogDebug(kFunction, Tag(suffix), var->var_name);
    on_violation(var->var_name);
  }
  return all_within;
}

std::string RangeCheck::Violation(const VarInfo& var, const std::string& text) {
  switch (var.value_type->kind) {
    case ValueKind::kText:
    case ValueKind::kRaw:
      return static_cast<int64_t>(text.size()) > LengthLimitOf(var) ? kOutOfRange : "";
    case ValueKind::kAddress:
      return IsAddressText(text) ? "" : kInvalidIp;
    case ValueKind::kMac:
      return IsMacText(text) ? "" : kInvalidMac;
    default:
      break;
  }
  if (var.range_min == 0 && var.range_max == 0) {
    return "";
  }
  if (IsSwitchedOff(var, text)) {
    return "";
  }
  // Of an exact type all of the text is the number.
  const double value =
      var.value_type->is_exact ? DecimalOf(text) : static_cast<double>(WholeNumberAtStart(text));
  return value < var.range_min || value > var.range_max ? kOutOfRange : "";
}

bool RangeCheck::IsSwitchedOff(const VarInfo& var, const std::string& text) {
  if (var.type == RowKind::kSwitch && text == "0") {
    return true;
  }
  if (var.switch_var_id.empty()) {
    return false;
  }
  const VarInfo* control = table_.Find(var.switch_var_id);
  return control != nullptr && table_.ValueOf(*control).text == "0";
}

bool RangeCheck::CheckVar(const VarInfo& var) {
  constexpr char kFunction[] = "TevronManager::CheckVarIsWithinRange";
  if (var.value_type->kind == ValueKind::kText || var.range_min == 0 || var.range_max == 0) {
    return true;
  }
  try {
    if (var.value_type->is_exact) {
      const double value =
          std::trunc(DecimalOf(table_.ValueOf(var).text) * AsWritten(var.coefficient));
      return value >= var.range_min && value <= var.range_max;
    }
    const float value = FloatAtStart(table_.ValueOf(var).text) * var.coefficient;
    return TruncatesInto(value, var.range_min, var.range_max);
  } catch (const std::logic_error& e) {
    LogConversion(kFunction, e);
    return false;
  }
}
