// Pages and variables: what the screens show, read, edit and write.

#include <QDebug>
#include <memory>
#include <string>

#include "pages/page_reader.h"
#include "pages/page_writer.h"
#include "pages/range_check.h"
#include "tevron_manager.h"
#include "tevron_manager_parts.h"

void TevronManager::UpdateUI() {
  parts_->pages.Update();
  emit myMapChanged();
}

void TevronManager::ShowFov() {
  if (parts_->pages.UpdateFov(parts_->edits->fov())) {
    emit fovConfigChanged();
  }
}

void TevronManager::ShowAll() {
  ShowFov();
  UpdateUI();
}

void TevronManager::ShowCaughtUp() {
  parts_->monitor.TakeReading();
  ShowAll();
}

void TevronManager::ShowPage(int page) {
  ShowFov();
  parts_->pages.UpdatePage(page);
  emit myMapChanged();
}

void TevronManager::setModuleIndexUse(int module) { parts_->session.SetPageInView(module); }

void TevronManager::ShowRefreshedPage() {
  ShowFov();
  parts_->pages.UpdatePage(parts_->session.page_in_view());
  parts_->monitor.TakeReading();
  emit myTimerMapChanged();
}

void TevronManager::GetLidarModuleInfo(int module) {
  const std::shared_ptr<LidarModel> model = parts_->model();
  if (!parts_->session.MayReadPages() || module < 0 || module >= model->pages.page_count()) {
    return;
  }
  const std::shared_ptr<EditSession> edits = parts_->edits;
  const std::shared_ptr<kavel::lidar::CommandSender> sender = parts_->session.sender();
  const std::vector<const VarInfo*> vars = model->pages.VariablesOf(module);
  edits->DropEdits(vars);
  PageReader reader(*sender, *model->table, parts_->session.state(),
                    parts_->session.read_failures(), parts_->report);
  const Unread unread =
      reader.Read(vars, "TevronManager::GetLidarModuleInfo", parts_->session.TakeReadingTime());
  parts_->session.ReadSoon(model, unread.left);
  if (unread.left.empty()) {
    parts_->monitor.TakeReading();
  }
  ShowPage(module);
}

bool TevronManager::UpdateSingleVarInfo(const QString& qs_var_info, const QString& search_type) {
  const std::shared_ptr<LidarModel> model = parts_->model();
  const std::shared_ptr<kavel::lidar::CommandSender> sender = parts_->session.sender();
  const VarInfo* var = parts_->FindVariable(search_type, qs_var_info);
  if (var == nullptr || sender == nullptr || model->connect_type != kNetworkLink) {
    return false;
  }
  PageReader reader(*sender, *model->table, parts_->session.state(),
                    parts_->session.read_failures(), parts_->report);
  if (!reader.GetInfoFromLidar(*var)) {
    return false;
  }
  ShowPage(model->pages.PositionOf(*var).level1);
  return true;
}

void TevronManager::SetText(int type, int level1, int level2, int level3, const QString& text) {
  const VarInfo* var = parts_->model()->pages.At(level1, level2, level3);
  if (var == nullptr) {
    return;
  }
  parts_->edits->SetText(type, *var, text.toStdString(), parts_->report);
  // Without a signal: whoever edits shows the text already, and reads the map again where it wants.
  parts_->pages.UpdatePage(level1);
}

void TevronManager::SetMultiFovConfig(int index, const QString& fov) {
  if (parts_->edits->SetFov(index, fov.toStdString(), parts_->report)) {
    ShowFov();
  }
}

void TevronManager::ClearSetMap() {
  parts_->edits->Clear();
  ShowFov();
  if (parts_->pages.Update()) {
    emit myMapChanged();
  }
}

int TevronManager::getSetMapSize() { return static_cast<int>(parts_->edits->pending().size()); }

bool TevronManager::CheckModuleVarsWithinRange(int module) {
  const std::shared_ptr<LidarModel> model = parts_->model();
  RangeCheck check(*model->table, parts_->report);
  return check.CheckPage(model->pages.VariablesOf(module), [this](const std::string& var_name) {
    emit someVarOutOfRange(QString::fromStdString(var_name));
  });
}

bool TevronManager::CheckVarIsWithinRange(const QString& qs_var_info, const QString& search_type) {
  const std::shared_ptr<LidarModel> model = parts_->model();
  const VarInfo* var = parts_->FindVariable(search_type, qs_var_info);
  if (var == nullptr) {
    qDebug().noquote() << " Can't find this var info for range check. var_info =" << qs_var_info;
    return true;
  }
  return RangeCheck(*model->table, parts_->report).CheckVar(*var);
}

void TevronManager::Run(int module) {
  const std::shared_ptr<LidarModel> model = parts_->model();
  const std::shared_ptr<EditSession> edits = parts_->edits;
  const std::shared_ptr<kavel::lidar::CommandSender> sender = parts_->session.sender();
  PageWriter writer({sender.get(), *model->table, model->pages, parts_->session.state(),
                     edits->pending(), edits->fov(), parts_->session.read_failures(),
                     parts_->report});
  const PageWriter::Outcome outcome = writer.Run(module);
  if (outcome != PageWriter::Outcome::kNothing) {
    parts_->session.NoteWrite(outcome != PageWriter::Outcome::kNoAnswer);
  }
  if (!writer.next_address().empty()) {
    parts_->session.NoteNextAddress(writer.next_address());
  }
  if (outcome == PageWriter::Outcome::kWritten) {
    UpdateUI();
  } else {
    // Without a signal: whoever saved looks at what was taken before a command failed.
    parts_->pages.UpdatePage(module);
  }
  ShowFov();
}

bool TevronManager::CheckVarExistsInConfigFileByName(const QString& qs_var_info) {
  return parts_->model()->table->FindByName(qs_var_info.toStdString()) != nullptr;
}

bool TevronManager::isTimerUpdate(int i, int j, int k) {
  const VarInfo* var = parts_->model()->pages.At(i, j, k);
  return var != nullptr && var->timer_update;
}
