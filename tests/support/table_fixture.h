#pragma once

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/test_folder.h"
#include "variables/config_folder.h"
#include "variables/config_parser.h"

/// Header row of a variable table; rows of tests name their cells in this order and leave out what
/// they do not need at their end.
inline constexpr char kTableHeader[] =
    "GroupID,Index,Get,Set,SetIndex,VarName,Permission,VarType,DefaultValue,Options,Unit,"
    "Coefficient,OptionDescription,FunctionModule,VarLen,TimerUpdate,SetCoefficient,"
    "GetCmdPayload,SetCmdPayload\n";

/// The table of a model, alone in a folder of tables.
class TableFile {
 public:
  explicit TableFile(const std::string& content, const std::string& model = "Model")
      : path_(folder_.Write("varID/" + model + ".csv", content)) {}

  const std::string& path() const { return path_; }
  ConfigFolder config() const { return ConfigFolder(folder_.path()); }

 private:
  const TestFolder folder_;
  const std::string path_;
};

/// The rows under the usual header, loaded.
inline std::shared_ptr<ConfigParser> LoadRows(const std::string& rows) {
  return std::make_shared<ConfigParser>(LoadTable(TableFile(kTableHeader + rows).path()));
}

inline const VarInfo& FindVar(const ConfigParser& table, const std::string& name) {
  const VarInfo* var = table.FindByName(name);
  if (var == nullptr) {
    throw std::runtime_error("no variable " + name);
  }
  return *var;
}

/// A test of a table that is loaded from its rows.
class TableTest : public testing::Test {
 protected:
  /// Loads the rows under the usual header. `output_` is what this wrote to standard output.
  void Load(const std::string& rows) { LoadFile(kTableHeader + rows); }

  void LoadFile(const std::string& content) {
    file_ = std::make_unique<TableFile>(content);
    testing::internal::CaptureStdout();
    parser_.ExtractConfigInfo(file_->path());
    output_ = testing::internal::GetCapturedStdout();
  }

  const VarInfo& Var(const std::string& name) const { return FindVar(parser_, name); }

  std::unique_ptr<TableFile> file_;
  ConfigParser parser_;
  std::string output_;
};
