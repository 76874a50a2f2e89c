#include "variables/out_of_use.h"

#include <algorithm>
#include <vector>

#include "variables/command_code.h"

namespace {

std::string NamesOf(const FieldGroup& group) {
  const size_t others = group.fields.size() - 1;
  return Quoted(group.fields.front()->var_name) +
         (others == 0 ? std::string() : " and " + std::to_string(others) + " more");
}

}  // namespace

void Hinder(FieldGroup* write, const std::string& reason) {
  if (write != nullptr && write->obstacle.empty()) {
    write->obstacle = reason;
  }
}

void TakeAway(LoadedTable* table, FieldGroup* group, const std::string& reason) {
  const bool is_read = !group->fields.empty() && group->fields.front()->read == group;
  for (const VarInfo* field : group->fields) {
    VarInfo& var = table->rows[field->table_position];
    if (is_read) {
      var.get_cmd = SharedText();
      var.get_start_pos = 0;
      var.read = nullptr;
      Hinder(table->WriteGroupOf(var), reason);
    } else {
      var.set_cmd = SharedText();
      var.set_start_pos = 0;
      var.write = nullptr;
    }
  }
  group->fields.clear();
}

void OutOfUse::Add(const FieldGroup* group, const std::string& reason) {
  if (group != nullptr) {
    groups_.emplace(group, reason);
  }
}

void OutOfUse::AddReads(const std::string& command_key, const std::string& reason) {
  reads_.emplace(command_key, reason);
}

// A command without bytes, such as a restart, lacks none.
void OutOfUse::AddUnlessBare(const FieldGroup* group, const std::string& reason) {
  if (group->length != 0) {
    Add(group, reason);
  }
}

void OutOfUse::AddBeside(const LoadedTable& table, const VarInfo& var,
                         const FieldGroup* VarInfo::*group, const std::string& reason) {
  const auto is_before = [](const VarInfo* a, const VarInfo* b) {
    return a->table_position < b->table_position;
  };
  const std::vector<const VarInfo*>& all = table.variables;
  const auto self = std::lower_bound(all.begin(), all.end(), &var, is_before);
  for (auto before = self; before != all.begin();) {
    if (const FieldGroup* const found = (*--before)->*group) {
      AddUnlessBare(found, reason);
      break;
    }
  }
  for (auto behind = self + 1; behind < all.end(); ++behind) {
    if (const FieldGroup* const found = (*behind)->*group) {
      AddUnlessBare(found, reason);
      break;
    }
  }
}

void OutOfUse::Apply(LoadedTable* table, FaultList* faults) const {
  if (groups_.empty() && reads_.empty()) {
    return;
  }
  for (FieldGroup& group : table->groups) {
    if (group.fields.empty()) {
      continue;
    }
    const VarInfo& first = *group.fields.front();
    const bool is_read = first.read == &group;
    const std::string* const reason = ReasonFor(group, is_read);
    if (reason == nullptr) {
      continue;
    }
    faults->Fault(first.line, NamesOf(group) + " cannot be " +
                                  (is_read ? "read with " : "written with ") +
                                  (is_read ? first.get_cmd : first.set_cmd).str() + ": " + *reason);
    TakeAway(table, &group, *reason);
  }
}

const std::string* OutOfUse::ReasonFor(const FieldGroup& group, bool is_read) const {
  if (const auto found = groups_.find(&group); found != groups_.end()) {
    return &found->second;
  }
  if (!is_read || reads_.empty()) {
    return nullptr;
  }
  const auto found = reads_.find(CommandKey(group.fields.front()->get_cmd));
  return found == reads_.end() ? nullptr : &found->second;
}
