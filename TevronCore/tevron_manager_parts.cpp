#include "tevron_manager_parts.h"

#include <utility>

#include "variables/page_variants.h"

namespace {

Post PostTo(TevronManager& manager) {
  return [&manager](std::function<void()> task) {
    QMetaObject::invokeMethod(&manager, std::move(task), Qt::QueuedConnection);
  };
}

}  // namespace

void ScreenReport::Error(const std::string& text) {
  manager_.setErrorMsg(QString::fromStdString(text));
}

void ScreenReport::ErrorWithRemedy(const std::string& text, const std::string& remedy) {
  manager_.ShowError(QString::fromStdString(text), QString::fromStdString(remedy));
}

void ScreenReport::Success(const std::string& text) {
  manager_.setSuccessMsg(QString::fromStdString(text));
}

void ScreenReport::LogLine(const std::string& text, LogType type) {
  emit manager_.sendLogMessage(QString::fromStdString(text), LogTypeName(type));
  if (type == LogType::kByteFlow) {
    emit manager_.sendCommandHistoryChanged();
  }
}

LidarSession::Handlers TevronManager::Parts::HandlersOf(TevronManager& manager) {
  return {[&manager] { manager.ShowAll(); },
          [&manager] { manager.ShowRefreshedPage(); },
          [&manager] { manager.ShowCaughtUp(); },
          [&manager] { manager.ShowLink(); },
          [&manager] { emit manager.lumoLidarInfoChanged(); },
          [&manager] { emit manager.isGetPBLVersionChanged(); }};
}

TevronManager::Parts::Parts(TevronManager& manager, bool auto_receive,
                            const std::string& table_path)
    : config(ConfigFolder::Of(table_path)),
      report(manager),
      posted(std::make_shared<PostedReport>(PostTo(manager), report, [] { return true; })),
      byte_flow(std::make_shared<ByteFlow>(*posted)),
      console(report),
      session({PostTo(manager), report, auto_receive, byte_flow, HandlersOf(manager)}),
      settings_files({PostTo(manager), report, session, [&manager] { manager.ShowCaughtUp(); }}),
      upgrade({PostTo(manager), report, session, [&manager] { emit manager.isUpgradingChanged(); },
               UpgradeWaits{}, LidarSettings::KeepBeforeUpgrade}),
      monitor({session, PostTo(manager), report, posted,
               LidarMonitor::Handlers{[&manager] { manager.ShowMonitorPage(); },
                                      [&manager] { emit manager.isMonitorRecordingChanged(); }}}) {
  TakeModel(session.model());
  std::string fault;
  settings = LoadConnectionSettings(SettingsFilePath(), &fault);
  if (!fault.empty()) {
    posted->LogLine(fault, LogType::kWarning);
  }
}

// The monitor's threads wait for the lidar over the session's connection.
TevronManager::Parts::~Parts() { session.Close(); }

void TevronManager::Parts::TakeModel(const std::shared_ptr<LidarModel>& loaded) {
  session.SetModel(loaded);
  edits = std::make_shared<EditSession>(*loaded->table);
  for (const std::string& error : pages.SetModel(loaded)) {
    loaded->faults.push_back({0, error});
  }
  pages.UpdateFov(edits->fov());
  monitor.TakeModel();
  settings_files.TakeModel();
}

void TevronManager::Parts::TakeMonitorVersion(const std::shared_ptr<LidarModel>& loaded) {
  const int page_in_view = session.page_in_view();
  session.SetModel(loaded);
  session.SetPageInView(page_in_view);
  const std::shared_ptr<EditSession> earlier = edits;
  edits = std::make_shared<EditSession>(*loaded->table);
  edits->TakeOver(*earlier);
  pages.SetModel(loaded);
  monitor.TakeModel();
}

const VarInfo* TevronManager::Parts::FindVariable(const QString& field, const QString& text) const {
  const ConfigParser& table = *model()->table;
  if (field == QLatin1String("var_name")) {
    return table.FindByName(text.toStdString());
  }
  if (field == QLatin1String("var_id")) {
    return table.Find(text.toStdString());
  }
  for (const VarInfo* var : table.InTableOrder()) {
    const QVariantMap fields = VariableMap(*var, table.ValueOf(*var));
    if (fields.contains(field) && fields.value(field).toString() == text) {
      return var;
    }
  }
  return nullptr;
}
