#include "auth/auth_rules.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <set>

#include "auth/auth_algorithm.h"
#include "auth/auth_keys.h"
#include "auth/auth_table.h"
#include "variables/command_code.h"
#include "variables/fault_list.h"
#include "variables/hex_cell.h"
#include "variables/monitor_tables.h"
#include "variables/number_text.h"
#include "variables/reserved_codes.h"

namespace {

std::string HexText(uint32_t code) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  return std::string("0x") + kDigits[code >> 4 & 0xF] + kDigits[code & 0xF];
}

void AddCode(const std::string& text, std::set<uint8_t>* codes) {
  try {
    codes->insert(WireCommandOf(text).code);
  } catch (const std::logic_error&) {
    return;  // no command, or none at all
  }
}

/// Every code that the model's tables send.
std::set<uint8_t> CodesOf(const ConfigFolder& folder, const std::string& model,
                          const ConfigParser& table) {
  std::set<uint8_t> codes;
  const auto add = [&codes](const VarInfo& var) {
    AddCode(var.get_cmd, &codes);
    AddCode(var.set_cmd, &codes);
  };
  for (const VarInfo* var : table.InTableOrder()) {
    add(*var);
  }
  for (const std::string& version : ListMonitorVersions(folder, model)) {
    TableFaults told_elsewhere;
    if (const auto with_monitor =
            WithMonitorTable(table, MonitorTablePath(folder, model, version), &told_elsewhere)) {
      for (const VarInfo* var : with_monitor->InTableOrder()) {
        add(*var);
      }
    }
  }
  return codes;
}

/// The rules for the row of one model.
class RowRules {
 public:
  RowRules(const AuthTable& table, size_t row, FaultList* faults)
      : table_(table), row_(row), faults_(*faults) {}

  void Check(const ConfigFolder& folder, const std::string& model, SerialFamily family,
             const ConfigParser& variables);

 private:
  void CheckKeys(const ConfigFolder& folder) const;
  void CheckHandshake(const std::set<uint8_t>& codes) const;
  void CheckProtected(const std::set<uint8_t>& codes, SerialFamily family) const;
  size_t line() const { return table_.LineOf(row_); }

  const AuthTable& table_;
  const size_t row_;
  FaultList& faults_;
  AuthConfig config_;
};

void RowRules::Check(const ConfigFolder& folder, const std::string& model, SerialFamily family,
                     const ConfigParser& variables) {
  std::vector<AuthTable::Finding> findings;
  config_ = table_.Read(row_, &findings);
  bool is_refused = false;
  for (const AuthTable::Finding& finding : findings) {
    faults_.Fault(line(), table_.Error(row_, finding).text());
    is_refused = is_refused || finding.refuses;
  }
  if (!config_.enabled) {
    return;
  }
  CheckKeys(folder);
  if (is_refused) {
    return;  // what stands for a cell without a number is no code to judge
  }
  const std::set<uint8_t> codes = CodesOf(folder, model, variables);
  CheckHandshake(codes);
  CheckProtected(codes, family);
}

void RowRules::CheckKeys(const ConfigFolder& folder) const {
  const AuthKeys keys = LoadAuthKeys(folder);
  for (const AuthKeyKind* kind : KeysNeededBy(config_.algorithm_id)) {
    if ((keys.*kind->member).empty()) {
      faults_.Fault(line(), "algorithm " + std::to_string(config_.algorithm_id) +
                                " needs the key " + kind->name +
                                ", which is missing or malformed; write it into " +
                                folder.layers().back().path + '/' + kAuthKeysName +
                                ". Protected commands are refused until then");
    }
  }
}

// The handshake has codes of its own, or it would ask for a handshake itself.
void RowRules::CheckHandshake(const std::set<uint8_t>& codes) const {
  const std::pair<const char*, uint32_t> commands[] = {{"ProbeCmd", config_.probe_cmd},
                                                       {"ChallengeCmd", config_.challenge_cmd},
                                                       {"ResponseCmd", config_.response_cmd}};
  std::set<uint8_t> earlier;
  for (const auto& [column, command] : commands) {
    const auto code = static_cast<uint8_t>(command);
    const std::string cell = std::string("column ") + column + ": " + HexText(code);
    if (!earlier.insert(code).second) {
      faults_.Fault(line(), cell +
                                " is another command of the handshake already; write a code of "
                                "its own");
    }
    if (config_.protected_cmds.count(code) != 0) {
      faults_.Fault(line(), cell + " is one of the ProtectedCmds; leave it out there");
    }
    if (codes.count(code) != 0) {
      faults_.Fault(line(), cell +
                                " is a command of the variable table, too; write another code "
                                "in one of them");
    }
  }
}

