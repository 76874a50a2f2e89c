#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "variables/config_parser.h"
#include "variables/table_file.h"

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

  const VarInfo& Var(const std::string& name) const {
    const VarInfo* var = parser_.FindByName(name);
    if (var == nullptr) {
      throw std::runtime_error("no variable " + name);
    }
    return *var;
  }

  std::unique_ptr<TableFile> file_;
  ConfigParser parser_;
  std::string output_;
};
