#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Something in a table that its author should look at.
struct TableFault {
  enum class Severity {
    kFault,    ///< against the rules: what depends on it is left out or out of use
    kWarning,  ///< within the rules, works as it stands, and is probably not meant
  };

  size_t line = 0;   ///< 1-based line of the file; 0 when it is the whole file's.
  std::string text;  ///< Complete: file, line, what is wrong and what to write instead.
  Severity severity = Severity::kFault;
};

using TableFaults = std::vector<TableFault>;

/// Writes down what is found in one file, as "file, line N: reason".
class FileFaults {
 public:
  /// `faults` has to outlive the object.
  FileFaults(std::string path, TableFaults* faults) : path_(std::move(path)), faults_(*faults) {}

  /// `line` is 0 for what is the whole file's.
  void Fault(size_t line, const std::string& reason) const;
  void Warn(size_t line, const std::string& reason) const;

 private:
  void Add(size_t line, const std::string& reason, TableFault::Severity severity) const;

  const std::string path_;
  TableFaults& faults_;
};

/// Puts what is found in one file into the order of its lines.
void SortByLine(TableFaults* faults);
