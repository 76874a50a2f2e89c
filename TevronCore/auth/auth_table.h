#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "auth/auth_config.h"
#include "variables/csv_table.h"
#include "variables/fault_list.h"

/// One authentication table in memory. Immutable.
class AuthTable {
 public:
  /// A cell that does not say what it should.
  struct Finding {
    std::string column;
    std::string reason;
    std::string advice;    ///< what to write
    bool refuses = false;  ///< the row must not be used, since any reading of it would be a guess
  };

  /// Throws as CsvReader does, also when "Model" or "Enable" is missing.
  explicit AuthTable(const std::string& path);

  size_t row_count() const { return csv_.row_count(); }
  /// These two cells count as they stand, blanks included.
  std::string ModelOf(size_t row) const { return std::string(csv_.Cell(row, model_column_)); }
  std::string EnableOf(size_t row) const { return std::string(csv_.Cell(row, enable_column_)); }
  size_t LineOf(size_t row) const { return csv_.LineOf(row); }
  std::vector<size_t> RowsOf(const std::string& model) const;

  /// Rows of which nobody knows whose they are.
  const std::vector<CsvFault>& broken() const { return broken_; }

  /// What the row says, and everything that is wrong with its cells. Of one that is not enabled
  /// only "Enable" is read. Throws std::runtime_error for a missing column.
  AuthConfig Read(size_t row, std::vector<Finding>* findings) const;

  /// Tells columns that stand twice or mean nothing.
  void CheckHeader(FaultList* faults) const;

  /// Why a model cannot be looked up, or its row not be used.
  AuthConfigError Error(size_t row, const Finding& finding) const;
  AuthConfigError Repeated(size_t row, size_t first) const;
  AuthConfigError Broken(const CsvFault& fault) const;

 private:
  const std::string path_;
  const CsvTable csv_;
  size_t model_column_ = 0;
  size_t enable_column_ = 0;
  std::vector<CsvFault> broken_;
};
