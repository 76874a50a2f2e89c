#include <stdexcept>

#include "fuzz/fuzz_targets.h"
#include "monitor/monitor_file.h"
#include "variables/csv_reader.h"

namespace {

/// What was read as cells is read again when it is recorded.
void CheckRecording(const std::string& path) {
  CsvReader csv(path);
  std::vector<std::string> lines;
  std::vector<std::vector<std::string>> rows;
  std::string content;
  while (csv.Next() == CsvReader::Event::kRow && rows.size() < 64) {
    std::vector<std::string>& row = rows.emplace_back();
    for (size_t column = 0; column < csv.cell_count(); ++column) {
      row.emplace_back(csv.Cell(column));
    }
    const std::vector<std::string> others(row.begin() + 1, row.end());
    content += RecordLine(row[0], others);
  }
  CsvReader again(FuzzFolder().Write("again.csv", "header\n" + content));
  for (const std::vector<std::string>& row : rows) {
    if (row.size() == 1 && row[0].empty()) {
      continue;  // an empty line is none
    }
    Require(again.Next() == CsvReader::Event::kRow && again.cell_count() == row.size(),
            "a line is read as it was recorded");
    for (size_t column = 0; column < row.size(); ++column) {
      Require(again.Cell(column) == row[column], "a cell is read as it was recorded");
    }
  }
}

void CheckFile(const MonitorFile& file) {
  Require(file.faults.size() <= MonitorFile::kMostFaults + 1, "what is told of a file is bounded");
  const MonitorSample* before = nullptr;
  for (const MonitorSample& sample : file.samples) {
    Require(sample.values.size() == file.variables.size(), "a sample has every value");
    Require(before == nullptr || before->time_ms < sample.time_ms, "times ascend");
    before = &sample;
  }
}

}  // namespace

void FuzzMonitorFile(FuzzInput input) {
  const std::string path = FuzzFolder().Write("monitor.csv", input.RestText());
  try {
    CheckFile(ReadMonitorFile(path));
    CheckRecording(path);
  } catch (const std::runtime_error& error) {
    Require(std::string(error.what()).find(path) == 0, "a failure names the file");
  }
}
