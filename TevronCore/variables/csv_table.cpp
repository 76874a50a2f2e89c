#include "variables/csv_table.h"

#include <algorithm>

CsvTable::CsvTable(const std::string& path) {
  CsvReader reader(path);
  header_ = reader.header();
  while (true) {
    switch (reader.Next()) {
      case CsvReader::Event::kEnd:
        return;
      case CsvReader::Event::kBrokenRow:
        faults_.push_back({reader.line(), reader.reason()});
        break;
      case CsvReader::Event::kRow:
        Row& row = rows_.emplace_back();
        row.line = reader.line();
        for (size_t column = 0; column < reader.cell_count(); ++column) {
          row.cells.emplace_back(reader.Cell(column));
        }
    }
  }
}

std::string_view CsvTable::Cell(size_t row, size_t column) const {
  const std::vector<std::string>& cells = rows_[row].cells;
  return column < cells.size() ? std::string_view(cells[column]) : std::string_view();
}

void CheckColumns(const CsvHeader& header, const std::vector<std::string>& known,
                  FaultList* faults) {
  const auto& names = header.names;
  for (auto name = names.begin(); name != names.end(); ++name) {
    if (std::find(known.begin(), known.end(), *name) == known.end()) {
      faults->Warn(1, "the column " + Quoted(*name) + " is ignored; check its name");
    } else if (std::find(names.begin(), name, *name) != name) {
      faults->Fault(1, "the column " + *name +
                           " stands twice; leave one of them. The first counts until then");
    }
  }
}
