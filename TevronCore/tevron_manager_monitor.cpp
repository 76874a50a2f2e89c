// The monitor page: its hardware versions, its recordings, and what it says over time.

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <utility>

#include "tevron_manager.h"
#include "tevron_manager_parts.h"

namespace {

constexpr int kMaxDurationSec = 7 * 24 * 60 * 60;
constexpr int kMaxIntervalSec = 60 * 60;

/// Takes `seconds`, at least 1 and at most `max`; true when what is held is not what was held
/// before, or not what was asked for.
bool TakeSeconds(int seconds, int max, int* held) {
  const int before = std::exchange(*held, std::clamp(seconds, 1, max));
  return *held != before || *held != seconds;
}

}  // namespace

MonitorFeed& TevronManager::Monitor() { return parts_->monitor.feed(); }

LidarSettings& TevronManager::Settings() { return parts_->settings_files; }

int TevronManager::monitorModuleIndex() const { return parts_->model()->pages.monitor_page(); }
int TevronManager::monitorContentRevision() const { return parts_->monitor_revision; }
bool TevronManager::isMonitorRecording() const { return parts_->monitor.recording(); }
bool TevronManager::monitorAutoRefresh() const { return parts_->monitor.auto_refresh(); }
int TevronManager::monitorRecordDurationSec() const { return parts_->monitor_record_duration_s; }
int TevronManager::monitorRecordIntervalSec() const { return parts_->monitor_record_interval_s; }

QVariantList TevronManager::monitorHwVersionList() const {
  QVariantList versions;
  for (const std::string& version : parts_->monitor.versions()) {
    versions.append(QString::fromStdString(version));
  }
  return versions;
}

QString TevronManager::currentMonitorHwVersion() const {
  return QString::fromStdString(parts_->model()->monitor_version);
}

void TevronManager::setMonitorAutoRefresh(bool on) {
  if (on != parts_->monitor.auto_refresh()) {
    parts_->monitor.SetAutoRefresh(on);
    emit monitorAutoRefreshChanged();
  }
}

void TevronManager::setMonitorRecordDurationSec(int seconds) {
  if (TakeSeconds(seconds, kMaxDurationSec, &parts_->monitor_record_duration_s)) {
    emit monitorRecordParamsChanged();
  }
}

void TevronManager::setMonitorRecordIntervalSec(int seconds) {
  if (TakeSeconds(seconds, kMaxIntervalSec, &parts_->monitor_record_interval_s)) {
    emit monitorRecordParamsChanged();
  }
}

void TevronManager::selectMonitorHwVersion(const QString& version) {
  if (parts_->monitor.recording()) {
    parts_->report.Error("Stop recording before switching hardware version");
    return;
  }
  TableFaults faults;
  const std::shared_ptr<LidarModel> loaded =
      WithMonitorVersion(*parts_->model(), version.toStdString(), &faults);
  if (!faults.empty()) {
    ReportFaults(faults);
  }
  if (loaded == nullptr) {
    parts_->report.Error("Failed to load monitor config for version " + version.toStdString());
    return;
  }
  const bool is_another = loaded->monitor_version != parts_->model()->monitor_version;
  parts_->TakeMonitorVersion(loaded);
  ++parts_->monitor_revision;
  if (is_another) {
    emit currentMonitorHwVersionChanged();
  }
  emit monitorHwVersionListChanged();
  emit monitorContentChanged();
  emit myMapChanged();
  refreshMonitor();
}

void TevronManager::refreshMonitor() { GetLidarModuleInfo(monitorModuleIndex()); }

void TevronManager::startMonitorRecord(const QUrl& folderUrl) {
  parts_->monitor.StartRecord(folderUrl, std::chrono::seconds(monitorRecordDurationSec()),
                              std::chrono::seconds(monitorRecordIntervalSec()));
}

void TevronManager::stopMonitorRecord() { parts_->monitor.StopRecord(); }

void TevronManager::ShowLink() {
  parts_->monitor.TakeLink();
  emit isConnectedChanged();
}

// As the periodic refresh tells it: what the user is typing stays as it is.
void TevronManager::ShowMonitorPage() {
  if (parts_->pages.UpdatePage(monitorModuleIndex())) {
    emit myTimerMapChanged();
  }
}
