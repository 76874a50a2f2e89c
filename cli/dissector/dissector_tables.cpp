#include "dissector/dissector_tables.h"

#include <algorithm>
#include <exception>

#include "CmxClient/fov_command.h"
#include "Wire/return_code.h"
#include "auth/auth_config.h"
#include "connection/connection_settings.h"
#include "dissector/layouts.h"
#include "dissector/lua_text.h"
#include "variables/number_text.h"

namespace {

using kavel::lidar::kFovCommand;
using kavel::lidar::kFovPayloadSize;
using kavel::lidar::ReturnCodeMeaning;

/// How the dissector turns the bytes into a text; as value_text does, which see.
const char* FormOf(const VarInfo& var) {
  if (var.var_name == "MAC") {
    return "mac";
  }
  if (var.var_name == "HWVER") {
    return "hardware";
  }
  if (var.var_name == "SWVER_YMD") {
    return "software";
  }
  if (var.var_name == kSharedSecretKey) {
    return "secret";
  }
  if (IsCommand(var.set_cmd, kFovCommand) && var.offset == static_cast<int>(kFovPayloadSize)) {
    return "fov";
  }
  switch (var.value_type->kind) {
    case ValueKind::kInteger:
      return var.value_type->is_signed ? "int" : "uint";
    case ValueKind::kReal:
      return "real";
    case ValueKind::kText:
      return "text";
    case ValueKind::kAddress:
      return "ip";
    case ValueKind::kMac:
      return "mac";
    case ValueKind::kDuration:
      return "duration";
    case ValueKind::kRaw:
    case ValueKind::kUnknown:
      break;
  }
  return "raw";
}

void WriteLabels(const VarInfo& var, std::ostream& out) {
  std::string labels;
  for (const Option& option : var.options) {
    const std::string value = std::to_string(option.value);
    if (!option.label.empty() && option.label != value) {
      labels += (labels.empty() ? "" : ", ") + ("[" + LuaString(value) + "] = ") +
                LuaString(option.label);
    }
  }
  if (!labels.empty()) {
    out << ", labels = { " << labels << " }";
  }
}

void WriteField(const VarInfo& var, int32_t at, std::ostream& out) {
  out << "          { name = " << LuaString(var.var_name) << ", at = " << at
      << ", size = " << var.offset << ", form = \"" << FormOf(var) << '"';
  if (var.value_type->size != 0 && var.value_type->size != var.offset) {
    out << ", width = " << var.value_type->size;
  }
  if (var.value_type->is_number() && var.coefficient != 1.0F) {
    out << ", coefficient = " << ShortText(var.coefficient);
  }
  if (var.value_type->is_exact) {
    out << ", exact = true";
  }
  if (!var.unit.empty()) {
    out << ", unit = " << LuaString(var.unit);
  }
  WriteLabels(var, out);
  out << (var.type == kMonitor ? ", tells_version = true },\n" : " },\n");
}

void WriteLayout(const Layout& layout, std::ostream& out) {
  out << "      { verb = \"" << layout.verb << "\", name = " << LuaString(layout.name)
      << ", code = " << LuaByte(layout.command.code)
      << ", head = " << LuaString(layout.command.payload);
  if (!layout.version.empty()) {
    out << ", version = " << LuaString(layout.version);
  }
  if (layout.has_parts) {
    out << ", has_parts = true";
  }
  out << ", size = " << layout.size << ", fields = {";
  if (!layout.fields.empty()) {
    out << '\n';
    const bool is_read = layout.verb == std::string("Read");
    for (const VarInfo* var : layout.fields) {
      WriteField(*var, is_read ? var->get_start_pos : var->set_start_pos, out);
    }
    out << "        ";
  }
  out << "} },\n";
}

/// A row that cannot be used was told with the model's other faults.
AuthConfig AuthOf(const LidarModel& model) {
  try {
    return AuthConfigOf(model.config, model.name);
  } catch (const std::exception&) {
    return {};
  }
}

void WriteAuth(const AuthConfig& auth, std::ostream& out) {
  const auto code = [](uint32_t command) { return LuaByte(static_cast<uint8_t>(command)); };
  out << "    probe = " << code(auth.probe_cmd) << ", challenge = " << code(auth.challenge_cmd)
      << ", response = " << code(auth.response_cmd) << ",\n    probe_at = " << auth.probe_offset
      << ", probe_size = " << auth.probe_len
      << ", probe_is_little_endian = " << (auth.probe_little_endian ? "true" : "false")
      << ",\n    protected = {";
  if (auth.enabled) {
    for (const uint8_t protected_code : auth.protected_cmds) {
      out << " [" << LuaByte(protected_code) << "] = true,";
    }
  }
  out << " },\n";
}

void WriteModel(const DissectedModel& dissected, std::ostream& out) {
  const LidarModel& model = *dissected.model;
  out << "  {\n    name = " << LuaString(model.name)
      << ",\n    is_serial_kind = " << (model.family == SerialFamily::kNone ? "false" : "true")
      << ",\n    firmware = " << LuaByte(FirmwareCodeOf(*model.table)) << ",\n";
  WriteAuth(AuthOf(model), out);
  out << "    layouts = {\n";
  for (const Layout& layout : LayoutsOf(dissected)) {
    WriteLayout(layout, out);
  }
  out << "    },\n  },\n";
}

}  // namespace

void WriteDissectorTables(const std::vector<DissectedModel>& models, const std::string& chosen,
                          std::ostream& out) {
  out << "local TABLES = {\n  port = " << ConnectionSettings().command_port
      << ",\n  chosen = " << LuaString(chosen) << ",\n  return_codes = {\n    [0] = \"done\",\n";
  for (int code = 1; code <= 0xFF; ++code) {
    if (const std::string meaning = ReturnCodeMeaning(code); !meaning.empty()) {
      out << "    [" << code << "] = " << LuaString(meaning) << ",\n";
    }
  }
  out << "  },\n}\nTABLES.models = {\n";
  for (const DissectedModel& model : models) {
    WriteModel(model, out);
  }
  out << "}\n";
}
