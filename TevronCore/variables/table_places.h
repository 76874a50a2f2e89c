#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "variables/command_cell.h"
#include "variables/fault_list.h"
#include "variables/out_of_use.h"
#include "variables/table_loader.h"
#include "variables/table_row.h"

/// Sorts the rows of one table into the payloads of their commands, and when all are there gives
/// each its place: one behind the other in the order of the rows. Used while a table is loaded.
///
/// A row that is left out has a place all the same, or the fields behind it would be read from and
/// written to their neighbours' bytes. Where that place is not known, the commands concerned are
/// taken out of use. A command whose fields can be read and not be written for certain is hindered.
class TablePlaces {
 public:
  /// A payload longer than this is a slip of the table, whatever its rows say.
  static constexpr int64_t kMaxLength = int64_t{16} * 1024 * 1024;

  TablePlaces(LoadedTable* table, FaultList* faults) : table_(*table), faults_(*faults) {}

  void Reserve(size_t rows) { fields_.reserve(rows); }

  /// The next row, a variable of the table whose commands and length have been read.
  void Add(const TableRow& row, VarInfo* var);

  /// The next row, whose commands are known and whose length is not. It is none of the table's
  /// variables.
  void AddUnknownLength(const TableRow& row, const VarInfo& var);

  /// The next row, complete, but none of the table's variables.
  void AddLeftOut(const TableRow& row, uint32_t line);

  /// The next row, of which only some cells can be trusted.
  void AddBroken(const TableRow& row, uint32_t line);

  /// Nothing must be written by this table, for this reason.
  void HinderWrites(const std::string& reason) { hinders_all_ = reason; }

  /// Fills groups and places of the table's variables, and takes the commands from those whose
  /// place is not known.
  void Fill();

 private:
  struct Field {
    VarInfo* var;  ///< null for a row that is left out
    FieldGroup* read;
    FieldGroup* write;
    int32_t length;
    uint32_t line;
  };
  /// A command text, looked at once.
  struct Command {
    std::string key;
    CommandCellProblem problem;
  };
  /// What is kept of the commands that read, or of those that write.
  struct Side {
    const char* column;
    std::unordered_map<std::string, Command> commands;  ///< by their text
    /// What the row before asked for: mostly the next one asks for the same.
    std::string last_text;
    FieldGroup* last = nullptr;
    std::string next_is_unusable;  ///< why the group of the row to come is out of use
  };

  Field FieldOf(const TableRow& row, const VarInfo& var);
  FieldGroup* ReadGroupOf(const TableRow& row, const VarInfo& var);
  FieldGroup* WriteGroupOf(const TableRow& row, const VarInfo& var);
  const std::string* KeyOf(Side* side, const std::string& text, size_t line);
  void DoubtBeside(Side* side, const std::string& reason);
  void EndDoubt(Side* side, const FieldGroup* group);
  void CheckSetIndex(const TableRow& row, const VarInfo& var);
  void TakeOutOfUse(const Field& field, const std::string& reason);
  void PlaceAll();
  void Place(const Field& field);
  void Doubt(const Field& field, const std::string& reason);
  void HinderWhereDoubtful();

  LoadedTable& table_;
  FaultList& faults_;
  std::vector<Field> fields_;
  Side reads_{"Get", {}, {}, nullptr, {}};
  Side writes_{"Set", {}, {}, nullptr, {}};
  std::unordered_map<std::string, FieldGroup*> read_groups_;  // by command key and payload
  std::string last_get_payload_;
  std::unordered_map<const FieldGroup*, int32_t> set_indices_;   // the last of each
  std::unordered_map<const FieldGroup*, std::string> doubtful_;  // reads, with the reason
  OutOfUse out_of_use_;
  std::string hinders_all_;
};
