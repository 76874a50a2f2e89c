#include "variables/config_parser.h"

#include <cmath>
#include <iostream>
#include <utility>

#include "variables/command_code.h"
#include "variables/number_text.h"

namespace {

void Report(const std::string& text) {
  std::cout << "ConfigParser::GetVarPosOffset" << text << std::endl;
}

// Texts of one number, however it is written. Where a double cannot tell neighbours apart, only the
// texts themselves count.
bool IsSameNumber(const std::string& one, const std::string& other) {
  constexpr double kExactBelow = 9007199254740992.0;
  const std::optional<double> number = SignedDecimal(one);
  return number && std::fabs(*number) < kExactBelow && number == SignedDecimal(other);
}

}  // namespace

const char* TextOf(ValueState state) {
  switch (state) {
    case ValueState::kNotRead:
      return "unread";
    case ValueState::kRead:
      return "read";
    case ValueState::kEdited:
      return "edited";
    case ValueState::kWritten:
      return "written";
    case ValueState::kDiffers:
      return "differs";
  }
  return "";
}

ConfigParser::ConfigParser(LoadedTable table)
    : table_(std::make_shared<LoadedTable>(std::move(table))) {
  StartAnew();
}

ConfigParser::ConfigParser(const ConfigParser& base, LoadedTable added)
    : table_(base.table_), added_(std::make_shared<LoadedTable>(std::move(added))) {
  for (VarInfo& var : added_->rows) {
    var.table_position += static_cast<uint32_t>(table_->rows.size());
  }
  StartAnew();
  const std::lock_guard lock(base.values_mutex_);
  for (size_t i = 0; i < table_->rows.size(); ++i) {
    if (base.live_[i] != nullptr) {
      live_[i] = std::make_unique<Live>(*base.live_[i]);
    }
  }
}

void ConfigParser::ExtractConfigInfo(const std::string& path) {
  table_ = std::make_shared<LoadedTable>();
  added_ = std::make_shared<LoadedTable>();
  table_->path = path;
  StartAnew();
  table_ = std::make_shared<LoadedTable>(LoadTable(path));
  StartAnew();
}

void ConfigParser::StartAnew() {
  variables_ = table_->variables;
  variables_.insert(variables_.end(), added_->variables.begin(), added_->variables.end());
  live_.clear();
  live_.resize(table_->rows.size() + added_->rows.size());
}

VarInfo& ConfigParser::Own(const VarInfo& var) {
  const size_t own = table_->rows.size();
  return var.table_position < own ? table_->rows[var.table_position]
                                  : added_->rows[var.table_position - own];
}

std::optional<ConfigParser::Position> ConfigParser::PositionOf(const std::string& cmd,
                                                               const VarInfo& var,
                                                               int32_t wanted_length) const {
  const std::string key = CommandKey(cmd);
  const bool is_set = table_->writes.count(key) != 0;
  if (!is_set && table_->reads.count(key) == 0 && added_->reads.count(key) == 0) {
    return std::nullopt;
  }
  if (var.var_name == kSharedSecretKey) {
    return Position{0, wanted_length};
  }
  return Position{is_set ? var.set_start_pos : var.get_start_pos, var.offset};
}

bool ConfigParser::GetVarPosOffset(const std::string& cmd, const std::string& var_id,
                                   int32_t length, int32_t& pos, int32_t& len) {
  const VarInfo* var = Find(var_id);
  if (var == nullptr) {
    Report("(): ERROR. This var_id does not exist. Detail: var_id = " + var_id +
           ", file_path = " + path());
    return false;
  }
  if (var->get_cmd.empty() && var->set_cmd.empty()) {
    Report("(): this var not supported. var_name = " + var->var_name);
    return false;
  }
  const std::optional<Position> position = PositionOf(cmd, *var, length);
  if (!position) {
    Report("(): don't have this command");
    return false;
  }
  pos = position->start;
  len = position->length;
  if (var->var_name == kSharedSecretKey) {  // as long as the authentication algorithm wants it
    Own(*var).set_start_pos = pos;
    Own(*var).offset = len;
  }
  return true;
}

const VarInfo* ConfigParser::FindBy(VarIndex LoadedTable::*index, const std::string& text) const {
  for (const LoadedTable* table : {table_.get(), added_.get()}) {
    const uint32_t position = (table->*index).Find(table->rows, text);
    if (position != VarIndex::kNone) {
      return &table->rows[position];
    }
  }
  return nullptr;
}

const VarInfo* ConfigParser::Find(const std::string& var_id) const {
  return FindBy(&LoadedTable::by_id, var_id);
}

const VarInfo* ConfigParser::FindByName(const std::string& var_name) const {
  return FindBy(&LoadedTable::by_name, var_name);
}

const std::vector<const VarInfo*>& ConfigParser::WrittenBy(const std::string& set_cmd) const {
  static const std::vector<const VarInfo*> kNothing;
  const auto found = table_->writes.find(CommandKey(set_cmd));
  return found == table_->writes.end() ? kNothing : found->second->fields;
}

