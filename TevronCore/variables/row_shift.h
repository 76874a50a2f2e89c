#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "variables/csv_reader.h"

/// A row of a variable table whose cells do not stand in their columns, mostly because a cell with
/// a comma lacks its quotation marks.
struct RowShift {
  std::string reason;        ///< With what to write instead.
  size_t trusted_cells = 0;  ///< So many at its start stand where they should.
};

/// Looks at the row that the reader is at, which is no directive. `type_column` and `length_column`
/// are the positions of "VarType" and "VarLen"; `page` is the "FunctionModule" of the row before.
/// Nothing for a row that may merely have a wrong cell.
std::optional<RowShift> FindShift(const CsvReader& csv, size_t type_column, size_t length_column,
                                  std::string_view page);
