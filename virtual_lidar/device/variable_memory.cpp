#include "device/variable_memory.h"

#include <algorithm>
#include <stdexcept>

#include "CmxClient/fov_command.h"
#include "Wire/big_endian.h"
#include "device/write_rules.h"
#include "variables/command_code.h"
#include "variables/monitor_tables.h"
#include "variables/value_encoder.h"
#include "variables/value_text.h"
#include "wire/message.h"

namespace {

using Bytes = VariableMemory::Bytes;

constexpr size_t kMaxSecretSize = 256;

bool StartsWith(const Bytes& bytes, const Bytes& head) {
  return bytes.size() >= head.size() && std::equal(head.begin(), head.end(), bytes.begin());
}

// A field of view that covers the full turn, for a table that gives no default.
Bytes FullTurn() {
  Bytes bytes = {0, kavel::lidar::kFovPairs};
  TextPool texts;
  VarInfo angle;
  SetValueType(texts.Share("float32"), &angle);
  Bytes encoded;
  std::string error;
  for (const char* degrees : {"0", "72", "72", "144", "144", "216", "216", "288", "288", "360"}) {
    EncodeValueText(angle, degrees, &encoded, &error);
    bytes.insert(bytes.end(), encoded.begin(), encoded.end());
  }
  return bytes;
}

// Nothing for a text that is no command; loading the table has reported it.
std::optional<WireCommand> WireCommandIn(const std::string& command, const FieldGroup* group) {
  if (group == nullptr) {
    return std::nullopt;
  }
  try {
    return WireCommandOf(command, group->fixed_payload);
  } catch (const std::logic_error&) {
    return std::nullopt;
  }
}

bool IsFovTable(const VarInfo& var) {
  return IsCommand(var.set_cmd, kavel::lidar::kFovCommand) &&
         var.offset == static_cast<int32_t>(kavel::lidar::kFovPayloadSize);
}

}  // namespace

VariableMemory::VariableMemory(const ConfigParser& table) {
  std::map<const FieldGroup*, size_t> group_of;
  for (const VarInfo* var : table.InTableOrder()) {
    const size_t cell = cells_.size();
    AddCell(*var);
    by_id_[var->var_id] = cell;
    if (auto read = WireCommandIn(var->get_cmd, var->read)) {
      reads_[{read->code, std::move(read->payload)}].push_back(cell);
    }
    AddToWriteGroup(*var, cell, &group_of);
  }
  MarkMeasured(table);
}

void VariableMemory::MarkMeasured(const ConfigParser& table) {
  const PageModel pages(table);
  const std::vector<const VarInfo*> measured = DrawableVariables(pages, pages.monitor_page());
  for (Cell& cell : cells_) {
    if (std::find(measured.begin(), measured.end(), cell.var) != measured.end()) {
      cell.start = cell.value;
    }
  }
}

void VariableMemory::AddCell(const VarInfo& var) {
  Cell cell;
  cell.var = &var;
  std::string ignored;
  EncodeValueText(var, var.default_val, &cell.factory, &ignored);
  if (IsFovTable(var) && !kavel::lidar::IsValidFovTable(cell.factory)) {
    cell.factory = FullTurn();
  }
  cell.value = cell.factory;
  cell.is_clock = var.value_type->kind == ValueKind::kDuration && var.set_cmd.empty();
  cells_.push_back(std::move(cell));
}

void VariableMemory::AddToWriteGroup(const VarInfo& var, size_t cell,
                                     std::map<const FieldGroup*, size_t>* group_of) {
  auto write = WireCommandIn(var.set_cmd, var.write);
  if (!write) {
    return;
  }
  if (var.set_cmd.str().size() < kLongCommandTextLength) {
    write->payload.clear();  // only a long command carries fixed bytes
  }
  const auto [place, is_new] = group_of->emplace(var.write, writes_.size());
  if (is_new) {
    WriteGroup group;
    group.command = write->code;
    group.head = std::move(write->payload);
    group.any_length = var.var_name == kSharedSecretKey;
    group.is_fov_table = IsFovTable(var);
    group.size = static_cast<size_t>(var.write->length);
    writes_.push_back(std::move(group));
  }
  WriteGroup& group = writes_[place->second];
  group.cells.push_back(cell);
}

std::optional<VariableMemory::Outcome> VariableMemory::Execute(uint8_t command,
                                                               const Bytes& payload,
                                                               uint32_t up_time_s) {
  const auto read = reads_.find({command, payload});
  if (read != reads_.end()) {
    Outcome outcome;
    outcome.fields = read->second.size();
    outcome.payload.resize(ReplySize(read->second));
    for (const size_t cell : read->second) {
      const VarInfo& var = *cells_[cell].var;
      if (measurement_ && !cells_[cell].start.empty()) {
        cells_[cell].value = measurement_->At(up_time_s, var, cells_[cell].start);
        outcome.measured = true;
      }
      Bytes value = ValueNow(cells_[cell], up_time_s);
      // Key material is held as long as it was written, and has its place alone.
      value.resize(static_cast<size_t>(var.offset));
      std::copy(value.begin(), value.end(), outcome.payload.begin() + var.get_start_pos);
    }
    return outcome;
  }
  if (const WriteGroup* group = FindWriteGroup(command, payload)) {
    return Write(*group, payload);
  }
  // A long command is known by its text, which stands in the payload.
  if (command == kLongCommandCode) {
    return std::nullopt;
  }
  const auto same_command = reads_.lower_bound({command, {}});
  if (same_command == reads_.end() || same_command->first.first != command) {
    return std::nullopt;
  }
  Outcome refused;
  const bool right_length = same_command->first.second.size() == payload.size();
  refused.return_code = right_length ? kBadValue : kBadLength;
  return refused;
}