ConfigParser::Value ConfigParser::CopyValue(const VarInfo& var) const {
  Value value;
  value.text = var.default_val;
  if (const Live* live = live_[var.table_position].get(); live != nullptr) {
    value.text = live->shown();
    value.bytes = live->bytes;
    value.has_bytes = live->has_bytes;
    value.edited = live->edited;
    value.state = live->edited ? ValueState::kEdited : live->state;
    value.read_at = live->read_at;
    if (live->state == ValueState::kDiffers) {
      value.wanted = live->written_text;
    }
    if (live->edited && live->state != ValueState::kNotRead) {
      value.reading = live->reading;
    }
    value.read_failure = live->read_failure;
  }
  return value;
}

ConfigParser::Value ConfigParser::ValueOf(const VarInfo& var) const {
  const std::lock_guard lock(values_mutex_);
  return CopyValue(var);
}

std::vector<ConfigParser::Value> ConfigParser::ValuesOf(
    const std::vector<const VarInfo*>& vars) const {
  std::vector<Value> values;
  values.reserve(vars.size());
  const std::lock_guard lock(values_mutex_);
  for (const VarInfo* var : vars) {
    values.push_back(CopyValue(*var));
  }
  return values;
}

ConfigParser::Live& ConfigParser::LiveOf(const VarInfo& var) {
  std::unique_ptr<Live>& live = live_[var.table_position];
  if (live == nullptr) {
    live = std::make_unique<Live>();
    live->reading = var.default_val;
  }
  return *live;
}

void ConfigParser::RememberSwitchOn(const VarInfo& var, Live* live) {
  if (var.type == kSwitch && SwitchIndexOf(live->shown()) != "0") {
    live->last_on = live->shown();
  }
}

void ConfigParser::Compare(Live* live, std::vector<uint8_t> bytes) {
  const bool differs = !live->written.empty() && live->written != bytes;
  live->state = differs ? ValueState::kDiffers : ValueState::kRead;
  if (!differs) {
    live->written.clear();
  }
  live->bytes = std::move(bytes);
  live->has_bytes = true;
  live->read_at = std::chrono::system_clock::now();
  live->read_failure.clear();
}

void ConfigParser::ForgetReadings() {
  const std::lock_guard lock(values_mutex_);
  for (const VarInfo* var : variables_) {
    Live* live = live_[var->table_position].get();
    if (live == nullptr) {
      continue;
    }
    Live fresh;
    fresh.reading = var->default_val;
    fresh.edited = live->edited;
    fresh.edit = std::move(live->edit);
    if (!fresh.edited) {
      RememberSwitchOn(*var, &fresh);
    }
    *live = std::move(fresh);
  }
}

void ConfigParser::StoreReading(const VarInfo& var, std::string text, std::vector<uint8_t> bytes) {
  const std::lock_guard lock(values_mutex_);
  Live& live = LiveOf(var);
  Compare(&live, std::move(bytes));
  live.reading = std::move(text);
  if (!live.edited) {
    RememberSwitchOn(var, &live);
  }
}

void ConfigParser::StoreBytes(const VarInfo& var, std::vector<uint8_t> bytes) {
  StoreReading(var, {}, std::move(bytes));
}

void ConfigParser::NoteReadFailure(const std::vector<const VarInfo*>& vars,
                                   const std::string& reason) {
  const std::lock_guard lock(values_mutex_);
  for (const VarInfo* var : vars) {
    LiveOf(*var).read_failure = reason;
  }
}

void ConfigParser::StoreWritten(const VarInfo& var, const std::string& text,
                                std::vector<uint8_t> bytes) {
  const std::lock_guard lock(values_mutex_);
  Live& live = LiveOf(var);
  live.state = ValueState::kWritten;
  live.reading = text;
  live.written_text = text;
  live.written = bytes;
  live.bytes = std::move(bytes);
  live.has_bytes = true;
  if (live.edited && live.edit == text) {
    live.edited = false;
  }
  if (!live.edited) {
    RememberSwitchOn(var, &live);
  }
}

bool ConfigParser::IsReading(const VarInfo& var, const std::string& text) const {
  const std::lock_guard lock(values_mutex_);
  const Live* live = live_[var.table_position].get();
  return live != nullptr && live->state != ValueState::kNotRead &&
         (live->reading == text || IsSameNumber(live->reading, text));
}

void ConfigParser::Edit(const VarInfo& var, std::string text) {
  const std::lock_guard lock(values_mutex_);
  Live& live = LiveOf(var);
  live.edited = true;
  live.edit = std::move(text);
  RememberSwitchOn(var, &live);
}

void ConfigParser::DropEdits(const std::vector<const VarInfo*>& vars) {
  const std::lock_guard lock(values_mutex_);
  for (const VarInfo* var : vars) {
    Live* live = live_[var->table_position].get();
    if (live != nullptr && live->edited) {
      live->edited = false;
      RememberSwitchOn(*var, live);
    }
  }
}

std::string ConfigParser::SwitchOnText(const VarInfo& var) const {
  const std::lock_guard lock(values_mutex_);
  const Live* live = live_[var.table_position].get();
  const std::string& last =
      live != nullptr && !live->last_on.empty() ? live->last_on : var.default_val.str();
  if (!last.empty() && SwitchIndexOf(last) != "0") {
    return last;
  }
  return var.range_min != 0 ? std::to_string(var.range_min) : "1";
}
