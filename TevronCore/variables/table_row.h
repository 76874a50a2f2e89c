#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "variables/csv_reader.h"
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
  using FaultHandler = std::function<void(const std::string& reason)>;

  /// `fault` is told what is wrong with a cell. Throws std::runtime_error "Can't find a column
  /// named " and the name when a mandatory column is missing. `csv` and `texts`, which takes the
  /// cells that rows have alike, have to outlive the object.
  TableRow(const CsvReader& csv, TextPool* texts, FaultHandler fault);

  std::string_view Cell(Column column) const;

  /// A cell that many rows have alike.
  SharedText SharedCell(Column column) const;

  /// Whether the row reaches so far. Only of a broken row is it a question.
  bool Has(Column column) const;

  /// Fills id, commands, type and length: what decides over the row's place among the others.
  /// False when its length cannot be known; the rest is filled all the same.
  bool ReadPlace(VarInfo* var) const;

  /// Fills the rest.
  void ReadRest(VarInfo* var) const;

  std::optional<int32_t> ReadSetIndex() const;

  /// Bytes of a payload cell; none when it does not convert.
  std::vector<uint8_t> ReadPayload(Column column) const;

 private:
  bool ReadLength(VarInfo* var) const;
  int32_t ReadNumber(Column column) const;
  float ReadCoefficient(Column column, float when_empty) const;
  void Check(const VarInfo& var) const;

  const CsvReader& csv_;
  TextPool& texts_;
  const FaultHandler fault_;
  std::array<size_t, static_cast<size_t>(Column::kCount)> columns_{};
  // What SharedCell gave last: mostly the next row has the same.
  mutable std::array<SharedText, static_cast<size_t>(Column::kCount)> last_{};
};
