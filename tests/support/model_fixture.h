#pragma once

#include "session/lidar_model.h"
#include "support/table_fixture.h"

/// A model made from table rows, with the test's short way to its variables.
class ModelFixture {
 public:
  explicit ModelFixture(const std::string& rows)
      : file_(kTableHeader + rows),
        model(LoadLidarModel(file_.config(), "Model")),
        table(*model->table) {}

  const VarInfo& operator[](const std::string& name) const { return FindVar(table, name); }
  std::string Text(const std::string& name) const { return table.ValueOf((*this)[name]).text; }

 private:
  TableFile file_;

 public:
  const std::shared_ptr<LidarModel> model;
  ConfigParser& table;
};
