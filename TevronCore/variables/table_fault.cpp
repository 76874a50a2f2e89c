#include "variables/table_fault.h"

#include <algorithm>

void FileFaults::Fault(size_t line, const std::string& reason) const {
  Add(line, reason, TableFault::Severity::kFault);
}

void FileFaults::Warn(size_t line, const std::string& reason) const {
  Add(line, reason, TableFault::Severity::kWarning);
}

void FileFaults::Add(size_t line, const std::string& reason, TableFault::Severity severity) const {
  const std::string place = line == 0 ? path_ : path_ + ", line " + std::to_string(line);
  if (reason.compare(0, place.size(), place) == 0) {  // a file that cannot be read names itself
    faults_.push_back({line, reason, severity});
    return;
  }
  faults_.push_back({line, place + ": " + reason, severity});
}

void SortByLine(TableFaults* faults) {
  std::stable_sort(faults->begin(), faults->end(),
                   [](const TableFault& a, const TableFault& b) { return a.line < b.line; });
}
