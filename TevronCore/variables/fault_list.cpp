#include "variables/fault_list.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr size_t kLongestQuote = 80;

bool IsInsideCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

}  // namespace

void FaultList::Add(TableFault::Severity severity, size_t line, std::string_view reason) {
  if (faults_.size() == kMost) {
    ++(severity == TableFault::Severity::kFault ? more_faults_ : more_warnings_);
    return;
  }
  std::string text = path_;
  if (line != 0) {
    text.append(", line ").append(std::to_string(line));
  }
  if (reason.substr(0, text.size()) == text) {  // a file that cannot be read names itself
    text = reason;
  } else {
    text.append(": ").append(reason);
  }
  faults_.push_back({line, std::move(text), severity, path_});
}

TableFaults FaultList::Take() {
  std::stable_sort(faults_.begin(), faults_.end(),
                   [](const TableFault& a, const TableFault& b) { return a.line < b.line; });
  if (const uint64_t more = more_faults_ + more_warnings_; more != 0) {
    faults_.push_back(
        {0, path_ + ": " + std::to_string(more) + " more; mend these first",
         more_faults_ != 0 ? TableFault::Severity::kFault : TableFault::Severity::kWarning, path_});
  }
  more_faults_ = 0;
  more_warnings_ = 0;
  return std::exchange(faults_, {});
}

void FaultList::MoveTo(TableFaults* faults) {
  TableFaults taken = Take();
  faults->insert(faults->end(), std::make_move_iterator(taken.begin()),
                 std::make_move_iterator(taken.end()));
}

std::string Quoted(std::string_view cell) {
  size_t size = std::min(cell.size(), kLongestQuote);
  while (size < cell.size() && size > 0 && IsInsideCharacter(cell[size])) {
    --size;
  }
  std::string text(1, '"');
  text.append(cell.substr(0, size)).append(size < cell.size() ? "...\"" : "\"");
  std::replace_if(
      text.begin(), text.end(),
      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
  return text;
}
