#include "variables/set_payloads.h"

#include <optional>
#include <string>
#include <unordered_set>

#include "variables/command_cell.h"
#include "variables/command_code.h"
#include "variables/hex_cell.h"
#include "variables/log_variables.h"
#include "variables/number_text.h"

namespace {

// Why the bytes of the cell cannot be those of the row's command; empty when they can.
std::string Problem(const VarInfo& var, const std::optional<std::vector<uint8_t>>& bytes,
                    bool is_download) {
  const std::string cell = "SetCmdPayload " + Quoted(var.set_payload);
  const bool has_half_byte = WithoutHexPrefix(var.set_payload).size() % 2 != 0;
  if (!bytes || has_half_byte) {
    return cell + " is no row of hexadecimal pairs; write pairs of digits, such as 0x0102";
  }
  if (is_download || var.write == nullptr) {
    return {};
  }
  if (var.set_cmd.str().size() < kLongCommandTextLength) {
    return cell + " is not sent with the short command " + var.set_cmd.str() +
           "; leave it empty, or write a long command";
  }
  const VarInfo& first = *var.write->fields.front();
  if (&first != &var && *bytes != var.write->fixed_payload) {
    return cell + " is another than that of line " + std::to_string(first.line) +
           ", whose command it is; write the same";
  }
  return {};
}

}  // namespace

void TakeSetPayloads(LoadedTable* table, OutOfUse* out_of_use, FaultList* faults) {
  std::optional<std::unordered_set<std::string>> downloads;
  for (const VarInfo* const var : table->variables) {
    if (var->set_payload.empty()) {
      continue;
    }
    if (!downloads) {
      downloads = DownloadNames(*table);
    }
    const bool is_download = var->function_module.empty() && downloads->count(var->var_name) != 0;
    FieldGroup* const write = table->WriteGroupOf(*var);
    auto bytes = PayloadOfCell(var->set_payload);
    const std::string problem = Problem(*var, bytes, is_download);
    if (!problem.empty()) {
      faults->Fault(var->line, problem + ". The command is not sent until then");
      Hinder(write, "SetCmdPayload of line " + std::to_string(var->line) + " is wrong");
      if (is_download) {
        out_of_use->Add(var->read,
                        "SetCmdPayload of line " + std::to_string(var->line) + " is wrong");
        out_of_use->Add(write, "SetCmdPayload of line " + std::to_string(var->line) + " is wrong");
      }
    } else if (write == nullptr && !is_download) {
      faults->Warn(var->line, "SetCmdPayload is not sent without Set; write both, or none");
    } else if (write != nullptr && write->fields.front() == var) {
      write->fixed_payload = std::move(*bytes);
    }
  }
}

void CheckDownloads(const LoadedTable& table, OutOfUse* out_of_use, FaultList* faults) {
  for (const std::string& name : DownloadNames(table)) {
    const uint32_t position = table.by_name.Find(table.rows, name);
    if (position == VarIndex::kNone) {
      continue;
    }
    const VarInfo& var = table.rows[position];
    const std::string& text = var.get_cmd.empty() ? var.set_cmd : var.get_cmd;
    if (text.empty() || text.size() >= kLongCommandTextLength) {
      continue;  // none, or looked at as any other
    }
    const CommandCellProblem problem = ProblemOfDownload(text);
    if (!problem.fault.empty()) {
      faults->Fault(var.line, problem.fault);
      const std::string reason = "the code of line " + std::to_string(var.line) + " is wrong";
      out_of_use->Add(var.get_cmd.empty() ? var.write : var.read, reason);
    } else if (!problem.warning.empty()) {
      faults->Warn(var.line, problem.warning);
    }
  }
}
