#include "tevron_manager_parts.h"

#include <QFileInfo>
#include <utility>

#include "variables/page_variants.h"

void ScreenReport::Error(const std::string& text) {
  manager_.setErrorMsg(QString::fromStdString(text));
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

TevronManager::Parts::Parts(TevronManager& manager, bool auto_receive_flag,
                            const std::string& table_path)
    : auto_receive(auto_receive_flag),
      table_folder(QFileInfo(QString::fromStdString(table_path)).path().toStdString()),
      report(manager),
      posted(std::make_shared<PostedReport>(manager, report, [] { return true; })),
      byte_flow(std::make_shared<ByteFlowSink>(*posted)),
      console(report),
      settings(LoadConnectionSettings(SettingsFilePath())) {
  TakeModel(std::make_shared<LidarModel>());
}

TevronManager::Parts::~Parts() { EndConnection(); }

std::shared_ptr<kavel::lidar::CommandSender> TevronManager::Parts::sender() const {
  return connection == nullptr ? nullptr : connection->sender();
}

const VarInfo* TevronManager::Parts::FindVariable(const QString& field, const QString& text) const {
  const ConfigParser& table = *model->table;
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

bool TevronManager::Parts::MayReadPage(int module) const {
  return model->connect_type == kNetworkLink && connection != nullptr && sender()->IsOpen() &&
         state.MayRead() && module >= 0 && module < model->pages.page_count();
}

void TevronManager::Parts::ReadFactsAgain() {
  if (facts_reading != nullptr) {
    facts_reading->Request();
  }
}

void TevronManager::Parts::ReadFactsAfterRestart() {
  if (facts_reading != nullptr) {
    facts_reading->RequestAfterRestart();
  }
}

QString TevronManager::Parts::IdentityText(const char* name, const std::string& asked) const {
  if (model->connect_type != kNetworkLink) {
    return QString::fromStdString(asked);
  }
  const VarInfo* var = model->table->FindByName(name);
  if (var == nullptr || !state.connected) {
    return kUnread;
  }
  const ConfigParser::Value value = model->table->ValueOf(*var);
  return value.has_bytes ? QString::fromStdString(value.text) : QString(kUnread);
}

void TevronManager::Parts::TakeModel(std::shared_ptr<LidarModel> loaded) {
  model = std::move(loaded);
  edits = std::make_shared<EditSession>(*model->table);
  page_in_use = 0;
  page_names = PageNames(model->pages);
  page_rows = PageRows(model->pages);
  my_map = PagesAsVariants(*model->table, model->pages, &model->faults);
  RebuildFov();
  if (refresh != nullptr) {
    refresh->SetView(ViewInUse());
  }
}

bool TevronManager::Parts::RebuildMap() {
  QVariantList map = PagesAsVariants(*model->table, model->pages, nullptr);
  const bool changed = map != my_map;
  my_map = std::move(map);
  return changed;
}

void TevronManager::Parts::ShowValueAt(const VarInfo& var, int level1, int level2, int level3) {
  QVariantList groups = my_map[level1].toList();
  QVariantList leaves = groups[level2].toList();
  QVariantMap leaf = leaves[level3].toMap();
  const QVariantMap fields = VariableMap(var, model->table->ValueOf(var));
  for (auto field = fields.begin(); field != fields.end(); ++field) {
    leaf.insert(field.key(), field.value());
  }
  leaves[level3] = leaf;
  groups[level2] = leaves;
  my_map[level1] = groups;
}

bool TevronManager::Parts::RebuildFov() {
  QVariantList texts;
  for (const std::string& text : edits->fov().Texts()) {
    texts.append(QString::fromStdString(text));
  }
  const bool changed = texts != fov_texts;
  fov_texts = std::move(texts);
  return changed;
}

void TevronManager::Parts::EndConnection() {
  ++attempt_number;
  state.connected = false;
  connecting = false;
  attempt.reset();
  // Closing first wakes the refresh out of its exchange.
  if (connection != nullptr) {
    connection->Close();
  }
  refresh.reset();
  facts_reading.reset();
  connection.reset();
  facts = {};
}
