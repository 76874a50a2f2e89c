#include "tevron_manager.h"

#include <mutex>
#include <utility>

#include "connection/connection_settings.h"
#include "tevron_manager_parts.h"

TevronManager* TevronManager::Instance(bool flag, const std::string& table_path) {
  static std::once_flag once;
  static TevronManager* instance = nullptr;
  std::call_once(once, [&] { instance = new TevronManager(flag, table_path); });
  return instance;
}

TevronManager::TevronManager(bool flag, const std::string& table_path)
    : parts_(*this, std::make_unique<Parts>(*this, flag, table_path)) {}

TevronManager::~TevronManager() = default;

void TevronManager::SetModulePV(const QString& model_name) {
  if (model_name.isEmpty() || !lidarModelList().contains(QVariant(model_name))) {
    return;
  }
  InitConfigFileParser(model_name);
  parts_->product_variant = model_name.toStdString();
  emit lidarModelListChanged();
}

void TevronManager::InitConfigFileParser(const QString& model_name) {
  const std::string name = model_name.toStdString();
  // A connection belongs to the model that it was made for.
  const LidarSession& session = parts_->session;
  if (session.connecting() || (session.state().connected && name != session.model()->name)) {
    Stop();
  }
  emit lidarClearModel();
  parts_->TakeModel(LoadLidarModel(parts_->config, name));
  parts_->settings.host_port = LoadHostPort(SettingsFilePath(), name).value_or("ANY");
  emit connectTypeChanged();
  emit featureConfigChanged();
  emit initInfoChanged();
  emit fovConfigChanged();
  emit lidarModelChanged();
  emit monitorHwVersionListChanged();
  emit currentMonitorHwVersionChanged();
  emit myMapChanged();
  emit lidarShowModel();
  // Said once, though a start loads the default model and then the one of the command line, which
  // may be the same.
  if (const std::string described = parts_->config.Describe(name);
      std::exchange(parts_->described, described) != described) {
    parts_->posted->LogLine(described, LogType::kInfo);
  }
  ReportFaults(parts_->model()->faults);
}

std::shared_ptr<const LidarModel> TevronManager::Model() const { return parts_->model(); }

void TevronManager::ReportFaults(const TableFaults& faults) {
  constexpr size_t kMaxLines = 20;
  // Posted, so that what is wrong with the first model, which is loaded before there are screens,
  // stands in the log window as well.
  for (size_t i = 0; i < faults.size() && i < kMaxLines; ++i) {
    const bool is_warning = faults[i].severity == TableFault::Severity::kWarning;
    parts_->posted->LogLine(faults[i].text, is_warning ? LogType::kWarning : LogType::kError);
  }
  if (faults.size() > kMaxLines) {
    parts_->posted->LogLine(
        std::to_string(faults.size() - kMaxLines) + " more faults in the tables are not shown.",
        LogType::kError);
  }
  if (!parts_->model()->table->InTableOrder().empty()) {
    return;
  }
  parts_->report.Error("No variables could be loaded for the model " + parts_->model()->name +
                       ". " + (faults.empty() ? "Its table is empty." : faults.front().text));
  // A message from before the screens existed is still there now: announce it once more.
  QMetaObject::invokeMethod(
      this,
      [this] {
        if (!parts_->error_message.isEmpty()) {
          emit errorMessageChanged();
        }
      },
      Qt::QueuedConnection);
}

bool TevronManager::ConnectLidar() {
  if (!parts_->session.Connect(parts_->settings)) {
    return false;
  }
  const std::string problem =
      SaveConnectionSettings(SettingsFilePath(), parts_->settings, parts_->model()->name);
  if (!problem.empty() && problem != parts_->settings_problem) {
    parts_->report.LogLine("The settings of this program could not be saved: " + problem,
                           LogType::kWarning);
  }
  parts_->settings_problem = problem;
  return true;
}

LinkSnapshot TevronManager::LinkNow() const { return parts_->session.LinkNow(); }

void TevronManager::AwaitLidar() {
  const std::string next = LinkNow().next_address;
  AwaitLidarAt(next.empty() ? parts_->session.settings().lidar_ip : next);
}

void TevronManager::AwaitLidarAt(const std::string& address) {
  ConnectionSettings settings = parts_->session.settings();
  settings.lidar_ip = parts_->settings.lidar_ip = address;
  emit initInfoChanged();
  parts_->session.AwaitAt(settings, RestartPatience{}, [](LidarSession::Return) {});
}

void TevronManager::Stop() { parts_->session.Stop(); }

bool TevronManager::GetIsConnectingLidar() { return parts_->session.connecting(); }

bool TevronManager::CheckLidarConnection() { return parts_->session.CheckLink(); }
