#pragma once

#include <QTemporaryDir>
#include <fstream>
#include <string>

/// A file in a folder of its own that vanishes with the object.
class TableFile {
 public:
  explicit TableFile(const std::string& content, const std::string& name = "Model.csv")
      : path_(folder() + '/' + name) {
    std::ofstream(path_, std::ios::binary) << content;
  }

  const std::string& path() const { return path_; }
  std::string folder() const { return folder_.path().toStdString(); }

 private:
  QTemporaryDir folder_;
  std::string path_;
};

/// Header row of a variable table; rows of tests name their cells in this order.
constexpr char kTableHeader[] =
    "GroupID,Index,Get,Set,SetIndex,VarName,Permission,VarType,DefaultValue,Options,Unit,"
    "Coefficient,OptionDescription,FunctionModule,VarLen,TimerUpdate,SetCoefficient,"
    "GetCmdPayload,SetCmdPayload\n";
