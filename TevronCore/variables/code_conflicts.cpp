#include "variables/code_conflicts.h"

#include <map>
#include <string>
#include <vector>

#include "variables/command_code.h"

namespace {

using Variables = std::vector<const VarInfo*>;

void Tell(const LoadedTable& table, const std::string& key, const Variables& readers,
          const Variables& writers, OutOfUse* out_of_use, FaultList* faults) {
  const std::string line_of_reader = std::to_string(readers.front()->line);
  const std::string line_of_writer = std::to_string(writers.front()->line);
  const std::string& code = writers.front()->set_cmd;
  const std::string reason =
      code + " stands in Get of line " + line_of_reader + " and in Set of line " + line_of_writer;
  out_of_use->AddReads(key, reason);
  out_of_use->Add(writers.front()->write, reason);

  const bool is_tie = readers.size() == writers.size();
  const bool reader_is_guilty =
      is_tie ? readers.front()->line > writers.front()->line : readers.size() < writers.size();
  const Variables& guilty = reader_is_guilty ? readers : writers;
  faults->Fault(guilty.front()->line,
                (reader_is_guilty ? "Get " + code + " is the Set of line " + line_of_writer
                                  : "Set " + code + " is the Get of line " + line_of_reader) +
                    " as well; write another code in one of them");
  for (const VarInfo* var : guilty) {
    if (!is_tie) {
      out_of_use->AddBeside(table, *var, reader_is_guilty ? &VarInfo::read : &VarInfo::write,
                            reason);
    }
  }
}

}  // namespace

void FindCodeConflicts(const LoadedTable& table, OutOfUse* out_of_use, FaultList* faults) {
  std::map<std::string, Variables> readers;  // of the codes that write as well
  for (const FieldGroup& group : table.groups) {
    if (group.fields.empty() || group.fields.front()->read != &group) {
      continue;
    }
    const std::string key = CommandKey(group.fields.front()->get_cmd);
    const auto write = table.writes.find(key);
    if (write != table.writes.end() && !write->second->fields.empty()) {
      Variables& vars = readers[key];
      vars.insert(vars.end(), group.fields.begin(), group.fields.end());
    }
  }
  for (const auto& [key, vars] : readers) {
    Tell(table, key, vars, table.writes.at(key)->fields, out_of_use, faults);
  }
}
