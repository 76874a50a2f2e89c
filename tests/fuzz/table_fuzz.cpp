#include <algorithm>
#include <cmath>
#include <fstream>
#include <set>
#include <stdexcept>

#include "fuzz/fuzz_input.h"
#include "fuzz/fuzz_targets.h"
#include "pages/payload_builder.h"
#include "variables/command_code.h"
#include "variables/config_parser.h"
#include "variables/input_hint.h"
#include "variables/monitor_tables.h"
#include "variables/table_rules.h"
#include "variables/value_text.h"

namespace {

/// Variables whose place is checked alone; so many writes are tried, too.
constexpr size_t kMostWrites = 32;

void CheckField(const VarInfo& var, const FieldGroup* group, const std::string& cmd,
                int32_t start) {
  Require((group == nullptr) == cmd.empty(), "a variable with a command has a place");
  if (group != nullptr) {
    Require(start >= 0 && int64_t{start} + var.offset <= group->length,
            "a variable lies in its payload");
  }
}

void CheckGroup(const FieldGroup& group, const VarInfo& first) {
  const bool is_write = first.write == &group;
  int64_t end = 0;
  for (const VarInfo* field : group.fields) {
    const int32_t start = is_write ? field->set_start_pos : field->get_start_pos;
    Require((is_write ? field->write : field->read) == &group, "a field knows its payload");
    Require(start >= end, "fields do not overlap");
    end = int64_t{start} + field->offset;
  }
}

void CheckVariable(const ConfigParser& table, const VarInfo& var) {
  Require(std::isfinite(var.coefficient) && var.coefficient != 0 &&
              std::isfinite(var.set_coefficient) && var.set_coefficient != 0,
          "a coefficient is a number, and not 0");
  Require(var.offset >= 0 && var.offset <= kMaxValueLength, "a value is bounded");
  Require(table.Find(var.var_id) != nullptr && table.FindByName(var.var_name) != nullptr,
          "a variable is found");
  CheckField(var, var.read, var.get_cmd, var.get_start_pos);
  CheckField(var, var.write, var.set_cmd, var.set_start_pos);
  InputHint(var);
  IsChecked(var);
  LengthLimitOf(var);
  OptionIndexOf(var, table.ValueOf(var).text);
}

void ReadAsZeros(ConfigParser& table, const VarInfo& var) {
  const Bytes bytes(static_cast<size_t>(var.offset));
  std::string text;
  std::string fault;
  if (DecodeValue(var, bytes, &text, &fault)) {
    table.StoreReading(var, text, bytes);
  } else {
    table.StoreBytes(var, bytes);
  }
}

/// Edits a variable and writes its command: every field has to be where its place says.
void Write(ConfigParser& table, const VarInfo& var) {
  table.Edit(var, table.SwitchOnText(var));
  PayloadBuilder builder(table);
  SetCommand command;
  try {
    builder.Gather(var.set_cmd);
    command = builder.Build(var.set_cmd);
  } catch (const std::exception&) {
    return;  // told to the user; nothing is sent
  }
  Require(var.write->obstacle.empty(), "what must not be sent is not");
  const bool is_long = var.set_cmd.str().size() >= kLongCommandTextLength;
  const size_t head = is_long ? WireCommandOf(var.set_cmd, var.write->fixed_payload).payload.size()
                              : WireCommandOf(var.set_cmd).payload.size();
  const bool is_trigger = table.WrittenBy(var.set_cmd).size() == 1 && var.get_cmd.empty();
  const auto length = static_cast<size_t>(var.write->length);
  Require(command.payload.size() == head + length || (is_trigger && command.payload.size() == head),
          "a payload is as long as its fields");
  for (const SetCommand::Change& change : command.changes) {
    const size_t at = head + static_cast<size_t>(change.var->set_start_pos);
    Require(at + change.bytes.size() <= command.payload.size() &&
                std::equal(change.bytes.begin(), change.bytes.end(),
                           command.payload.begin() + static_cast<std::ptrdiff_t>(at)),
            "a written value stands in its place");
  }
}

void CheckPages(const ConfigParser& table) {
  const PageModel pages(table);
  size_t shown = 0;
  for (int page = 0; page < pages.page_count(); ++page) {
    shown += pages.VariablesOf(page).size();
  }
  for (const VarInfo* var : table.InTableOrder()) {
    const PagePosition at = pages.PositionOf(*var);
    Require(!at.valid() || pages.At(at.level1, at.level2, at.level3) == var,
            "a variable stands where its page says");
    Require(at.valid() == (!var->hidden && !var->function_module.empty()),
            "what is not hidden and has a page is shown");
    shown -= at.valid() ? 1 : 0;
  }
  Require(shown == 0, "every variable is shown once");
  Require(pages.monitor_page() < pages.page_count(), "the monitor page is one");
}

// Requires of a table that was loaded, whatever it was made of, what its headers promise; then
// reads every variable of it as zeros, edits and writes it.
void CheckLoadedTable(ConfigParser& table) {
  std::set<const FieldGroup*> groups;
  for (const VarInfo* var : table.InTableOrder()) {
    CheckVariable(table, *var);
    for (const FieldGroup* group : {var->read, var->write}) {
      if (group != nullptr && groups.insert(group).second) {
        CheckGroup(*group, *var);
      }
    }
    if (var->read != nullptr && var->read->length <= 65536) {
      ReadAsZeros(table, *var);
    }
  }
  size_t writes = 0;
  for (const VarInfo* var : table.InTableOrder()) {
    if (var->write != nullptr && var->write->length <= 65536 && writes++ < kMostWrites) {
      Write(table, *var);
    }
  }
  table.DropEdits(table.InTableOrder());
  CheckPages(table);
}

}  // namespace

void FuzzTable(FuzzInput input) {
  FuzzFolder().Write("varID/Orca.csv", input.RestText());
  LoadedTable loaded = LoadModelTable(ConfigFolder(FuzzFolder().path()), "Orca");
  Require(loaded.faults.size() <= FaultList::kMost + 2, "what is told of a file is bounded");
  Require(loaded.rows.size() <= kMaxTableRows, "rows are bounded");
  ConfigParser table(std::move(loaded));
  CheckLoadedTable(table);
}

void FuzzMonitorTable(FuzzInput input) {
  static const ConfigParser base(LoadModelTable(ConfigFolder(TEVRON_SOURCE "/Config"), "Orca"));
  const std::string path = FuzzFolder().Write("monitor/Monitor_A1.csv", input.RestText());
  TableFaults faults;
  const std::shared_ptr<ConfigParser> both = WithMonitorTable(base, path, &faults);
  Require(both != nullptr || !faults.empty(), "a table that cannot be used has its reason");
  if (both == nullptr) {
    return;
  }
  const std::vector<const VarInfo*>& vars = both->InTableOrder();
  const auto added = vars.begin() + static_cast<std::ptrdiff_t>(base.InTableOrder().size());
  Require(std::all_of(added, vars.end(), [](const VarInfo* var) { return var->write == nullptr; }),
          "what is monitored is never written");
  const PageModel pages(*both);
  DrawableVariables(pages, pages.monitor_page());
  CheckLoadedTable(*both);
}
