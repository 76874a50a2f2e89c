#pragma once

#include <QVariantList>
#include <QVariantMap>
#include <string>
#include <vector>

#include "variables/pages.h"

// The lists that the screens index, made from a table and its pages. Values are copied under the
// table's lock: one list never mixes two moments.

/// All pages as [level1][level2][level3] -> map of one variable (see VariableMap).
/// Adds to *errors (may be null) one text for every switch whose option lists do not match:
/// "config file error, Please check the configuration of type 2 of " and its name; the caller
/// reports them at error level.
QVariantList PagesAsVariants(const ConfigParser& parser, const PageModel& pages,
                             std::vector<std::string>* errors);

/// The page names.
QVariantList PageNames(const PageModel& pages);

/// Per page the list of its rows; a row is [caption, row kind, level1, level2, level3].
QVariantList PageRows(const PageModel& pages);

/// The display fields of one variable. Keys, texts unless said otherwise: "var_id", "get_cmd",
/// "set_cmd", "var_type", "var_name", "index", "get_start_pos", "set_start_pos", "offset",
/// "permission" (numbers), "default_val", "current_val", "switch_index" (of a switch: "0" off, "1"
/// on), "visible", "option_num", "type" (numbers), "varname_value_to_option" (map from value text
/// to label), "options" (list of the texts to offer); and beyond the record: "option_values" (list,
/// beside "options"), "option_index" (number: the entry that matches current_val, -1 none), "unit",
/// "unit_suffix", "coefficient", "set_coefficient", "range_min", "range_max", "length_limit"
/// (numbers), "switch_var_id", "check_enable" (number), "edited", "editable", "timer_update"
/// (booleans), "hint" (see InputHint), "group_id", "group_caption", "page", "page_description",
/// "state" (see TextOf), "read_at" (local time of the last reading), "wanted" (in the state
/// "differs": what was written), "reading" (in the state "edited": what the lidar holds),
/// "read_failure" (why the last attempt to read it failed).
QVariantMap VariableMap(const VarInfo& var, const ConfigParser::Value& value);

/// Those of the fields that depend on the value.
void InsertValue(const VarInfo& var, const ConfigParser::Value& value, QVariantMap* map);
