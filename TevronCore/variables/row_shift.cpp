#include "variables/row_shift.h"

#include "variables/number_text.h"
#include "variables/value_type.h"

namespace {

constexpr char kQuoteIt[] = "; a cell with a comma has to stand in quotation marks";

// Further away a name of a type is more likely a text of its own.
constexpr size_t kLongestShift = 4;

bool IsType(std::string_view cell) { return ValueTypeOf(cell).kind != ValueKind::kUnknown; }

// Number of the last cell with content, and one.
size_t FilledCells(const CsvReader& csv) {
  size_t count = csv.cell_count();
  while (count > 0 && csv.Cell(count - 1).empty()) {
    --count;
  }
  return count;
}

// The type is to the right or left of its column. An extra or a missing comma may be anywhere
// before it, so no command can be trusted either.
std::optional<RowShift> ShiftOfType(const CsvReader& csv, size_t type_column) {
  for (size_t shift = 1; shift <= kLongestShift; ++shift) {
    if (IsType(csv.Cell(type_column + shift))) {
      return RowShift{"the cells up to VarType have " + std::to_string(shift) +
                          (shift == 1 ? " comma" : " commas") + " too many" + kQuoteIt,
                      0};
    }
  }
  if (type_column > 0 && IsType(csv.Cell(type_column - 1))) {
    return RowShift{"the cells up to VarType lack a comma; an empty cell has one too", 0};
  }
  return std::nullopt;
}

}  // namespace

std::optional<RowShift> FindShift(const CsvReader& csv, size_t type_column, size_t length_column,
                                  std::string_view page) {
  const size_t columns = csv.header().names.size();
  const std::string_view type = csv.Cell(type_column);
  const std::string_view length = Trim(csv.Cell(length_column));
  const bool is_type = IsType(type);
  const bool is_length = length.empty() || WholeNumber<int64_t>(length);
  const bool is_longer = csv.cell_count() > columns;
  if (is_type && is_length && !is_longer) {
    return std::nullopt;
  }
  if (!is_type) {
    if (auto shift = ShiftOfType(csv, type_column)) {
      return shift;
    }
  }
  if (FilledCells(csv) > columns) {
    return RowShift{"the row has " + std::to_string(FilledCells(csv)) +
                        " cells where the header has " + std::to_string(columns) + kQuoteIt,
                    is_type ? type_column + 1 : 0};
  }
  if (is_type && !is_length && (is_longer || length == page)) {
    return RowShift{
        "VarLen has the text \"" + std::string(length) + "\" of a cell to its left" + kQuoteIt,
        type_column + 1};
  }
  return std::nullopt;
}
