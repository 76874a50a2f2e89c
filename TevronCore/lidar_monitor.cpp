#include "lidar_monitor.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <filesystem>
#include <utility>

#include "files/whole_file.h"
#include "variables/monitor_tables.h"

namespace {

using std::chrono::system_clock;

int64_t SinceEpochMs(system_clock::time_point time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

/// The path that a URL names; a text that is a path already is taken as it is.
std::string LocalPath(const QUrl& url) {
  if (url.isLocalFile()) {
    return url.toLocalFile().toStdString();
  }
  return url.toString(QUrl::FullyDecoded).toStdString();
}

}  // namespace

LidarMonitor::LidarMonitor(SetUp set_up)
    : set_up_(std::move(set_up)),
      reader_(sender_, set_up_.session.state(), set_up_.session.read_failures(), set_up_.posted) {
  TakeModel();
}

LidarMonitor::~LidarMonitor() = default;

void LidarMonitor::TakeModel() {
  if (model_ != nullptr && running_ != nullptr) {
    StopRecord();
  }
  model_ = set_up_.session.model();
  const int page = model_->pages.monitor_page();
  versions_ =
      page < 0 ? std::vector<std::string>() : ListMonitorVersions(model_->config, model_->name);
  drawn_ = DrawableVariables(model_->pages, page);
  std::vector<MonitorVariable> variables;
  for (const VarInfo* var : drawn_) {
    variables.push_back({var->var_name, var->unit});
  }
  was_fresh_ = false;
  newest_.reset();
  feed_.Restart(std::move(variables));
  SetAutoRefresh(auto_refresh_);
}

void LidarMonitor::TakeLink() {
  sender_.Set(set_up_.session.sender());
  TakeReading();
}

// Threads read the page side by side, and tell of it one after the other: what is new is seen from
// the times of the values, and not from who tells.
void LidarMonitor::TakeReading() {
  const auto now = system_clock::now();
  const bool connected = set_up_.session.state().connected;
  MonitorSample sample;
  bool is_fresh = false;
  auto newest = newest_;
  for (const ConfigParser::Value& value : model_->table->ValuesOf(drawn_)) {
    MonitorValue& shown = sample.values.emplace_back();
    if (!value.read_at) {
      continue;
    }
    shown.number = MonitorNumber(value.text).value_or(shown.number);
    shown.fresh = connected && now - *value.read_at < kFreshFor;
    is_fresh = is_fresh || shown.fresh;
    newest = std::max(newest, value.read_at);
  }
  const bool is_gap = was_fresh_ && !is_fresh;
  if (newest == newest_ && !is_gap) {
    return;
  }
  sample.time_ms = SinceEpochMs(newest == newest_ ? now : *newest);
  was_fresh_ = is_fresh;
  newest_ = newest;
  feed_.Add(std::move(sample));
}

void LidarMonitor::WasRead() {
  TakeReading();
  set_up_.handlers.read();
}

void LidarMonitor::SetAutoRefresh(bool on) {
  auto_refresh_ = on;
  const bool has_page = model_->pages.monitor_page() >= 0;
  if (on && has_page && refresh_ == nullptr) {
    refresh_ =
        std::make_unique<MonitorRefresh>(reader_, [this] { set_up_.post([this] { WasRead(); }); });
  }
  if (refresh_ != nullptr) {
    refresh_->SetModel(on && has_page ? model_ : nullptr);
  }
}

void LidarMonitor::StartRecord(const QUrl& folder, std::chrono::seconds duration,
                               std::chrono::seconds interval) {
  if (recording()) {
    return;
  }
  if (model_->pages.monitor_page() < 0) {
    set_up_.report.Error("No Monitor module for current model");
    return;
  }
  if (!set_up_.session.state().connected) {
    set_up_.report.Error("Please connect to lidar first");
    return;
  }
  const std::string path = LocalPath(folder);
  std::error_code error;
  if (!std::filesystem::is_directory(path, error)) {
    set_up_.report.LogLine(PathText(path) + ": there is no such folder; choose another one",
                           LogType::kError);
    set_up_.report.Error("Invalid record folder");
    return;
  }
  // The recorder may tell of itself before its address is known here: what it posts comes later.
  const auto self = std::make_shared<const MonitorRecorder*>(nullptr);
  auto recorder = std::make_unique<MonitorRecorder>(
      MonitorRecorder::Order{model_, FileIn(path), duration, interval}, reader_, set_up_.posted,
      MonitorRecorder::Handlers{[this, self](const MonitorRecording& progress) {
                                  set_up_.post(
                                      [this, self, progress] { TakeProgress(*self, progress); });
                                },
                                [this, self] { set_up_.post([this, self] { TakeEnd(*self); }); }});
  running_ = recorder.get();
  *self = running_;
  recorders_.push_back(std::move(recorder));
  set_up_.handlers.recording_changed();
}

std::string LidarMonitor::FileIn(const std::string& folder) const {
  const std::string version = model_->monitor_version.empty() ? "NA" : model_->monitor_version;
  const QString start = QLocale::c().toString(QDateTime::currentDateTime(), "yyyyMMdd_HHmmss");
  return (std::filesystem::path(folder) /
          ("Monitor_" + version + '_' + start.toStdString() + ".csv"))
      .string();
}

void LidarMonitor::StopRecord() {
  if (running_ == nullptr) {
    return;
  }
  std::exchange(running_, nullptr)->Stop();
  MonitorRecording ended = feed_.recording();
  ended.running = false;
  ended.seconds_left = 0;
  feed_.SetRecording(ended);
  set_up_.handlers.recording_changed();
}

// An earlier recording may still be on its way to its end.
void LidarMonitor::TakeProgress(const MonitorRecorder* recorder, const MonitorRecording& progress) {
  if (recorder == running_) {
    feed_.SetRecording(progress);
  }
  WasRead();
}

void LidarMonitor::TakeEnd(const MonitorRecorder* recorder) {
  if (recorder == running_) {
    StopRecord();
  }
  recorders_.remove_if([recorder](const auto& held) { return held.get() == recorder; });
}
