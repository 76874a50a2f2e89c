#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "variables/csv_reader.h"
#include "variables/fault_list.h"

/// A place in a table file that could not be read as a row.
struct CsvFault {
  size_t line = 0;  ///< 1-based line of the file where the row starts.
  std::string reason;
};

/// A small comma-separated file in memory, as CsvReader reads it. Rows that break its rules are
/// left out and listed in faults(). Immutable after construction, so it may be read on several
/// threads.
class CsvTable {
 public:
  /// Reads the whole file. Throws as CsvReader does.
  explicit CsvTable(const std::string& path);

  const CsvHeader& header() const { return header_; }
  size_t row_count() const { return rows_.size(); }

  /// 1-based line of the file where the row starts.
  size_t LineOf(size_t row) const { return rows_[row].line; }

  /// Content of a cell, empty when the row is too short. Valid as long as the table lives.
  std::string_view Cell(size_t row, size_t column) const;

  /// The rows that were left out, in file order.
  const std::vector<CsvFault>& faults() const { return faults_; }

 private:
  struct Row {
    size_t line;
    std::vector<std::string> cells;
  };

  CsvHeader header_;
  std::vector<Row> rows_;
  std::vector<CsvFault> faults_;
};

/// Tells the columns that stand twice, of which the first counts, and those of no known name.
void CheckColumns(const CsvHeader& header, const std::vector<std::string>& known,
                  FaultList* faults);
