#pragma once

#include <QString>
#include <vector>

#include "faults/trial.h"

/// What a cell showed, and the cell.
struct Result {
  Cell cell;
  Finding finding;
  qint64 took_ms = 0;
};

/// Tries cells, each in a process of its own, `jobs` at a time, and tells each on the standard
/// error as it ends.
std::vector<Result> RunCells(const std::vector<Cell>& cells, int jobs);

/// The results as a Markdown table, with the counts above it.
QString MarkdownOf(const std::vector<Result>& results);
