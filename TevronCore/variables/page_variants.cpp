#include "variables/page_variants.h"

#include <QDateTime>
#include <QString>
#include <chrono>
#include <optional>

#include "variables/input_hint.h"

namespace {

QString Text(const std::string& text) { return QString::fromStdString(text); }

void AddOptions(const VarInfo& var, QVariantMap* map) {
  QVariantList values;
  QVariantList labels;
  QVariantMap label_of_value;
  for (const Option& option : var.options) {
    values.append(QString::number(option.value));
    labels.append(Text(option.label));
    label_of_value.insert(values.back().toString(), labels.back());
  }
  map->insert("option_num", static_cast<int>(var.options.size()));
  map->insert("options", labels);
  map->insert("option_values", values);
  map->insert("varname_value_to_option", label_of_value);
}

// A switch is labelled with two texts or with none.
bool HasOddLabels(const VarInfo& var) {
  return var.type == kSwitch && !var.options.empty() && var.options.size() != 2;
}

// Of another day with its date; empty without a time.
QString LocalTime(const std::optional<std::chrono::system_clock::time_point>& time) {
  if (!time) {
    return {};
  }
  const auto since_epoch =
      std::chrono::duration_cast<std::chrono::milliseconds>(time->time_since_epoch());
  const QDateTime local = QDateTime::fromMSecsSinceEpoch(since_epoch.count());
  const bool is_today = local.date() == QDate::currentDate();
  return local.toString(is_today ? "hh:mm:ss" : "yyyy-MM-dd hh:mm:ss");
}

}  // namespace

void InsertValue(const VarInfo& var, const ConfigParser::Value& value, QVariantMap* map) {
  map->insert("current_val", Text(value.text));
  map->insert("switch_index", var.type == kSwitch ? Text(SwitchIndexOf(value.text)) : QString());
  map->insert("option_index", OptionIndexOf(var, value.text));
  map->insert("edited", value.edited);
  map->insert("state", TextOf(value.state));
  map->insert("read_at", LocalTime(value.read_at));
  map->insert("wanted", Text(value.wanted));
  map->insert("reading", Text(value.reading));
  map->insert("read_failure", Text(value.read_failure));
}

QVariantMap VariableMap(const VarInfo& var, const ConfigParser::Value& value) {
  QVariantMap map;
  map.insert("var_id", Text(var.var_id));
  map.insert("get_cmd", Text(var.get_cmd));
  map.insert("set_cmd", Text(var.set_cmd));
  map.insert("var_type", Text(var.var_type));
  map.insert("var_name", Text(var.var_name));
  map.insert("index", var.index);
  map.insert("get_start_pos", var.get_start_pos);
  map.insert("set_start_pos", var.set_start_pos);
  map.insert("offset", var.offset);
  map.insert("permission", var.permission);
  map.insert("default_val", Text(var.default_val));
  map.insert("visible", var.hidden ? 0 : 1);
  map.insert("type", var.type);
  AddOptions(var, &map);

  map.insert("unit", Text(var.unit));
  map.insert("unit_suffix", Text(UnitSuffix(var)));
  map.insert("coefficient", var.coefficient);
  map.insert("set_coefficient", var.set_coefficient);
  map.insert("range_min", var.range_min);
  map.insert("range_max", var.range_max);
  map.insert("length_limit", LengthLimitOf(var));
  map.insert("switch_var_id", Text(var.switch_var_id));
  map.insert("check_enable", IsChecked(var) ? 1 : 0);
  map.insert("editable", CanBeChanged(var));
  map.insert("timer_update", var.timer_update);
  map.insert("hint", Text(InputHint(var)));
  map.insert("group_id", Text(std::string(GroupIdOf(var))));
  map.insert("page", Text(var.function_module));
  InsertValue(var, value, &map);
  return map;
}

QVariantList PagesAsVariants(const ConfigParser& parser, const PageModel& pages,
                             std::vector<std::string>* errors) {
  std::vector<const VarInfo*> shown;
  for (int page = 0; page < pages.page_count(); ++page) {
    const std::vector<const VarInfo*> vars = pages.VariablesOf(page);
    shown.insert(shown.end(), vars.begin(), vars.end());
  }
  const std::vector<ConfigParser::Value> values = parser.ValuesOf(shown);

  size_t next = 0;
  QVariantList level1;
  for (const Page& page : pages.pages()) {
    QVariantList level2;
    for (const Page::Group& group : page.groups) {
      QVariantList level3;
      for (const VarInfo* var : group.vars) {
        QVariantMap map = VariableMap(*var, values[next++]);
        map.insert("page_description", Text(page.description));
        map.insert("group_caption", Text(group.caption));
        level3.append(map);
        if (errors != nullptr && HasOddLabels(*var)) {
          errors->push_back("config file error, Please check the configuration of type 2 of " +
                            var->var_name);
        }
      }
      level2.append(QVariant(level3));
    }
    level1.append(QVariant(level2));
  }
  return level1;
}

QVariantList PageNames(const PageModel& pages) {
  QVariantList names;
  for (const Page& page : pages.pages()) {
    names.append(Text(page.name));
  }
  return names;
}

QVariantList PageRows(const PageModel& pages) {
  QVariantList list;
  for (int level1 = 0; level1 < pages.page_count(); ++level1) {
    QVariantList rows;
    for (const VarInfo* var : pages.VariablesOf(level1)) {
      const PagePosition position = pages.PositionOf(*var);
      rows.append(QVariant(QVariantList{Text(var->var_name + UnitSuffix(*var)), var->type,
                                        position.level1, position.level2, position.level3}));
    }
    list.append(QVariant(rows));
  }
  return list;
}
