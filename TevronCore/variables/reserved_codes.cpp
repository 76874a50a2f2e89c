#include "variables/reserved_codes.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>

#include "CmxClient/device_commands.h"
#include "CmxClient/fov_command.h"
#include "variables/command_code.h"
#include "variables/log_variables.h"

namespace {

struct ReservedCode {
  uint8_t code;
  const char* use;
  const char* owner = "";  ///< the one variable that may write with it
  bool may_write = false;
};

constexpr ReservedCode kReserved[] = {
    {0x03, "switches the mode of the lidar"},
    {kavel::lidar::kCmdLiveness, "asks whether the lidar is there"},
    {kavel::lidar::kCmdLivenessOld, "asks whether the lidar is there"},
    {kavel::lidar::kCmdRestart, "restarts the lidar", kRestart},
    {0x21, "writes the network settings", "", true},
    {kavel::lidar::kFovCommand, "writes the field-of-view table", "", true},
    {kavel::lidar::kCmdFactoryReset, "resets the lidar", kReset},
    {0x66, "asks for the challenge of an authentication"},
    {0x83, "carries firmware"},
    {0xDF, "asks whether authentication is required"},
    {0xE0, "answers the challenge of an authentication"},
    {kLongCommandCode, "carries the long commands"},
};

// Of the maintenance commands those that only ask, in the layout of wire-formats.md.
constexpr uint8_t kAsking[] = {
    kavel::lidar::kCmdGetBaudRate,     kavel::lidar::kCmdGetDestination,
    kavel::lidar::kCmdGetNet,          kavel::lidar::kCmdGetPblVersion,
    kavel::lidar::kCmdGetSerialNumber, kavel::lidar::kCmdGetPartNumber,
    kavel::lidar::kCmdGetVersions,     kavel::lidar::kCmdGetFunctionSafety,
    kavel::lidar::kCmdGetStatus,       kavel::lidar::kCmdGetPartition,
};

bool IsMaintenance(uint8_t code, SerialFamily family) {
  return family != SerialFamily::kNone && code >= kavel::lidar::kCmdGetBaudRate &&
         code <= kavel::lidar::kCmdGetCalibration;
}

const ReservedCode* Find(uint8_t code) {
  const auto* found =
      std::find_if(std::begin(kReserved), std::end(kReserved),
                   [code](const ReservedCode& entry) { return entry.code == code; });
  return found == std::end(kReserved) ? nullptr : found;
}

/// What the code of a text does when it is not the table's to use so; null when it is.
const char* ReasonAgainst(uint8_t code, SerialFamily family, const FieldGroup& group,
                          bool is_read) {
  if (const ReservedCode* const entry = Find(code)) {
    const auto is_owner = [entry](const VarInfo* var) { return var->var_name == entry->owner; };
    const bool is_owned = std::all_of(group.fields.begin(), group.fields.end(), is_owner);
    return !is_read && (entry->may_write || is_owned) ? nullptr : entry->use;
  }
  const bool only_asks =
      std::find(std::begin(kAsking), std::end(kAsking), code) != std::end(kAsking);
  return IsMaintenance(code, family) && !(is_read && only_asks)
             ? "is a maintenance command of serial models"
             : nullptr;
}

std::optional<uint8_t> ShortCode(const std::string& text) {
  try {
    return text.size() < kLongCommandTextLength ? std::optional(WireCommandOf(text).code)
                                                : std::nullopt;
  } catch (const std::logic_error&) {
    return std::nullopt;  // told when the row was loaded
  }
}

void TakeAway(FieldGroup* group, bool is_read, LoadedTable* table) {
  for (const VarInfo* field : group->fields) {
    VarInfo& var = table->rows[field->table_position];
    (is_read ? var.get_cmd : var.set_cmd) = SharedText();
    (is_read ? var.get_start_pos : var.set_start_pos) = 0;
    (is_read ? var.read : var.write) = nullptr;
  }
  group->fields.clear();
}

}  // namespace

bool IsBuiltIn(uint8_t code, SerialFamily family) {
  constexpr uint8_t kGuardedSettings = 0x23;  // of some lidars, and of none of their tables
  return Find(code) != nullptr || code == kGuardedSettings || IsMaintenance(code, family);
}

void TakeReservedCodes(SerialFamily family, LoadedTable* table, const FileFaults& faults) {
  for (FieldGroup& group : table->groups) {
    if (group.fields.empty()) {
      continue;
    }
    const VarInfo& first = *group.fields.front();
    const bool is_read = first.read == &group;
    const std::string text = is_read ? first.get_cmd : first.set_cmd;
    const std::optional<uint8_t> code = ShortCode(text);
    const bool is_download =
        std::all_of(group.fields.begin(), group.fields.end(), [table](const VarInfo* var) {
          return var->function_module.empty() && IsDownload(*table, *var);
        });
    const char* const use =
        code && !is_download ? ReasonAgainst(*code, family, group, is_read) : nullptr;
    if (use != nullptr) {
      faults.Fault(first.line, '"' + first.var_name + "\" cannot be " +
                                   (is_read ? "read" : "written") + " with " + text + ", which " +
                                   use + "; write another code in " + (is_read ? "Get" : "Set"));
      TakeAway(&group, is_read, table);
    }
  }
}