// Rows that the table leaves out have their places, too. A monitor table may read with a command of
// the model's own.
size_t VariableMemory::ReplySize(const std::vector<size_t>& cells) const {
  int64_t size = 0;
  for (const size_t cell : cells) {
    size = std::max(size, cells_[cell].var->read->length);
  }
  return static_cast<size_t>(size);
}

const VariableMemory::WriteGroup* VariableMemory::FindWriteGroup(uint8_t command,
                                                                 const Bytes& payload) const {
  const WriteGroup* best = nullptr;
  for (const WriteGroup& group : writes_) {
    if (group.command != command || !StartsWith(payload, group.head)) {
      continue;
    }
    if (best == nullptr || group.head.size() > best->head.size()) {
      best = &group;
    }
  }
  return best;
}

VariableMemory::Outcome VariableMemory::Write(const WriteGroup& group, const Bytes& payload) {
  Outcome outcome;
  outcome.fields = group.cells.size();
  const size_t size = payload.size() - group.head.size();
  const bool right_size =
      group.any_length ? size >= 1 && size <= kMaxSecretSize : size == group.size;
  if (!right_size) {
    outcome.return_code = kBadLength;
    return outcome;
  }
  std::map<size_t, Bytes> incoming;
  const auto fields = payload.begin() + static_cast<std::ptrdiff_t>(group.head.size());
  for (const size_t cell : group.cells) {
    const auto from = group.any_length ? fields : fields + cells_[cell].var->set_start_pos;
    const auto to = group.any_length
                        ? payload.end()
                        : from + static_cast<std::ptrdiff_t>(cells_[cell].value.size());
    incoming[cell].assign(from, to);
  }
  for (const auto& [cell, bytes] : incoming) {
    const VarInfo& var = *cells_[cell].var;
    const bool acceptable = group.is_fov_table
                                ? kavel::lidar::IsValidFovTable(bytes)
                                : bytes == cells_[cell].value || !IsCheckedNow(var, incoming) ||
                                      IsAcceptableValue(var, bytes);
    if (!acceptable) {
      outcome.return_code = kBadValue;
      return outcome;
    }
  }
  for (auto& [cell, bytes] : incoming) {
    // What the user may not change is carried in the payload for its place alone.
    if (cells_[cell].var->permission != 0 || group.is_fov_table) {
      cells_[cell].value = std::move(bytes);
    }
  }
  outcome.written = true;
  return outcome;
}

bool VariableMemory::IsCheckedNow(const VarInfo& var,
                                  const std::map<size_t, Bytes>& incoming) const {
  if (var.permission == 0) {
    return false;
  }
  const auto found = by_id_.find(var.switch_var_id);
  if (found == by_id_.end()) {
    return true;
  }
  const auto sent = incoming.find(found->second);
  const Bytes& state = sent != incoming.end() ? sent->second : cells_[found->second].value;
  return std::any_of(state.begin(), state.end(), [](uint8_t byte) { return byte != 0; });
}

void VariableMemory::StoreReply(uint8_t command, const Bytes& reply) {
  const auto read = reads_.find({command, {}});
  if (read == reads_.end()) {
    return;
  }
  if (reply.size() != ReplySize(read->second)) {
    return;
  }
  for (const size_t index : read->second) {
    Cell& cell = cells_[index];
    if (!cell.is_clock) {
      const auto from = reply.begin() + cell.var->get_start_pos;
      cell.value.assign(from, from + cell.var->offset);
    }
  }
}

bool VariableMemory::Preset(const std::string& name, const std::string& text, std::string* error) {
  const auto found = std::find_if(cells_.begin(), cells_.end(), [&](const Cell& cell) {
    return cell.var->var_name == name || cell.var->var_id == name;
  });
  if (found == cells_.end()) {
    *error = "the table has no variable \"" + name + "\"";
    return false;
  }
  Bytes bytes;
  if (!EncodeValueText(*found->var, text, &bytes, error)) {
    *error = name + ": " + *error;
    return false;
  }
  if (!found->start.empty()) {
    found->start = bytes;
  }
  found->value = std::move(bytes);
  return true;
}

void VariableMemory::SetFactory(const VarInfo& var, const std::string& text) {
  std::string error;
  for (Cell& cell : cells_) {
    Bytes bytes;
    if (cell.var == &var && EncodeValueText(var, text, &bytes, &error)) {
      cell.factory = bytes;
      cell.value = std::move(bytes);
    }
  }
}

void VariableMemory::Reset() {
  for (Cell& cell : cells_) {
    cell.value = cell.factory;
    if (!cell.start.empty()) {
      cell.start = cell.factory;
    }
  }
}

Bytes VariableMemory::ValueNow(const Cell& cell, uint32_t up_time_s) {
  Bytes value = cell.value;
  if (cell.is_clock) {
    const uint64_t seconds = kavel::lidar::ReadBigEndian(value.data(), value.size()) + up_time_s;
    const size_t counted = std::min(value.size(), sizeof seconds);
    value.resize(value.size() - counted);
    kavel::lidar::AppendBigEndian(value, seconds, counted);
  }
  return value;
}

std::optional<std::string> VariableMemory::TextOf(const std::string& name) const {
  std::string text;
  std::string fault;
  for (const Cell& cell : cells_) {
    if (cell.var->var_name == name && DecodeValue(*cell.var, cell.value, &text, &fault)) {
      return text;
    }
  }
  return std::nullopt;
}
