#include "variables/reserved_codes.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <unordered_set>

#include "CmxClient/device_commands.h"
#include "CmxClient/fov_command.h"
#include "variables/command_code.h"
#include "variables/log_variables.h"
#include "variables/out_of_use.h"

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

// Of some lidars, and of none of their tables so far.
constexpr uint8_t kGuardedSettings = 0x23;

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

}  // namespace

bool IsBuiltIn(uint8_t code, SerialFamily family) {
  return Find(code) != nullptr || code == kGuardedSettings || IsMaintenance(code, family);
}

void TakeReservedCodes(SerialFamily family, LoadedTable* table, FaultList* faults) {
  const std::unordered_set<std::string> downloads = DownloadNames(*table);
  OutOfUse beside;
  for (FieldGroup& group : table->groups) {
    if (group.fields.empty()) {
      continue;
    }
    const VarInfo& first = *group.fields.front();
    const bool is_read = first.read == &group;
    const std::string text = is_read ? first.get_cmd : first.set_cmd;
    const std::optional<uint8_t> code = ShortCode(text);
    const bool is_download =
        std::all_of(group.fields.begin(), group.fields.end(), [&downloads](const VarInfo* var) {
          return var->function_module.empty() && downloads.count(var->var_name) != 0;
        });
    if (!code || is_download) {
      continue;
    }
    const char* const column = is_read ? "Get" : "Set";
    if (*code == kGuardedSettings) {
      faults->Warn(first.line, std::string(column) + ' ' + text +
                                   " is a command that some lidars guard and no table describes; "
                                   "write it only for a lidar that documents it");
    }
    if (const char* const use = ReasonAgainst(*code, family, group, is_read)) {
      faults->Fault(first.line, Quoted(first.var_name) + " cannot be " +
                                    (is_read ? "read" : "written") + " with " + text + ", which " +
                                    use + "; write another code in " + column);
      const std::string reason = "the code of line " + std::to_string(first.line) + " is wrong";
      const auto side = is_read ? &VarInfo::read : &VarInfo::write;
      for (const VarInfo* var : group.fields) {
        if (var->offset != 0) {
          beside.AddBeside(*table, *var, side, reason);
        }
      }
      TakeAway(table, &group, reason);
    }
  }
  beside.Apply(table, faults);
}
