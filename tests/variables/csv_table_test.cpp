#include "variables/csv_table.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/table_fixture.h"

namespace {

using Rows = std::vector<std::vector<std::string>>;

CsvTable Read(const std::string& content) { return CsvTable(TableFile(content).path()); }

Rows RowsOf(const std::string& content) {
  const CsvTable table = Read(content);
  Rows rows(table.row_count());
  for (size_t row = 0; row < rows.size(); ++row) {
    for (size_t column = 0; column < table.CellCount(row); ++column) {
      rows[row].emplace_back(table.Cell(row, column));
    }
  }
  return rows;
}

TEST(CsvTable, ReadsWhatAnEditorOfTablesMayWrite) {
  EXPECT_EQ(RowsOf("A,B\r\n1,2\r\n3,4\n\r\n\n5,6"), (Rows{{"1", "2"}, {"3", "4"}, {"5", "6"}}));
  EXPECT_EQ(RowsOf("A,B\r1,2\r3,4"), (Rows{{"1", "2"}, {"3", "4"}}));
  EXPECT_EQ(RowsOf("A,B,C\n1\n1,2,3,4\n"), (Rows{{"1"}, {"1", "2", "3", "4"}}));
  EXPECT_EQ(RowsOf("A,B\n\"a,b\",\"two\r\nlines\"\n  pad ,\"say \"\"hello\"\"\"\n"),
            (Rows{{"a,b", "two\r\nlines"}, {"  pad ", "say \"hello\""}}));
  EXPECT_EQ(Read("A,B,C\n1\n").Cell(0, 2), "");
  EXPECT_EQ(Read("\xEF\xBB\xBFGet,B\n").FindColumn("Get"), 0U);
}

TEST(CsvTable, LeavesOutABrokenRowAndReadsOnBehindItsFirstLine) {
  for (const char* broken : {"3,\"open", " \"\"\"x", "\"two\nlines\"x"}) {
    const CsvTable table = Read("A,B\n1,2\n" + std::string(broken) + "\n\"5\",6\n7,8\n");
    ASSERT_GE(table.faults().size(), 1U) << broken;
    EXPECT_EQ(table.faults()[0].line, 3U) << broken;
    const size_t last = table.row_count() - 1;
    EXPECT_EQ(table.Cell(last - 1, 0), "5") << broken;
    EXPECT_EQ(table.Cell(last, 1), "8") << broken;
  }
  EXPECT_EQ(Read("A,B\n1,\"two\nlines\"\n\n3,4\n").LineOf(1), 5U);
}

TEST(CsvTable, GivesUpOnAFileThatIsNoTable) {
  std::string content = "A,B\n";
  for (int i = 0; i < 5000; ++i) {
    content += "x\"y\n";
  }
  EXPECT_EQ(Read(content).faults().size(), CsvTable::kMaxFaults);
  // A broken header leaves no column that could be meant.
  EXPECT_EQ(Read("A,\"B\"x\n1,2\n").column_count(), 0U);
}

TEST(CsvTable, SaysWhichFileCannotBeRead) {
  const TableFile large("A\n");
  std::filesystem::resize_file(large.path(), CsvTable::kMaxFileBytes + 1);
  for (const std::string& path : {large.path(), large.folder() + "/missing.csv", large.folder()}) {
    try {
      const CsvTable table(path);
      ADD_FAILURE() << "read " << path;
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(std::string(error.what()).rfind(path + ": ", 0), 0U) << error.what();
    }
  }
}

}  // namespace
