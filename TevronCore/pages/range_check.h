#pragma once

#include <functional>
#include <string>
#include <vector>

#include "session/user_report.h"
#include "variables/config_parser.h"

/// Tests what the user is about to save.
///
/// The two checks differ deliberately. The check of a page compares the text, read as a whole
/// number, with the range as the table states it; the check of one variable compares the text times
/// the scale factor, and does not test a range with a zero end at all.
class RangeCheck {
 public:
  using NameHandler = std::function<void(const std::string& var_name)>;

  RangeCheck(const ConfigParser& table, UserReport& report) : table_(table), report_(report) {}

  /// Tests all of `vars` whose check is enabled, and goes on after a violation: each one is written
  /// to the log window and its name handed to `on_violation`. False when there was any, or when a
  /// text is no whole number, which ends the check.
  bool CheckPage(const std::vector<const VarInfo*>& vars, const NameHandler& on_violation);

  /// Tests one variable.
  bool CheckVar(const VarInfo& var);

 private:
  std::string Violation(const VarInfo& var, const std::string& text);
  bool IsSwitchedOff(const VarInfo& var, const std::string& text);

  const ConfigParser& table_;
  UserReport& report_;
};
