#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "variables/table_loader.h"
#include "variables/table_row.h"

/// Sorts the rows of one table into the payloads of their commands, and when all are there gives
/// each its place: one behind the other in the order of the rows. Used while a table is loaded.
///
/// A row that is left out has a place all the same, or the fields behind it would be read from and
/// written to their neighbours' bytes. Where that place is not known, the commands concerned are
/// taken out of use.
class TablePlaces {
 public:
  /// A payload longer than this is a slip of the table, whatever its rows say.
  static constexpr int64_t kMaxLength = int64_t{16} * 1024 * 1024;

  using FaultHandler = std::function<void(size_t line, const std::string& reason)>;

  TablePlaces(LoadedTable* table, FaultHandler fault) : table_(*table), fault_(std::move(fault)) {}

  void Reserve(size_t rows) { fields_.reserve(rows); }

  /// The next row, a variable of the table whose commands and length have been read.
  void Add(const TableRow& row, VarInfo* var);

  /// The next row, whose commands are known and whose length is not. It is none of the table's
  /// variables.
  void AddUnknownLength(const TableRow& row, const VarInfo& var);

  /// The next row, complete, but none of the table's variables.
  void AddLeftOut(const TableRow& row, uint32_t line);

  /// The next row, which holds only the cells in front of a fault.
  void AddBroken(const TableRow& row, uint32_t line);

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
  using Keys = std::unordered_map<std::string, std::string>;  // of command texts

  Field FieldOf(const TableRow& row, const VarInfo& var);
  FieldGroup* ReadGroupOf(const TableRow& row, const VarInfo& var);
  FieldGroup* WriteGroupOf(const TableRow& row, const VarInfo& var);
  const std::string& KeyOf(Keys* keys, const char* column, const VarInfo& var);
  void CheckCommandText(const char* column, const std::string& text, uint32_t line);
  void CheckSetIndex(const TableRow& row, const VarInfo& var);
  void TakeOutOfUse(const Field& field, const std::string& reason);
  void Place(const Field& field);
  void TakeCommandsAway(VarInfo* var);
  void CheckWrites();

  LoadedTable& table_;
  const FaultHandler fault_;
  std::vector<Field> fields_;
  Keys get_keys_;
  Keys set_keys_;
  std::unordered_map<std::string, FieldGroup*> reads_;          // by command key and payload
  std::unordered_map<const FieldGroup*, int32_t> set_indices_;  // the last of each

  // What the row before asked for: mostly the next one asks for the same.
  std::string last_get_;
  std::string last_get_payload_;
  FieldGroup* last_read_ = nullptr;
  std::string last_set_;
  FieldGroup* last_write_ = nullptr;

  std::unordered_map<const FieldGroup*, std::string> unusable_;  // with the reason
  std::unordered_map<std::string, std::string> unusable_reads_;  // the same, by command key
  std::string next_is_unusable_;  // why the commands of the row to come are out of use
};
