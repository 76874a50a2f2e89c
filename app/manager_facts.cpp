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
  const auto shown = [](const std::string& path) {
    return QString::fromStdString(AbsolutePath(path));
  };
  const ConfigFolder& config = model->config;
  QStringList lines{tr("Its table: %1").arg(shown(config.TableOf(model->name)))};
  for (const ConfigLayer& layer : config.layers()) {
    if (layer.owner != ConfigLayer::Owner::kProgram && layer.is_folder()) {
      const bool is_site = layer.owner == ConfigLayer::Owner::kSite;
      lines << (is_site ? tr("Tables of this site: %1") : tr("Tables of your own: %1"))
                   .arg(shown(layer.path));
    }
  }
  if (const ConfigLayer& last = config.layers().back(); !last.is_folder()) {
    lines << tr("Tables of your own would lie in %1").arg(shown(last.path));
  }
  return lines;
}

QString ManagerFacts::Remedy() const {
  return manager_ == nullptr ? QString() : manager_->ErrorRemedy();
}
