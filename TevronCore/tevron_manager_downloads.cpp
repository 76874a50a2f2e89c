// What the lidar hands out whole and is saved to files: logs, its configuration, its calibration.

#include <QFileInfo>
#include <exception>
#include <memory>
#include <string>

#include "downloads/calibration_download.h"
#include "downloads/file_names.h"
#include "downloads/log_download.h"
#include "files/whole_file.h"
#include "tevron_manager.h"
#include "tevron_manager_parts.h"
#include "variables/log_variables.h"

QVariantList TevronManager::logRepeaterModel() const {
  QVariantList names;
  for (const VarInfo* var : OfferedLogs(*parts_->model()->table)) {
    names.append(QString::fromStdString(var->var_name));
  }
  return names;
}

int TevronManager::DownloadLog(const QUrl& fileUrl, const QString& type) {
  const std::shared_ptr<LidarModel> model = parts_->model();
  const std::shared_ptr<kavel::lidar::CommandSender> sender = parts_->session.sender();
  LogDownload download({sender.get(), parts_->session.state(), *model->table, parts_->report,
                        [this](bool running) { setIsDownloadLog(running); }});
  const int result = download.Run(fileUrl, type);
  emit downloadFinished();
  return result;
}

// Without an argument that says where, the file goes where the last download went.
void TevronManager::StartGetConfigFile() {
  QString folder = LoadDownloadFolder(SettingsFilePath());
  if (folder.isEmpty()) {
    folder = QFileInfo(SettingsFilePath()).path();
    MakeFolder(folder.toStdString());
  }
  DownloadLog(QUrl::fromLocalFile(folder), kConfigFile);
}

// Meant: both names begin the same download on a thread of its own, since on the window's thread
// it would hold the window.
int TevronManager::DownloadOperationLog(const QUrl& fileUrl) {
  return DownloadOperationLogThread(fileUrl);
}

int TevronManager::DownloadOperationLogThread(const QUrl& fileUrl) {
  const auto refuse = [this](const std::string& reason) {
    parts_->report.Error(reason);
    emit downloadOperationLogFinished(false);
    return -1;
  };
  LinkState& state = parts_->session.state();
  if (parts_->operation_log != nullptr || state.downloading) {
    // Without the signal: it would be taken for the end of the download that runs.
    parts_->report.Error("Please wait for the operation log to download completely");
    return -1;
  }
  if (const char* obstacle = DownloadObstacle(state)) {
    return refuse(obstacle);
  }
  try {
    const WireCommand request =
        DownloadRequestOf(*parts_->model()->table, kOperationLog, kOperationLog);
    const std::shared_ptr<kavel::lidar::CommandSender> sender = parts_->session.sender();
    if (!state.connected || sender == nullptr) {
      return refuse("Please connect to lidar first");
    }
    const QString folder = LocalFolderOf(fileUrl);
    if (folder.isEmpty()) {
      return refuse("Operation log download failed.");
    }
    setIsDownloadLog(true);
    parts_->operation_log = std::make_unique<OperationLogDownload>(
        OperationLogDownload::Order{sender, request, folder}, parts_->posted,
        [this](OperationLogOutcome outcome) {
          QMetaObject::invokeMethod(
              this, [this, outcome] { FinishOperationLog(outcome); }, Qt::QueuedConnection);
        });
    return 0;
  } catch (const std::exception& e) {
    setIsDownloadLog(false);
    return refuse("Operation Log download error: " + std::string(e.what()));
  }
}

void TevronManager::FinishOperationLog(OperationLogOutcome outcome) {
  parts_->operation_log.reset();
  setIsDownloadLog(false);
  const bool is_successful = outcome == OperationLogOutcome::kSuccessful;
  if (is_successful) {
    parts_->report.Success("Operation log download successful.");
  } else if (outcome == OperationLogOutcome::kFailed) {
    parts_->report.Error("Operation log download failed.");
  }
  emit downloadOperationLogFinished(is_successful);
}

DownloadSnapshot TevronManager::DownloadNow() const {
  return parts_->operation_log == nullptr ? DownloadSnapshot() : parts_->operation_log->Now();
}

void TevronManager::CancelDownload() {
  if (parts_->operation_log != nullptr) {
    parts_->operation_log->Cancel();
  }
}

int TevronManager::LumoGetCorrection(const QString& path) {
  const std::shared_ptr<kavel::lidar::CommandSender> sender = parts_->session.sender();
  return DownloadCalibration(sender.get(), parts_->session.state(), path, parts_->report);
}
