#include "pages/edit_session.h"

#include <QString>
#include <algorithm>
#include <utility>

void EditSession::SetText(int kind, const VarInfo& var, const std::string& text,
                          UserReport& report) {
  if (var.permission == 0 || var.set_cmd.empty()) {
    report.LogLine(var.var_name + " cannot be changed.", LogType::kWarning);
    return;
  }
  switch (kind) {
    case kTextInput:
      SetValue(var, text);
      return;
    case kSwitchInput:
      SetValue(var, text == "0" ? "0" : table_.SwitchOnText(var));
      return;
    case kOptionInput: {
      bool is_number = false;
      const uint option = QString::fromStdString(text).toUInt(&is_number);
      if (!is_number || option >= var.options.size()) {
        report.Error(var.var_name + ": there is no option number \"" + text + "\".");
        return;
      }
      SetValue(var, std::to_string(var.options[option].value));
      return;
    }
    default:
      report.LogLine("Unknown kind of input for " + var.var_name + ": " + std::to_string(kind),
                     LogType::kWarning);
  }
}

bool EditSession::SetFov(int index, const std::string& text, UserReport& report) {
  switch (fov_.Edit(index, text)) {
    case FovTable::EditResult::kStored: {
      const std::string& command = CommandOf(*fov_.variable());
      if (HasEdits(command)) {
        pending_.insert(command);
      } else {
        pending_.erase(command);
      }
      return true;
    }
    case FovTable::EditResult::kInvalid:
      report.Error("Input value of fov is invalid");
      return false;
    case FovTable::EditResult::kIgnored:
      return false;
  }
  return false;
}

void EditSession::DropEdits(const std::vector<const VarInfo*>& vars) {
  table_.DropEdits(vars);
  for (const VarInfo* var : vars) {
    if (var == fov_.variable()) {
      fov_.DropEdits();
    }
  }
  for (const VarInfo* var : vars) {
    if (!HasEdits(CommandOf(*var))) {
      pending_.erase(CommandOf(*var));
    }
  }
}

// A command's fields may stand on several pages.
bool EditSession::HasEdits(const std::string& command) const {
  const auto& fields = table_.WrittenBy(command);
  return std::any_of(fields.begin(), fields.end(), [this](const VarInfo* field) {
    return table_.ValueOf(*field).edited || (field == fov_.variable() && fov_.HasEdits());
  });
}

void EditSession::Clear() {
  pending_.clear();
  fov_.DropEdits();
  table_.DropEdits(table_.InTableOrder());
}

void EditSession::SetValue(const VarInfo& var, std::string text) {
  if (table_.IsReading(var, text)) {
    DropEdits({&var});
    return;
  }
  table_.Edit(var, std::move(text));
  pending_.insert(CommandOf(var));
}
