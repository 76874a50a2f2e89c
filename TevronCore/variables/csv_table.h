#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A place in a table file that could not be read as a row.
struct CsvFault {
  size_t line = 0;  ///< 1-based line of the file where the row starts.
  std::string reason;
};

/// A comma-separated file in memory: one header row, then data rows, cells found by header name.
///
/// Reading follows RFC 4180 with strict quoting: commas, line breaks and doubled quotes inside
/// quoted cells are content, CRLF and LF both end a row, blanks are content, empty lines are
/// skipped, and a UTF-8 byte-order mark before the header is dropped. A row that breaks the quoting
/// rules is left out and listed in faults(); the rows around it are read.
///
/// Immutable after construction, so it may be read on several threads.
class CsvTable {
 public:
  /// Files above this size are refused before any memory is taken for them.
  static constexpr size_t kMaxFileBytes = size_t{64} * 1024 * 1024;
  /// Reading stops after this many broken rows: the file is then no table at all.
  static constexpr size_t kMaxFaults = 100;

  /// Reads the whole file. Throws std::runtime_error, whose text names the file and the reason,
  /// when it is missing, not a regular file, too large or unreadable. An empty file has no columns.
  explicit CsvTable(const std::string& path);

  /// Position of the column with exactly this name, the first if several have it. Throws
  /// std::runtime_error "Can't find a column named " and the name.
  size_t Column(std::string_view name) const;

  /// As Column, for a column that a file may leave out.
  std::optional<size_t> FindColumn(std::string_view name) const;

  size_t row_count() const { return row_lines_.size(); }
  size_t column_count() const { return header_.size(); }

  /// Number of cells that the row really has: fewer or more than column_count() are both possible.
  size_t CellCount(size_t row) const { return row_starts_[row + 1] - row_starts_[row]; }

  /// 1-based line of the file where the row starts.
  size_t LineOf(size_t row) const { return row_lines_[row]; }

  /// Content of a cell, empty when the row is too short. Valid as long as the table lives.
  std::string_view Cell(size_t row, size_t column) const;

  /// The rows that were left out, in file order.
  const std::vector<CsvFault>& faults() const { return faults_; }

 private:
  friend class CsvReader;

  std::vector<std::string> header_;
  std::string text_;                  // the contents of all cells, one behind the other
  std::vector<uint32_t> cell_ends_;   // per cell: where its content ends in text_
  std::vector<uint32_t> row_starts_;  // per row: its first cell; one more entry for the end
  std::vector<uint32_t> row_lines_;
  std::vector<CsvFault> faults_;
};
