#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "variables/shared_text.h"
#include "variables/value_type.h"

struct FieldGroup;

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

/// An entry of a choice or a state of a switch.
struct Option {
  int32_t value = 0;
  std::string label;
};

/// How a variable is shown and what may be entered.
struct Control {
  int32_t type = kReadOnlyText;  ///< A RowKind.
  bool hidden = false;           ///< Carried in payloads, never shown.
  int32_t range_min = 0;         ///< Both ends 0: the value has no range.
  int32_t range_max = 0;
  std::vector<Option> options;  ///< Of a choice or switch, in table order; a switch may have none.
  /// The range counts only while this variable is not "0"; empty: always.
  std::string switch_var_id;
};

/// One device variable, as a row of a model's table describes it.
///
/// Fixed once the table is loaded (the place of "Shared Secret Key" excepted, see
/// ConfigParser::GetVarPosOffset). The value is ConfigParser's, see ValueOf there; the shared texts
/// are the table's.
struct VarInfo : Control {
  std::string var_id;         ///< "GroupID" text, "-", "Index" text.
  int32_t index = 0;          ///< "Index" as a number.
  SharedText get_cmd;         ///< Read command as written in the table; empty: cannot be read.
  SharedText set_cmd;         ///< Write command as written in the table; empty: cannot be written.
  SharedText var_type;        ///< Value type name as written in the table.
  std::string var_name;       ///< Shown to the user; unique in the table.
  SharedText unit;            ///< "Unit" cell.
  int32_t get_start_pos = 0;  ///< First byte of the value in the reply to get_cmd.
  int32_t set_start_pos = 0;  ///< First byte of the value among the fields of set_cmd.
  int32_t offset = 1;         ///< Length of the value in bytes.
  int32_t permission = 0;     ///< 0: read-only for the user.
  float coefficient = 1.0F;   ///< Shown value = device integer x coefficient. Never 0.
  float set_coefficient = 1.0F;  ///< Device integer = written value / set_coefficient. Never 0.
  SharedText default_val;        ///< Shown until something was read.
  SharedText set_payload;        ///< "SetCmdPayload" cell, which downloads append to any command.

  const ValueType* value_type = &kUnknownType;  ///< What var_type names; never null.
  const FieldGroup* read = nullptr;   ///< Where get_start_pos counts; null without get_cmd.
  const FieldGroup* write = nullptr;  ///< Where set_start_pos counts; null without set_cmd.
  SharedText function_module;         ///< Page that shows the variable; empty: none.
  bool timer_update = false;          ///< Shown text follows the periodic page refresh.
  uint32_t group_id_size = 0;         ///< See GroupIdOf.
  uint32_t line = 0;                  ///< 1-based line of the table file where the row starts.
  uint32_t table_position = 0;        ///< Ascends from row to row of the table.
};

/// Sets var_type, what it names, and the length that a value of this type has by itself, else 1.
void SetValueType(SharedText name, VarInfo* var);

/// Whether the length that the table gives is that of the type; of a type without one it is.
bool FillsItsPlace(const VarInfo& var);

/// Whether a row of the screens may change the value at all: the user is permitted to, some command
/// that can be sent writes it, its type has a text form that can be encoded ("string", "raw" and
/// "DT" have none), and what is encoded fills its place.
bool CanBeChanged(const VarInfo& var);

/// The "GroupID" cell.
std::string_view GroupIdOf(const VarInfo& var);

/// Whether the variable takes part in the range check before saving.
bool IsChecked(const VarInfo& var);

/// Longest text of a "string" or "raw" value, in bytes; 0 for other types.
int32_t LengthLimitOf(const VarInfo& var);

/// " (" + unit + ")", empty without a unit.
std::string UnitSuffix(const VarInfo& var);

/// The place among its options of the one that this text means; -1 without one.
int OptionIndexOf(const Control& control, const std::string& value);

/// State of a switch that shows this text: "0" exactly when the text is "0", else "1".
std::string SwitchIndexOf(const std::string& text);
