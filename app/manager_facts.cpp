#include "manager_facts.h"

#include "session/lidar_model.h"
#include "tevron_manager.h"
#include "variables/config_folder.h"

QObject* ManagerFacts::manager() const { return manager_; }

void ManagerFacts::SetManager(QObject* manager) {
  if (manager_ != nullptr) {
    disconnect(manager_, nullptr, this, nullptr);
  }
  manager_ = qobject_cast<TevronManager*>(manager);
  if (manager_ != nullptr) {
    connect(manager_, &TevronManager::lidarModelChanged, this, &ManagerFacts::changed);
  }
  emit managerChanged();
  emit changed();
}

bool ManagerFacts::hasCalibration() const {
  return manager_ != nullptr && manager_->Model()->family == SerialFamily::kLumo;
}

QStringList ManagerFacts::tables() const {
  if (manager_ == nullptr) {
    return {};
  }
  const std::shared_ptr<const LidarModel> model = manager_->Model();
  const ConfigFolder config(model->config_folder);
  const QString site = QString::fromStdString(AbsolutePath(config.site_path()));
  return {
      tr("Its table: %1").arg(QString::fromStdString(AbsolutePath(config.TableOf(model->name)))),
      config.has_site() ? tr("Tables of this site: %1").arg(site)
                        : tr("Tables of your own would lie in %1").arg(site)};
}

QString ManagerFacts::Remedy() const {
  return manager_ == nullptr ? QString() : manager_->ErrorRemedy();
}
