#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "variables/config_folder.h"
#include "variables/table_fault.h"

/// What a check of the tables saw. The findings are those that stand in the log window once the
/// models are chosen, word for word.
struct TableReport {
  /// A file, and how much of it was looked at, in words: "84 variables, 10 pages".
  struct File {
    std::string path;
    std::string content;
  };

  std::vector<std::string> folders;  ///< Absolute: those of the layers that there are.
  std::vector<File> files;
  TableFaults findings;  ///< In the order of the files, and of the lines in each.
  size_t models = 0;     ///< How many were checked.

  size_t FaultCount() const;
};

/// Loads the tables of `model`, or of every model when that is empty, as the programs do: variable
/// and monitor tables, the feature table, the authentication table and its keys.
/// Throws std::invalid_argument with a sentence that lists the models when there is none called so.
TableReport CheckTables(const ConfigFolder& folder, const std::string& model);

/// Folders and files, a line for each finding, and how many there are. Never prints a key.
void PrintReport(const TableReport& report, std::ostream& out);