void RowRules::CheckProtected(const std::set<uint8_t>& codes, SerialFamily family) const {
  if (config_.protected_cmds.empty()) {
    faults_.Warn(line(),
                 "column ProtectedCmds: no command is protected; write those that are, or "
                 "0 in Enable");
  }
  for (const uint8_t code : config_.protected_cmds) {
    if (codes.count(code) == 0 && !IsBuiltIn(code, family)) {
      faults_.Warn(line(), "column ProtectedCmds: nothing is sent with " + HexText(code) +
                               " for this model; codes are hexadecimal here");
    }
  }
}

/// The rows of models that have no table; of `model` alone, with blanks that were not meant, unless
/// that is empty.
void CheckStrayRows(const AuthTable& table, const ConfigFolder& folder, const std::string& model,
                    FaultList* faults) {
  const std::vector<std::string> models = folder.Models();
  const auto is_model = [&models](const std::string& name) {
    return std::find(models.begin(), models.end(), name) != models.end();
  };
  for (size_t row = 0; row < table.row_count(); ++row) {
    const std::string name = table.ModelOf(row);
    const std::string trimmed(Trim(name));
    if (!is_model(name) && (model.empty() || trimmed == model)) {
      faults->Fault(table.LineOf(row),
                    "model " + Quoted(name) + " has no variable table, so that this row protects " +
                        "nothing; write " +
                        (is_model(trimmed) ? Quoted(trimmed) + ", without blanks"
                                           : "the name of a model, or leave the row out"));
    }
  }
}

/// Whether the table settles the matter for this model, as the connection sees it.
bool CheckTable(const ConfigFolder& folder, const std::string& path, const std::string& model,
                SerialFamily family, const ConfigParser& variables, FaultList* faults) {
  const AuthTable table(path);
  table.CheckHeader(faults);
  for (const CsvFault& fault : table.broken()) {
    faults->Fault(fault.line, table.Broken(fault).text());
  }
  CheckStrayRows(table, folder, model, faults);
  const std::vector<size_t> rows = table.RowsOf(model);
  if (rows.size() > 1) {
    faults->Fault(table.LineOf(rows[1]), table.Repeated(rows[1], rows[0]).text());
  } else if (rows.size() == 1) {
    RowRules(table, rows[0], faults).Check(folder, model, family, variables);
  }
  return !rows.empty() || !table.broken().empty();
}

}  // namespace

void CheckAuth(const ConfigFolder& folder, const std::string& model, SerialFamily family,
               const ConfigParser& table, TableFaults* faults) {
  const std::vector<std::string> files = folder.FilesCalled(kAuthTableName);
  bool is_settled = false;
  for (auto file = files.rbegin(); file != files.rend() && !is_settled; ++file) {
    FaultList found(*file);
    try {
      is_settled = CheckTable(folder, *file, model, family, table, &found);
    } catch (const std::exception& error) {
      found.Fault(0, error.what());
      is_settled = true;
    }
    found.MoveTo(faults);
  }
}

void CheckAuthFiles(const ConfigFolder& folder, TableFaults* faults) {
  const std::vector<std::string> files = folder.FilesCalled(kAuthTableName);
  if (files.empty()) {
    FaultList found(folder.path() + '/' + kAuthTableName);
    found.Warn(0, "there is no such file; every model is connected without authentication");
    found.MoveTo(faults);
  }
  for (const std::string& file : files) {
    FaultList found(file);
    try {
      CheckStrayRows(AuthTable(file), folder, "", &found);
    } catch (const std::exception& error) {
      found.Fault(0, error.what());
    }
    found.MoveTo(faults);
  }
  CheckAuthKeys(folder, faults);
}
