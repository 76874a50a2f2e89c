#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "variables/csv_reader.h"
#include "variables/fault_list.h"
#include "variables/row_shift.h"
#include "variables/shared_text.h"
#include "variables/var_info.h"

/// The columns of a variable table.
enum class Column : size_t {
  kGroupId,
  kIndex,
  kGet,
  kSet,
  kSetIndex,
  kVarName,
  kPermission,
  kVarType,
  kDefaultValue,
  kOptions,
  kUnit,
  kCoefficient,
  kOptionDescription,
  kFunctionModule,
  kVarLen,
  kTimerUpdate,
  kSetCoefficient,
  kGetCmdPayload,  // from here on a table may leave them out
  kSetCmdPayload,
  kCount,
};

/// The row that a CsvReader is at, as the description of a variable.
class TableRow {
 public:
  /// `faults` is told what is wrong with a cell. Throws std::runtime_error "Can't find a column
  /// named " and the name when a mandatory column is missing. `csv`, `faults` and `texts`, which
  /// takes the cells that rows have alike, have to outlive the object.
  TableRow(const CsvReader& csv, TextPool* texts, FaultList* faults);

  /// Looks for columns that the header has twice or writes otherwise. The reason why nothing must
  /// be written by this table; mostly empty.
  std::string CheckHeader() const;

  std::string_view Cell(Column column) const;

  /// A cell that many rows have alike.
  SharedText SharedCell(Column column) const;

  /// Whether the cells of the row stand in other columns than they should; it is told then. From
  /// there on Has() is false for what cannot be trusted of this row.
  bool IsShifted();

  /// Whether the cell can be trusted to be the one of its column. Of a row that is broken or
  /// shifted it is a question.
  bool Has(Column column) const;

  /// Fills id, commands, type and length: what decides over the row's place among the others.
  /// False when its length cannot be known; the rest is filled all the same.
  bool ReadPlace(VarInfo* var) const;

  /// Whether "GetCmdPayload" is one, or empty.
  bool PayloadIsSound() const;

  /// Fills the rest.
  void ReadRest(VarInfo* var) const;

  /// 1-based line of the file.
  size_t line() const { return csv_.line(); }

 private:
  size_t PositionOf(Column column) const { return columns_[static_cast<size_t>(column)]; }
  bool ReadLength(VarInfo* var) const;
  int32_t ReadNumber(Column column, const char* what_to_write) const;
  std::optional<float> ReadCoefficient(Column column, float when_empty) const;
  bool ReadCoefficients(VarInfo* var) const;
  void ReadControl(VarInfo* var) const;
  void CheckId(Column column) const;
  void Fault(const std::string& reason) const { faults_.Fault(line(), reason); }

  const CsvReader& csv_;
  TextPool& texts_;
  FaultList& faults_;
  size_t shifted_line_ = 0;  // of the row that only so many cells can be trusted of
  size_t trusted_cells_ = 0;
  std::array<size_t, static_cast<size_t>(Column::kCount)> columns_{};
  std::string usual_type_ = "none yet";  // of a row that is not shifted
  std::string usual_length_;
  // What SharedCell gave last: mostly the next row has the same.
  mutable std::array<SharedText, static_cast<size_t>(Column::kCount)> last_{};
};
