#include "support_bundle.h"

#include <QLocale>
#include <QVariantMap>
#include <utility>

#include "Log/logger.h"
#include "downloads/file_names.h"
#include "files/whole_file.h"
#include "lidar_settings.h"
#include "log_lines.h"
#include "session/lidar_model.h"
#include "tevron_manager.h"

namespace {

void TakeLines(const LogLines& log, BundleSources* sources) {
  for (int row = 0; row < log.rowCount(); ++row) {
    const QModelIndex index = log.index(row);
    const std::string line = log.data(index, LogLines::kLineRole).toString().toStdString();
    sources->screen_log += line + '\n';
    if (log.data(index, LogLines::kTagRole).toString() == "ERROR") {
      sources->last_fault = line;
    }
  }
}

}  // namespace

SupportBundle::SupportBundle(QObject* parent) : QObject(parent) {}
SupportBundle::~SupportBundle() = default;

QObject* SupportBundle::manager() const { return manager_; }

void SupportBundle::SetManager(QObject* manager) {
  manager_ = qobject_cast<TevronManager*>(manager);
  emit managerChanged();
}

QVariantList SupportBundle::entries() const {
  QVariantList shown;
  for (const BundleEntry& entry : entries_) {
    const auto size = static_cast<qint64>(entry.size());
    shown << QVariantMap{
        {"name", QString::fromStdString(entry.name)},
        {"what", QString::fromStdString(entry.what)},
        {"size", entry.left_out.empty() ? QLocale::c().formattedDataSize(size, 1) : QString()},
        {"leftOut", QString::fromStdString(entry.left_out)}};
  }
  return shown;
}

void SupportBundle::List(QObject* log) {
  if (manager_ == nullptr) {
    return;
  }
  kavel::lidar::Logger::GetInstance().Flush();
  BundleSources sources{manager_->Model()->config, std::nullopt, ""};
  if (const auto* lines = qobject_cast<LogLines*>(log)) {
    TakeLines(*lines, &sources);
  }
  if (!manager_->isConnected()) {
    Take(sources);
    return;
  }
  manager_->Settings().Read(
      [self = QPointer<SupportBundle>(this), sources = std::move(sources)](
          const std::optional<SettingsFile>& settings, const std::string& problem) mutable {
        if (self != nullptr) {
          sources.settings = settings;
          sources.no_settings = problem;
          self->Take(sources);
        }
      });
}

void SupportBundle::Take(const BundleSources& sources) {
  entries_ = ListBundle(sources);
  emit listed();
}

QString SupportBundle::SuggestedName() const {
  return "Tevron_support_" + TimeNow("yyyyMMdd_hhmmss") + kBundleSuffix;
}

void SupportBundle::Save(const QUrl& file) {
  if (manager_ == nullptr || entries_.empty()) {
    return;
  }
  const QString path = file.toLocalFile();
  const std::string problem = WriteBundle(path, entries_);
  if (problem.empty()) {
    manager_->setSuccessMsg(tr("The support bundle is saved: %1")
                                .arg(QString::fromStdString(PathText(path.toStdString()))));
  } else {
    manager_->setErrorMsg(
        tr("The support bundle is not saved: %1").arg(QString::fromStdString(problem)));
  }
}
