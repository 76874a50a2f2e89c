#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "variables/config_parser.h"

/// A set command ready to be sent.
struct SetCommand {
  uint8_t code = 0;
  std::vector<uint8_t> payload;
  std::string names;  ///< the changed variables, each followed by ", "
  /// What the lidar holds once it has accepted.
  struct Change {
    const VarInfo* var;
    std::string text;
    std::vector<uint8_t> bytes;
  };
  std::vector<Change> changes;
};

/// Lays changes over the device's present values, one set command at a time.
///
/// The work has two steps with the fresh read between them: Gather, or Put, says what is changed,
/// so that a text that cannot be converted stops everything before anything is sent; Build then
/// takes the bytes of untouched variables as the lidar has just reported them. `table` has to
/// outlive the builder.
class PayloadBuilder {
 public:
  explicit PayloadBuilder(const ConfigParser& table) : table_(table) {}

  /// The user's edits: converts the texts of those variables of `set_cmd` that the user changed or
  /// that can only be set. Throws std::exceptions whose text tells the user what is wrong.
  void Gather(const std::string& set_cmd);

  /// A change that is nobody's edit.
  void Put(const VarInfo& var, std::string text, std::vector<uint8_t> bytes);

  /// The command as it is to be sent. Throws for a command text that is no code and for a variable
  /// whose present value is unknown.
  SetCommand Build(const std::string& set_cmd) const;

 private:
  struct Field {
    std::string text;
    std::vector<uint8_t> bytes;
    bool is_change = false;
  };

  std::vector<uint8_t> BytesOf(const VarInfo& var) const;

  const ConfigParser& table_;
  std::map<const VarInfo*, Field> fields_;
};
