#include "values.h"

#include <algorithm>

#include "CmxClient/hex_text.h"
#include "names.h"
#include "output.h"
#include "settings_files/settings_reading.h"
#include "settings_files/value_bytes.h"

namespace {

/// What the screens show in the place of a choice's value; "" for others.
std::string LabelOf(const VarInfo& var, const std::string& text) {
  const int place = OptionIndexOf(var, text);
  const std::string label = place < 0 ? "" : var.options[static_cast<size_t>(place)].label;
  return label == text ? "" : label;
}

}  // namespace

std::vector<const VarInfo*> ReadableVariables(const ConfigParser& table) {
  std::vector<const VarInfo*> readable = SavedVariables(table);
  for (const VarInfo* var : table.InTableOrder()) {
    if (!table.IsOwn(*var) && !var->get_cmd.empty()) {
      readable.push_back(var);
    }
  }
  return readable;
}

std::vector<const VarInfo*> NamedVariables(const LidarModel& model,
                                           const std::vector<const VarInfo*>& from,
                                           const std::vector<std::string>& names) {
  if (names.empty()) {
    return from;
  }
  std::vector<std::string> known;
  known.reserve(from.size());
  for (const VarInfo* var : from) {
    known.push_back(var->var_name);
  }
  for (const Page& page : model.pages.pages()) {
    const bool is_variable = std::find(known.begin(), known.end(), page.name) != known.end();
    known.push_back(is_variable ? page.name + " (page)" : page.name);
  }
  std::vector<const VarInfo*> named;
  const auto add = [&named](const VarInfo* var) {
    if (std::find(named.begin(), named.end(), var) == named.end()) {
      named.push_back(var);
    }
  };
  for (const std::string& name : names) {
    const size_t place = MatchName(known, name, "variable or page");
    if (place < from.size()) {
      add(from[place]);
      continue;
    }
    for (const VarInfo* var : model.pages.VariablesOf(static_cast<int>(place - from.size()))) {
      if (std::find(from.begin(), from.end(), var) != from.end()) {
        add(var);
      }
    }
  }
  return named;
}

QJsonObject ValueObject(const VarInfo& var, const ConfigParser::Value& value) {
  const bool is_known = value.has_bytes;
  const std::optional<std::string> text = is_known ? TextOfBytes(var, value.bytes) : std::nullopt;
  const std::string hex = kavel::lidar::HexText(value.bytes);
  return {{"name", QString::fromStdString(var.var_name)},
          {"id", QString::fromStdString(var.var_id)},
          {"page", QString::fromStdString(var.function_module)},
          {"text", text ? QJsonValue(QString::fromStdString(*text)) : QJsonValue()},
          {"label", is_known ? TextOrNull(LabelOf(var, value.text)) : QJsonValue()},
          {"hex", is_known ? QJsonValue(QString::fromStdString(hex)) : QJsonValue()},
          {"unit", QString::fromStdString(var.unit)},
          {"state", TextOf(value.state)}};
}

QJsonArray ValueObjects(const ConfigParser& table, const std::vector<const VarInfo*>& vars) {
  QJsonArray objects;
  for (const VarInfo* var : vars) {
    objects.append(ValueObject(*var, table.ValueOf(*var)));
  }
  return objects;
}

std::string ValueLine(const VarInfo& var, const ConfigParser::Value& value) {
  std::string line = var.var_name + " = ";
  if (!value.has_bytes) {
    return line + "(unread: " + (value.read_failure.empty() ? "?" : value.read_failure) + ")";
  }
  line += TextOfBytes(var, value.bytes).value_or(kavel::lidar::HexText(value.bytes));
  line += var.unit.empty() ? "" : " " + var.unit.str();
  const std::string label = LabelOf(var, value.text);
  return label.empty() ? line : line + " (" + label + ")";
}
