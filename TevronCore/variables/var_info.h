#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "variables/value_type.h"

/// Kind of control that a page shows for a variable; the number is what the screens compare.
enum RowKind : int32_t {
  kReadOnlyText = 0,
  kText = 1,
  kSwitch = 2,
  kChoice = 3,
  kFile = 4,
  kTallChoice = 5,
  kMonitor = 7,
};

/// The variable that holds key material: its bytes are carried, and never shown or logged.
inline constexpr char kSharedSecretKey[] = "Shared Secret Key";

/// One device variable, as a row of a model's table describes it.
///
/// Everything but current_val and switch_index is fixed once the table is loaded (the position and
/// length of "Shared Secret Key" excepted, see ConfigParser::GetVarPosOffset). Those two change
/// under the lock of the ConfigParser that owns the record: while other threads run, read them
/// through ConfigParser::ValueOf.
struct VarInfo {
  std::string var_id;         ///< "GroupID" text, "-", "Index" text.
  int32_t index = 0;          ///< "Index" as a number.
  std::string get_cmd;        ///< Read command as written in the table; empty: cannot be read.
  std::string set_cmd;        ///< Write command as written in the table; empty: cannot be written.
  std::string var_type;       ///< Value type name as written in the table.
  std::string var_name;       ///< Shown to the user; unique in the table.
  std::string unit_suffix;    ///< " (" + unit + ")", empty without a unit.
  int32_t get_start_pos = 0;  ///< First byte of the value in the reply to get_cmd.
  int32_t set_start_pos = 0;  ///< First byte of the value in the payload of set_cmd.
  int32_t offset = 1;         ///< Length of the value in bytes.
  int32_t permission = 0;     ///< 0: read-only for the user.
  float coefficient = 1.0F;   ///< Shown value = device integer x coefficient. Never 0.
  float set_coefficient = 1.0F;  ///< Device integer = written value / set_coefficient. Never 0.
  std::string default_val;       ///< Shown until something was read.
  std::string current_val;       ///< What is shown: last reading, or the user's edit.
  std::string switch_index;  ///< For a switch, the state at loading: "0" off, "1" on; else empty.
  std::vector<int32_t> options;  ///< Option values of a choice or switch, in table order.
  std::map<std::string, std::string> varname_value_to_option;  ///< Option value text -> label.
  int32_t visible = 1;                                         ///< 0 exactly when hidden.
  int32_t option_num = 0;                                      ///< Number of entries in options.
  int32_t type = kReadOnlyText;                                ///< A RowKind.
  bool hidden = false;  ///< Carried in payloads, never shown.

  const ValueType* value_type = &ValueTypeOf({});  ///< What var_type names; never null.
  std::string unit;                                ///< "Unit" cell.
  std::string group_id;                            ///< "GroupID" cell.
  std::string function_module;                     ///< Page that shows the variable; empty: none.
  std::vector<std::string> option_values;          ///< options as texts.
  std::vector<std::string> option_labels;  ///< Labels of option_values; a switch may have none.
  int32_t check_enable = 0;                ///< 1: takes part in the range check before saving.
  int32_t length_limit = 0;                ///< Longest text of a "string" or "raw" value, in bytes.
  int32_t range_min = 0;                   ///< Both ends 0: the value has no range.
  int32_t range_max = 0;
  std::string
      switch_var_id;  ///< The range counts only while this variable is not "0"; empty: always.
  bool timer_update = false;          ///< Shown text follows the periodic page refresh.
  std::string read_payload_text;      ///< "GetCmdPayload" cell; part of the key of a read group.
  std::vector<uint8_t> read_payload;  ///< Accompanies get_cmd.
  std::vector<uint8_t> set_payload;   ///< Fixed bytes behind the text bytes of a long set_cmd.
  size_t line = 0;                    ///< 1-based line of the table file where the row starts.
  size_t table_position = 0;          ///< Place among the variables of its table, from 0.
};

/// Sets var_type and what it names.
void SetValueType(std::string_view name, VarInfo* var);

/// Whether a row of the screens may change the value at all: the user is permitted to, some command
/// writes it, and its type has a text form that can be encoded ("string", "raw" and "DT" have
/// none).
bool CanBeChanged(const VarInfo& var);

/// State of a switch that shows this text: "0" exactly when the text is "0", else "1".
std::string SwitchIndexOf(const std::string& text);
