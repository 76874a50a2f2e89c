#include "shown_pages.h"

#include <QVariantMap>
#include <utility>

#include "variables/page_variants.h"

namespace {

/// Whether both look the same on the screen.
bool LooksLike(const ConfigParser::Value& a, const ConfigParser::Value& b) {
  return a.edited == b.edited && a.state == b.state && a.read_at == b.read_at && a.text == b.text &&
         a.wanted == b.wanted && a.reading == b.reading && a.read_failure == b.read_failure;
}

/// What `holder` holds, to be changed in place: it is copied only where somebody shares it.
template <typename T>
T& Inside(QVariant& holder) {
  return *static_cast<T*>(holder.data());
}

}  // namespace

std::vector<std::string> ShownPages::SetModel(std::shared_ptr<const LidarModel> model) {
  model_ = std::move(model);
  std::vector<std::string> faults;
  map_ = PagesAsVariants(*model_->table, model_->pages, &faults);
  names_ = PageNames(model_->pages);
  rows_ = PageRows(model_->pages);
  pages_.clear();
  for (int page = 0; page < model_->pages.page_count(); ++page) {
    std::vector<const VarInfo*> vars = model_->pages.VariablesOf(page);
    std::vector<ConfigParser::Value> values = model_->table->ValuesOf(vars);
    pages_.push_back({std::move(vars), std::move(values)});
  }
  return faults;
}

bool ShownPages::Update() {
  bool changed = false;
  for (int page = 0; page < model_->pages.page_count(); ++page) {
    changed = UpdatePage(page) || changed;
  }
  return changed;
}

bool ShownPages::UpdatePage(int page) {
  if (page < 0 || page >= static_cast<int>(pages_.size())) {
    return false;
  }
  Shown& shown = pages_[static_cast<size_t>(page)];
  std::vector<ConfigParser::Value> values = model_->table->ValuesOf(shown.vars);
  bool changed = false;
  for (size_t i = 0; i < values.size(); ++i) {
    if (!LooksLike(values[i], shown.values[i])) {
      ShowValue(*shown.vars[i], values[i]);
      changed = true;
    }
  }
  shown.values = std::move(values);
  return changed;
}

void ShownPages::ShowValue(const VarInfo& var, const ConfigParser::Value& value) {
  const PagePosition at = model_->pages.PositionOf(var);
  QVariantList& groups = Inside<QVariantList>(map_[at.level1]);
  QVariantList& leaves = Inside<QVariantList>(groups[at.level2]);
  InsertValue(var, value, &Inside<QVariantMap>(leaves[at.level3]));
}

bool ShownPages::UpdateFov(const FovTable& fov) {
  QVariantList texts;
  for (const std::string& text : fov.Texts()) {
    texts.append(QString::fromStdString(text));
  }
  if (texts == fov_texts_) {
    return false;
  }
  fov_texts_ = std::move(texts);
  return true;
}
