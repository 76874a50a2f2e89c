#pragma once

#include <QVariantList>
#include <memory>
#include <string>
#include <vector>

#include "pages/fov_table.h"
#include "session/lidar_model.h"

/// The lists that the screens index: what they show of one model's table. A list changes only where
/// a value that it shows has changed, so that looking at one page costs one page, however large the
/// table is. GUI thread only.
class ShownPages {
 public:
  /// Shows another model. Returns what is wrong with its option lists, one sentence each.
  std::vector<std::string> SetModel(std::shared_ptr<const LidarModel> model);

  /// Show the values of all pages, or of one, as they are now; true when anything changed. A page
  /// that does not exist changes nothing.
  bool Update();
  bool UpdatePage(int page);
  /// The same for the field-of-view angles.
  bool UpdateFov(const FovTable& fov);

  /// [page][group][variable] -> map of its display fields, see VariableMap.
  const QVariantList& map() const { return map_; }
  const QVariantList& names() const { return names_; }
  /// Per page its rows: [caption, kind, level1, level2, level3].
  const QVariantList& rows() const { return rows_; }
  const QVariantList& fov_texts() const { return fov_texts_; }

 private:
  /// A page as it is shown.
  struct Shown {
    std::vector<const VarInfo*> vars;
    std::vector<ConfigParser::Value> values;
  };

  void ShowValue(const VarInfo& var, const ConfigParser::Value& value);

  std::shared_ptr<const LidarModel> model_;
  std::vector<Shown> pages_;
  QVariantList map_;
  QVariantList names_;
  QVariantList rows_;
  QVariantList fov_texts_;
};
