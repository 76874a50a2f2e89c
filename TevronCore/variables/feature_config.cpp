#include "variables/feature_config.h"

#include <memory>
#include <optional>
#include <stdexcept>

#include "variables/csv_table.h"
#include "variables/number_text.h"

namespace {

// Null when the file cannot be read.
std::unique_ptr<CsvTable> ReadTable(const std::string& path) {
  try {
    return std::make_unique<CsvTable>(path);
  } catch (const std::runtime_error&) {
    return nullptr;
  }
}

std::optional<size_t> RowOf(const CsvTable& table, size_t model_column, const std::string& model) {
  for (size_t row = 0; row < table.row_count(); ++row) {
    if (Trim(table.Cell(row, model_column)) == model) {
      return row;
    }
  }
  return std::nullopt;
}

}  // namespace

bool IsHostPortUiEnabled(const std::string& table, const std::string& model) {
  const auto features = ReadTable(table);
  if (features == nullptr) {
    return false;
  }
  const size_t model_column = features->header().Column("Model");
  const size_t column = features->header().Column("EnableCmxClientHostPortUi");
  const auto row = RowOf(*features, model_column, model);
  return row && Trim(features->Cell(*row, column)) == "1";
}

kavel::lidar::StaleInput StaleInputFor(const std::string& table, const std::string& model) {
  using kavel::lidar::StaleInput;
  const auto features = ReadTable(table);
  if (features == nullptr) {
    return StaleInput::kAlways;
  }
  const auto model_column = features->header().FindColumn("Model");
  const auto column = features->header().FindColumn("StaleInputWait");
  if (!model_column || !column) {
    return StaleInput::kAlways;
  }
  const auto row = RowOf(*features, *model_column, model);
  return row && Trim(features->Cell(*row, *column)) == "trouble" ? StaleInput::kAfterTrouble
                                                                 : StaleInput::kAlways;
}
