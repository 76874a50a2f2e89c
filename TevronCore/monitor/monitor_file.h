#pragma once

#include <string>
#include <vector>

#include "monitor/monitor_sample.h"

// A recording is a comma-separated file in UTF-8: a header of "timestamp" and the names with their
// units, then a line for each sample, with the local time and the values as they were shown. Lines
// end with a line feed; a cell with a comma, a quotation mark or a line end is quoted.

/// One line, its end included.
std::string RecordLine(const std::string& first_cell, const std::vector<std::string>& cells);

inline constexpr char kRecordFirstColumn[] = "timestamp";

/// The first cell of a line that is written now, in digits whatever the user's language.
std::string RecordTime();

/// A recording as it was read from its file.
struct MonitorFile {
  /// The columns behind the time, texts among them (their values have no number). The unit is what
  /// stands in brackets at the end of a column's name.
  std::vector<MonitorVariable> variables;
  /// In the order of their times, no two of which are the same. A cell that is empty or no number
  /// gives a value without one; every value is fresh.
  std::vector<MonitorSample> samples;
  /// What was left out and why, one sentence each with the line; at most kMostFaults and then one
  /// that says how many more there are.
  std::vector<std::string> faults;

  static constexpr size_t kMostFaults = 20;
};

/// Reads a recording. Lines with a broken quotation, with a time that is none or that is not after
/// the one before, and those cut off at the end are left out and listed in `faults`.
///
/// Throws std::runtime_error, whose text is a sentence for the user that names the file and the
/// reason, when the file cannot be read, is larger than 64 MiB, or is no recording at all (the
/// first column is not "timestamp"). Takes up to a few seconds for the largest files. Callable on
/// any thread.
MonitorFile ReadMonitorFile(const std::string& path);
