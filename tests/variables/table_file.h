#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

/// A file in a folder of its own that vanishes with the object.
class TableFile {
 public:
  explicit TableFile(const std::string& content, const std::string& name = "Model.csv") {
    std::string folder = (std::filesystem::temp_directory_path() / "tevron-table-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) {
      ADD_FAILURE() << "no temporary folder";
      return;
    }
    folder_ = folder;
    path_ = folder + "/" + name;
    std::ofstream(path_, std::ios::binary) << content;
  }
  ~TableFile() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  TableFile(const TableFile&) = delete;
  TableFile& operator=(const TableFile&) = delete;

  const std::string& path() const { return path_; }
  const std::string& folder() const { return folder_; }

 private:
  std::string folder_;
  std::string path_;
};

/// Header row of a variable table; rows of tests name their cells in this order.
constexpr char kTableHeader[] =
    "GroupID,Index,Get,Set,SetIndex,VarName,Permission,VarType,DefaultValue,Options,Unit,"
    "Coefficient,OptionDescription,FunctionModule,VarLen,TimerUpdate,SetCoefficient,"
    "GetCmdPayload,SetCmdPayload\n";
