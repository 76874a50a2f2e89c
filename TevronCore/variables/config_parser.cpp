#include "variables/config_parser.h"

#include <iostream>
#include <utility>

#include "variables/table_loader.h"

namespace {

void Report(const std::string& text) {
  std::cout << "ConfigParser::GetVarPosOffset" << text << std::endl;
}

}  // namespace

void ConfigParser::ExtractConfigInfo(const std::string& path) {
  Clear();
  path_ = path;
  try {
    TableLoader(this).Load();
  } catch (...) {
    Clear();
    throw;
  }
}

void ConfigParser::Clear() {
  const std::lock_guard lock(values_mutex_);
  in_table_order_.clear();
  by_id_.clear();
  by_name_.clear();
  commands_.clear();
  directives_.clear();
  faults_.clear();
  records_.clear();
  storage_.clear();
}

bool ConfigParser::GetVarPosOffset(const std::string& cmd, const std::string& var_id,
                                   int32_t length, int32_t& pos, int32_t& len) {
  const auto found = by_id_.find(var_id);
  if (found == by_id_.end()) {
    Report("(): ERROR. This var_id does not exist. Detail: var_id = " + var_id +
           ", file_path = " + path_);
    return false;
  }
  VarInfo& var = found->second->info;
  if (var.get_cmd.empty() && var.set_cmd.empty()) {
    Report("(): this var not supported. var_name = " + var.var_name);
    return false;
  }
  const auto usage = commands_.find(cmd);
  if (usage == commands_.end()) {
    Report("(): don't have this command");
    return false;
  }
  if (var.var_name == kSharedSecretKey) {  // as long as the authentication algorithm wants it
    var.set_start_pos = 0;
    var.offset = length;
    pos = 0;
    len = length;
    return true;
  }
  pos = usage->second.is_set ? var.set_start_pos : var.get_start_pos;
  len = var.offset;
  return true;
}

const VarInfo* ConfigParser::Find(const std::string& var_id) const {
  const auto found = by_id_.find(var_id);
  return found == by_id_.end() ? nullptr : &found->second->info;
}

const VarInfo* ConfigParser::FindByName(const std::string& var_name) const {
  const auto found = by_name_.find(var_name);
  return found == by_name_.end() ? nullptr : &found->second->info;
}

std::vector<const VarInfo*> ConfigParser::WrittenBy(const std::string& set_cmd) const {
  const auto usage = commands_.find(set_cmd);
  return usage == commands_.end() ? std::vector<const VarInfo*>() : usage->second.written;
}

ConfigParser::Value ConfigParser::CopyValue(const Record& record) {
  return {record.info.current_val, record.bytes, record.has_bytes, record.edited};
}

ConfigParser::Value ConfigParser::ValueOf(const VarInfo& var) const {
  const std::lock_guard lock(values_mutex_);
  return CopyValue(RecordOf(var));
}

std::vector<ConfigParser::Value> ConfigParser::ValuesOf(
    const std::vector<const VarInfo*>& vars) const {
  std::vector<Value> values;
  values.reserve(vars.size());
  const std::lock_guard lock(values_mutex_);
  for (const VarInfo* var : vars) {
    values.push_back(CopyValue(RecordOf(*var)));
  }
  return values;
}

void ConfigParser::Show(Record& record, std::string text) {
  if (record.info.type == kSwitch) {
    record.info.switch_index = SwitchIndexOf(text);
    if (record.info.switch_index != "0") {
      record.last_on = text;
    }
  }
  record.info.current_val = std::move(text);
}

void ConfigParser::StoreReading(const VarInfo& var, std::string text, std::vector<uint8_t> bytes) {
  const std::lock_guard lock(values_mutex_);
  Record& record = RecordOf(var);
  record.bytes = std::move(bytes);
  record.has_bytes = true;
  record.reading = text;
  if (!record.edited) {
    Show(record, std::move(text));
  }
}

void ConfigParser::StoreBytes(const VarInfo& var, std::vector<uint8_t> bytes) {
  const std::lock_guard lock(values_mutex_);
  Record& record = RecordOf(var);
  record.bytes = std::move(bytes);
  record.has_bytes = true;
}

void ConfigParser::ForgetBytes() {
  const std::lock_guard lock(values_mutex_);
  for (Record* record : records_) {
    record->bytes.clear();
    record->has_bytes = false;
  }
}

void ConfigParser::Edit(const VarInfo& var, std::string text) {
  const std::lock_guard lock(values_mutex_);
  Record& record = RecordOf(var);
  record.edited = true;
  Show(record, std::move(text));
}

void ConfigParser::DropEdits(const std::vector<const VarInfo*>& vars) {
  const std::lock_guard lock(values_mutex_);
  for (const VarInfo* var : vars) {
    Record& record = RecordOf(*var);
    if (record.edited) {
      record.edited = false;
      Show(record, record.reading);
    }
  }
}

std::string ConfigParser::SwitchOnText(const VarInfo& var) const {
  const std::lock_guard lock(values_mutex_);
  const Record& record = RecordOf(var);
  if (!record.last_on.empty()) {
    return record.last_on;
  }
  return record.info.range_min != 0 ? std::to_string(record.info.range_min) : "1";
}
