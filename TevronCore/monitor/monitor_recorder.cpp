#include "monitor/monitor_recorder.h"

#include <utility>

#include "files/whole_file.h"
#include "monitor/monitor_file.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kStep{100};

int SecondsUntil(Clock::time_point end) {
  const auto left = std::chrono::ceil<std::chrono::seconds>(end - Clock::now());
  return left.count() < 0 ? 0 : static_cast<int>(left.count());
}

}  // namespace

MonitorRecorder::MonitorRecorder(Order order, const MonitorReader& reader,
                                 std::shared_ptr<UserReport> report, Handlers handlers)
    : order_(std::move(order)),
      reader_(reader),
      report_(std::move(report)),
      handlers_(std::move(handlers)),
      vars_(order_.model->pages.VariablesOf(order_.model->pages.monitor_page())),
      thread_([this] { Run(); }) {}

MonitorRecorder::~MonitorRecorder() {
  stop_.Raise();
  thread_.join();
}

void MonitorRecorder::Run() {
  const End end = Record();
  handlers_.ended();
  const std::string shown = PathText(order_.file);
  if (end != End::kSaved) {
    report_->LogLine(shown + ": " + problem_, LogType::kError);
  }
  switch (end) {
    case End::kSaved:
      report_->Success("Monitor record saved:\n" + shown);
      return;
    case End::kNotCreated:
      report_->Error("Failed to create monitor record file");
      return;
    case End::kNotWritten:
      report_->Error("The monitor record could not be written to its end:\n" + shown);
  }
}

MonitorRecorder::End MonitorRecorder::Record() {
  std::vector<std::string> captions;
  for (const VarInfo* var : vars_) {
    captions.push_back(var->var_name + UnitSuffix(*var));
  }
  const FileOutcome begun = WriteWholeFile(order_.file, RecordLine(kRecordFirstColumn, captions));
  problem_ = begun.reason;
  if (!begun.written) {
    return End::kNotCreated;
  }
  const Clock::time_point end = Clock::now() + order_.duration;
  recording_ = {true, true, order_.file, 0, SecondsUntil(end)};
  handlers_.written(recording_);
  while (!IsOver(end)) {
    Read();
    problem_ = AppendToFile(order_.file, Line());
    if (!problem_.empty()) {
      return End::kNotWritten;
    }
    ++recording_.samples;
    recording_.seconds_left = SecondsUntil(end);
    handlers_.written(recording_);
    // Nothing is written after the duration: an interval beyond its end is not waited for.
    for (auto left = order_.interval / kStep; left > 0 && !IsOver(end); --left) {
      stop_.WaitFor(kStep);
    }
  }
  return End::kSaved;
}

// By the monotonic clock: the clock that the lines show may be set meanwhile.
bool MonitorRecorder::IsOver(Clock::time_point end) const {
  return stop_.IsRaised() || Clock::now() >= end;
}

void MonitorRecorder::Read() {
  const std::string trouble = reader_.Read(*order_.model, "MonitorRecorder");
  const bool is_fresh = trouble.empty();
  if (is_fresh == std::exchange(recording_.fresh, is_fresh)) {
    return;
  }
  if (is_fresh) {
    report_->LogLine("The recording's values are fresh again.", LogType::kInfo);
  } else {
    report_->LogLine("The recording goes on with values that are not fresh: " + trouble + '.',
                     LogType::kWarning);
  }
}

std::string MonitorRecorder::Line() const {
  std::vector<std::string> texts;
  for (ConfigParser::Value& value : order_.model->table->ValuesOf(vars_)) {
    texts.push_back(std::move(value.text));
  }
  return RecordLine(RecordTime(), texts);
}
