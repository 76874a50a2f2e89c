#include "variables/directive_rules.h"

#include <string>
#include <unordered_map>
#include <unordered_set>

#include "variables/log_variables.h"
#include "variables/pages.h"

namespace {

/// The directives of one table, each looked at by the rules of its kind.
class DirectiveRules {
 public:
  DirectiveRules(const LoadedTable& table, FaultList* faults) : table_(table), faults_(*faults) {
    for (const VarInfo* var : table.variables) {
      groups_.emplace(GroupIdOf(*var));
      if (!var->hidden) {
        pages_.insert(var->function_module.str());
      }
    }
  }

  void Check(const TableDirective& directive);

 private:
  void CheckPage(const TableDirective& directive);
  void CheckGroup(const TableDirective& directive);
  void CheckLog(const TableDirective& directive);
  bool HasCells(const TableDirective& directive, size_t count, const std::string& wanted);
  bool IsFirstOfItsKind(const TableDirective& directive);

  const LoadedTable& table_;
  FaultList& faults_;
  std::unordered_set<std::string> pages_;
  std::unordered_set<std::string> groups_;
  std::unordered_map<std::string, size_t> lines_;  // by kind and first argument
};

void DirectiveRules::Check(const TableDirective& directive) {
  if (directive.name() == kPageDirective) {
    CheckPage(directive);
  } else if (directive.name() == kGroupDirective) {
    CheckGroup(directive);
  } else if (directive.name() == kLogDirective) {
    CheckLog(directive);
  } else {
    faults_.Warn(directive.line, "the directive " + Quoted(directive.name()) +
                                     " is unknown and does nothing; write page, group or log");
  }
}

void DirectiveRules::CheckPage(const TableDirective& directive) {
  if (!HasCells(directive, 3, "the page's name and one line of text")) {
    return;
  }
  const std::string& page = directive.cells[1];
  if (pages_.count(page) == 0) {
    faults_.Warn(directive.line, "there is no page " + Quoted(page) +
                                     "; write a name that stands in FunctionModule");
  } else {
    IsFirstOfItsKind(directive);
  }
}

void DirectiveRules::CheckGroup(const TableDirective& directive) {
  if (!HasCells(directive, 3, "a GroupID and a caption")) {
    return;
  }
  const std::string& group = directive.cells[1];
  if (groups_.count(group) == 0) {
    faults_.Warn(directive.line,
                 "there is no row with the GroupID " + Quoted(group) + "; write one that exists");
  } else {
    IsFirstOfItsKind(directive);
  }
}

void DirectiveRules::CheckLog(const TableDirective& directive) {
  if (!HasCells(directive, 2, "the name of a variable") || !IsFirstOfItsKind(directive)) {
    return;
  }
  const std::string& name = directive.cells[1];
  const uint32_t position = table_.by_name.Find(table_.rows, name);
  const VarInfo* var = position == VarIndex::kNone ? nullptr : &table_.rows[position];
  if (name == kOperationLog) {
    faults_.Warn(directive.line, Quoted(name) + " needs no directive; leave this row out");
  } else if (var == nullptr) {
    faults_.Fault(directive.line, "there is no variable " + Quoted(name) +
                                      " that could be downloaded; write the VarName of one");
  } else if (var->get_cmd.empty() && var->set_cmd.empty()) {
    faults_.Fault(directive.line, Quoted(name) +
                                      " has no usable command to download it with; write it in "
                                      "Get of line " +
                                      std::to_string(var->line));
  }
}

// Too few: the directive does nothing. Too many: usually a text with a comma.
bool DirectiveRules::HasCells(const TableDirective& directive, size_t count,
                              const std::string& wanted) {
  if (directive.cells.size() < count) {
    faults_.Warn(directive.line, "the directive " + Quoted(directive.name()) +
                                     " does nothing; write " + wanted + " behind it");
    return false;
  }
  if (directive.cells.size() > count) {
    faults_.Warn(directive.line, "the directive " + Quoted(directive.name()) + " takes " + wanted +
                                     "; what stands behind is ignored. Put a text with a comma in "
                                     "quotation marks");
  }
  return true;
}

bool DirectiveRules::IsFirstOfItsKind(const TableDirective& directive) {
  const auto [first, is_first] =
      lines_.try_emplace(directive.name() + ' ' + directive.cells[1], directive.line);
  if (!is_first) {
    faults_.Warn(directive.line, "line " + std::to_string(first->second) + " is a \"" +
                                     directive.name() + "\" of " + Quoted(directive.cells[1]) +
                                     " already; leave one of them out");
  }
  return is_first;
}

}  // namespace

void CheckDirectives(const LoadedTable& table, FaultList* faults) {
  DirectiveRules rules(table, faults);
  for (const TableDirective& directive : table.directives) {
    rules.Check(directive);
  }
}
