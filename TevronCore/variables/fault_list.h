#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "variables/table_fault.h"

/// Gathers what is wrong with one file, as "file, line N: reason". A file of nothing but faults
/// costs no more than a bounded number of them.
class FaultList {
 public:
  /// What is found after so many is only counted.
  static constexpr size_t kMost = 1000;

  /// `path` is the file that every text names.
  explicit FaultList(std::string path) : path_(std::move(path)) {}

  /// `line` 0 means the whole file.
  void Fault(size_t line, std::string_view reason) {
    Add(TableFault::Severity::kFault, line, reason);
  }
  void Warn(size_t line, std::string_view reason) {
    Add(TableFault::Severity::kWarning, line, reason);
  }

  /// Everything in the order of the lines, and then how many more there were. The list is empty
  /// afterwards.
  TableFaults Take();
  /// The same, behind what *faults holds.
  void MoveTo(TableFaults* faults);

  bool empty() const { return faults_.empty(); }

 private:
  void Add(TableFault::Severity severity, size_t line, std::string_view reason);

  const std::string path_;
  TableFaults faults_;
  uint64_t more_faults_ = 0;
  uint64_t more_warnings_ = 0;
};

/// A cell between quotation marks, as a message shows it: on one line, and no longer than a reader
/// has use for.
std::string Quoted(std::string_view cell);
