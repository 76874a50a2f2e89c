#pragma once

#include <set>
#include <string>
#include <vector>

#include "pages/fov_table.h"
#include "session/user_report.h"
#include "variables/config_parser.h"

/// Set commands that have changes waiting to be written.
using PendingCommands = std::set<std::string>;

/// The command that writes a variable, by the text of the first row that names it: "0x31" and "49"
/// are one command.
inline const std::string& CommandOf(const VarInfo& var) {
  return var.write == nullptr ? var.set_cmd.str() : var.write->name;
}

/// What the user has changed on one model's pages and not yet saved. GUI thread only.
class EditSession {
 public:
  /// What a text given to SetText means.
  enum Kind : int {
    kTextInput = 1,    ///< the value as typed
    kSwitchInput = 2,  ///< "0" is off, anything else on
    kOptionInput = 3,  ///< the number of an option in its list, from 0
  };

  /// `table` has to outlive the session.
  explicit EditSession(ConfigParser& table) : table_(table), fov_(table) {}

  /// Goes on where `earlier` stopped: its marks and angles. Its other edits are in its table, of
  /// which this one's has to be a copy.
  void TakeOver(const EditSession& earlier) {
    pending_ = earlier.pending_;
    fov_.TakeEdits(earlier.fov_);
  }

  /// Lays the user's input over `var` and marks its set command as pending. Switching on restores
  /// the last value that was not 0, else the lower end of the range, else 1. The text that the
  /// lidar holds takes the edit back, and the mark as DropEdits does. Input that means nothing
  /// (unknown kind, no such option, a variable that cannot be written) changes nothing and is
  /// reported.
  void SetText(int kind, const VarInfo& var, const std::string& text, UserReport& report);

  /// The same for one angle of the field-of-view table. True when the table changed.
  bool SetFov(int index, const std::string& text, UserReport& report);

  /// Takes the edits of `vars` back, and with them the marks of the set commands that no other
  /// field has an edit for.
  void DropEdits(const std::vector<const VarInfo*>& vars);

  /// Forgets the pending commands and takes every edit back.
  void Clear();

  PendingCommands& pending() { return pending_; }
  FovTable& fov() { return fov_; }

 private:
  void SetValue(const VarInfo& var, std::string text);
  bool HasEdits(const std::string& command) const;

  ConfigParser& table_;
  PendingCommands pending_;
  FovTable fov_;
};
