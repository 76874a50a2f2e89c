#include "download_watch.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>

#include "connection/connection_settings.h"
#include "downloads/file_names.h"
#include "downloads/operation_log_download.h"
#include "tevron_manager.h"

namespace {

constexpr int kLookIntervalMs = 100;

// A sentence, or nothing.
QString ProblemOf(const QString& folder) {
  const QFileInfo info(folder);
  if (folder.isEmpty()) {
    return DownloadWatch::tr("Choose the folder that the files are saved to.");
  }
  if (!info.isDir()) {
    return DownloadWatch::tr("There is no such folder. Choose another one.");
  }
  return info.isWritable()
             ? QString()
             : DownloadWatch::tr("Nothing may be saved in this folder. Choose another one.");
}

QString Bytes(uint64_t count) {
  return QLocale(QLocale::English).formattedDataSize(static_cast<qint64>(count), 1);
}

}  // namespace

DownloadWatch::DownloadWatch(QObject* parent) : QObject(parent) {
  folder_ = LoadDownloadFolder(SettingsFilePath());
  if (folder_.isEmpty()) {
    folder_ = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
  }
  folder_problem_ = ProblemOf(folder_);
  timer_.setInterval(kLookIntervalMs);
  connect(&timer_, &QTimer::timeout, this, &DownloadWatch::Look);
}

QObject* DownloadWatch::manager() const { return manager_; }

void DownloadWatch::SetManager(QObject* manager) {
  if (manager_ != nullptr) {
    manager_->disconnect(this);
  }
  manager_ = qobject_cast<TevronManager*>(manager);
  if (manager_ != nullptr) {
    connect(manager_, &TevronManager::isDownloadLogChanged, this, &DownloadWatch::Look);
  }
  emit managerChanged();
  Look();
}

QString DownloadWatch::progress() const {
  if (!now_.running) {
    return {};
  }
  QString part = tr("Part %1 of %2").arg(now_.part).arg(now_.part_count);
  if (now_.announced == 0) {
    return part;
  }
  return tr("%1: %2 of %3").arg(part, Bytes(now_.received), Bytes(now_.announced));
}

double DownloadWatch::fraction() const {
  if (!now_.running || now_.part_count == 0) {
    return 0;
  }
  const double of_part = now_.announced == 0 ? 0.0
                                             : static_cast<double>(now_.received) /
                                                   static_cast<double>(now_.announced);
  return (now_.part - 1 + of_part) / now_.part_count;
}

void DownloadWatch::ChooseFolder(const QString& text) {
  const QString trimmed = text.trimmed();
  const QString path = trimmed.startsWith(QLatin1String("file:"))
                           ? LocalFolderOf(QUrl(trimmed, QUrl::StrictMode))
                           : trimmed;
  folder_ = path.isEmpty() ? path : QDir::cleanPath(path);
  folder_problem_ = ProblemOf(folder_);
  if (folder_problem_.isEmpty()) {
    SaveDownloadFolder(SettingsFilePath(), folder_);
  }
  emit folderChanged();
}

bool DownloadWatch::LookAtFolder() {
  folder_problem_ = ProblemOf(folder_);
  emit folderChanged();
  return folder_problem_.isEmpty();
}

void DownloadWatch::Cancel() {
  if (manager_ != nullptr) {
    manager_->CancelDownload();
    Look();
  }
}

void DownloadWatch::Look() {
  now_ = manager_ == nullptr ? DownloadSnapshot() : manager_->DownloadNow();
  const bool may_change = manager_ != nullptr && manager_->isDownloadLog();
  if (may_change != timer_.isActive()) {
    may_change ? timer_.start() : timer_.stop();
  }
  emit changed();
}
