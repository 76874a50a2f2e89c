#include "monitor/monitor_file.h"

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "variables/csv_reader.h"
#include "variables/number_text.h"

namespace {

constexpr char kTimeFormat[] = "yyyy-MM-dd HH:mm:ss.zzz";
constexpr std::string_view kTimeShape = "0000-00-00 00:00:00.000";
constexpr MonitorValue kNoNumber{std::numeric_limits<double>::quiet_NaN(), true};
constexpr int64_t kHourMs = int64_t{60} * 60 * 1000;

std::string Quoted(const std::string& cell) {
  if (cell.find_first_of(",\"\r\n") == std::string::npos) {
    return cell;
  }
  std::string quoted = "\"";
  for (const char c : cell) {
    quoted.append(c == '"' ? 2 : 1, c);
  }
  return quoted + '"';
}

std::string ShapeOf(std::string_view text) {
  std::string shape(text);
  for (char& c : shape) {
    c = c >= '1' && c <= '9' ? '0' : c;
  }
  return shape;
}

int NumberAt(std::string_view text, size_t from, size_t size) {
  return WholeNumber<int>(text.substr(from, size)).value_or(-1);
}

/// Since 1970 in UTC; nothing for a text that is no time. Much faster than a format string.
std::optional<int64_t> TimeIn(std::string_view text) {
  if (ShapeOf(text) != kTimeShape) {
    return std::nullopt;
  }
  const QDate date(NumberAt(text, 0, 4), NumberAt(text, 5, 2), NumberAt(text, 8, 2));
  const QTime time(NumberAt(text, 11, 2), NumberAt(text, 14, 2), NumberAt(text, 17, 2),
                   NumberAt(text, 20, 3));
  if (!date.isValid() || !time.isValid()) {
    return std::nullopt;
  }
  return QDateTime(date, time, Qt::LocalTime).toMSecsSinceEpoch();
}

/// Of the local time from UTC.
int64_t OffsetAt(int64_t time_ms) {
  return QDateTime::fromMSecsSinceEpoch(time_ms).offsetFromUtc() * int64_t{1000};
}

/// "Name (unit)" apart.
MonitorVariable ColumnOf(const std::string& caption) {
  const size_t open = caption.rfind(" (");
  if (open == std::string::npos || open == 0 || caption.back() != ')') {
    return {caption, {}};
  }
  return {caption.substr(0, open), caption.substr(open + 2, caption.size() - open - 3)};
}

/// One reading of a file.
class Reading {
 public:
  explicit Reading(const std::string& path) : csv_(path) {
    const std::vector<std::string>& names = csv_.header().names;
    if (names.empty() || names[0] != kRecordFirstColumn) {
      throw std::runtime_error(path + " is no recording: its first column is not called \"" +
                               kRecordFirstColumn + "\".");
    }
    for (size_t i = 1; i < names.size(); ++i) {
      file_.variables.push_back(ColumnOf(names[i]));
    }
  }

  MonitorFile Run() {
    for (CsvReader::Event event = csv_.Next(); event != CsvReader::Event::kEnd;
         event = csv_.Next()) {
      if (event == CsvReader::Event::kBrokenRow) {
        LeaveOut(csv_.reason());
      } else {
        TakeLine();
      }
    }
    if (left_out_ > MonitorFile::kMostFaults) {
      file_.faults.push_back(std::to_string(left_out_ - MonitorFile::kMostFaults) +
                             " more lines are left out.");
    }
    return std::move(file_);
  }

 private:
  void TakeLine() {
    if (csv_.cell_count() != csv_.header().names.size()) {
      LeaveOut(std::to_string(csv_.cell_count()) + " cells in place of " +
               std::to_string(csv_.header().names.size()));
      return;
    }
    const std::optional<int64_t> text_time = TimeIn(csv_.Cell(0));
    if (!text_time) {
      LeaveOut("its first cell is no time");
      return;
    }
    const std::optional<int64_t> time = NextTime(*text_time);
    if (!time) {
      LeaveOut("its time is not after that of the line before");
      return;
    }
    MonitorSample& sample = file_.samples.emplace_back();
    sample.time_ms = *time;
    for (size_t i = 1; i < csv_.cell_count(); ++i) {
      const std::optional<double> number = MonitorNumber(std::string(csv_.Cell(i)));
      sample.values.push_back(number ? MonitorValue{*number, true} : kNoNumber);
    }
  }

  /// The first moment behind the line before that reads like `time_ms`: at the end of summer time
  /// an hour comes twice.
  std::optional<int64_t> NextTime(int64_t time_ms) const {
    const bool is_second = OffsetAt(time_ms - kHourMs) - OffsetAt(time_ms) == kHourMs;
    const bool is_first = OffsetAt(time_ms) - OffsetAt(time_ms + kHourMs) == kHourMs;
    const int64_t first_ms = is_second ? time_ms - kHourMs : time_ms;
    const int64_t last_ms = is_first ? time_ms + kHourMs : time_ms;
    if (file_.samples.empty() || first_ms > file_.samples.back().time_ms) {
      return first_ms;
    }
    return last_ms > file_.samples.back().time_ms ? std::optional(last_ms) : std::nullopt;
  }

  void LeaveOut(const std::string& reason) {
    if (++left_out_ <= MonitorFile::kMostFaults) {
      file_.faults.push_back("Line " + std::to_string(csv_.line()) + " is left out: " + reason +
                             '.');
    }
  }

  CsvReader csv_;
  MonitorFile file_;
  size_t left_out_ = 0;
};

}  // namespace

std::string RecordLine(const std::string& first_cell, const std::vector<std::string>& cells) {
  std::string line = Quoted(first_cell);
  for (const std::string& cell : cells) {
    line += ',' + Quoted(cell);
  }
  return line + '\n';
}

std::string RecordTime() {
  return QLocale::c().toString(QDateTime::currentDateTime(), kTimeFormat).toStdString();
}

MonitorFile ReadMonitorFile(const std::string& path) { return Reading(path).Run(); }
