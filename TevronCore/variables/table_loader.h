#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "variables/fault_list.h"
#include "variables/field_group.h"
#include "variables/shared_text.h"
#include "variables/table_fault.h"
#include "variables/var_index.h"
#include "variables/var_info.h"

/// A row with "GroupID" 0.
struct TableDirective {
  size_t line = 0;                 ///< 1-based line of the file where the row starts.
  std::vector<std::string> cells;  ///< Its cells from the second column on that are not empty.

  /// Its "Index" cell.
  const std::string& name() const { return cells.front(); }
};

/// A table as it was read, finished. Its parts point at one another; moving it keeps them valid.
struct LoadedTable {
  std::string path;
  TextPool texts;             ///< Cells that rows have alike.
  std::vector<VarInfo> rows;  ///< In file order, those that are left out or replaced among them.
  std::vector<const VarInfo*> variables;  ///< The others, in file order.
  VarIndex by_id{&VarInfo::var_id, 0};    ///< Positions in rows.
  VarIndex by_name{&VarInfo::var_name, 0};
  std::deque<FieldGroup> groups;
  std::unordered_map<std::string, FieldGroup*> writes;  ///< By CommandKey of the command.
  std::unordered_set<std::string> reads;                ///< CommandKeys of the commands that read.
  std::vector<TableDirective> directives;               ///< In table order.
  TableFaults faults;

  /// The group that the variable is written with; null without one.
  FieldGroup* WriteGroupOf(const VarInfo& var);
};

/// Longest value that a row may describe, in bytes: more than any payload of a lidar carries.
inline constexpr int32_t kMaxValueLength = 10240;

/// Rows that a table may have; each takes about a quarter of a kilobyte.
inline constexpr size_t kMaxTableRows = 200000;

/// Reads a table. What is wrong is said on standard output and in `faults`; the rest loads. A file
/// that cannot be read gives an empty table and a fault. Throws std::runtime_error
/// "Can't find a column named " and the name when a mandatory column is missing.
LoadedTable LoadTable(const std::string& path);

/// The same; what is wrong goes to `faults`, and LoadedTable::faults is left empty.
LoadedTable LoadTable(const std::string& path, FaultList* faults);
