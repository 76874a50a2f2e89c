#include "variables/csv_table.h"

#include <gtest/gtest.h>

#include "variables/table_file.h"

namespace {

CsvTable Read(const std::string& content) { return CsvTable(TableFile(content).path()); }

TEST(CsvTable, FindsCellsByHeaderNameWhateverTheOrder) {
  const CsvTable table = Read("B,A,C\n2,1,3\n");
  ASSERT_EQ(table.row_count(), 1U);
  EXPECT_EQ(table.Cell(0, table.Column("A")), "1");
  EXPECT_EQ(table.Cell(0, table.Column("B")), "2");
  EXPECT_FALSE(table.FindColumn("D"));
  try {
    table.Column("VarLen");
    FAIL() << "found a column that is not there";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Can't find a column named VarLen");
  }
}

TEST(CsvTable, DropsTheByteOrderMarkAndBothKindsOfLineEnd) {
  const CsvTable table = Read(
      "\xEF\xBB\xBF"
      "A,B\r\n1,2\r\n3,4\n\r\n\n5,6");
  ASSERT_EQ(table.row_count(), 3U);
  EXPECT_EQ(table.Cell(0, table.Column("A")), "1");
  EXPECT_EQ(table.Cell(0, table.Column("B")), "2");
  EXPECT_EQ(table.Cell(2, 1), "6");
  EXPECT_EQ(table.LineOf(2), 6U);
}

TEST(CsvTable, KeepsQuotedCommasLineBreaksQuotesAndBlanks) {
  const CsvTable table = Read("A,B\n\"a,b\",\"two\r\nlines\"\n \"\"\"x\n  pad , \n");
  EXPECT_EQ(table.Cell(0, 0), "a,b");
  EXPECT_EQ(table.Cell(0, 1), "two\r\nlines");
  // The broken row is left out, the one behind it keeps its blanks and its line number.
  ASSERT_EQ(table.faults().size(), 1U);
  EXPECT_EQ(table.faults()[0].line, 4U);
  ASSERT_EQ(table.row_count(), 2U);
  EXPECT_EQ(table.Cell(1, 0), "  pad ");
  EXPECT_EQ(table.Cell(1, 1), " ");
  EXPECT_EQ(table.LineOf(1), 5U);

  EXPECT_EQ(Read("A\n\"say \"\"hello\"\"\"\n").Cell(0, 0), "say \"hello\"");
}

TEST(CsvTable, ShortRowsGiveEmptyCellsAndLongRowsShowTheirLength) {
  const CsvTable table = Read("A,B,C\n1\n1,2,3,4,5\n");
  EXPECT_EQ(table.Cell(0, 2), "");
  EXPECT_EQ(table.CellCount(0), 1U);
  EXPECT_EQ(table.CellCount(1), 5U);
  EXPECT_EQ(table.Cell(1, 4), "5");
}

TEST(CsvTable, ReadsOnBehindAQuotationMarkThatIsNeverClosed) {
  const CsvTable table = Read("A,B\n1,2\n3,\"open\n5,6\n7,8\n");
  ASSERT_EQ(table.faults().size(), 1U);
  EXPECT_EQ(table.faults()[0].line, 3U);
  ASSERT_EQ(table.row_count(), 3U);
  EXPECT_EQ(table.Cell(1, 0), "5");
  EXPECT_EQ(table.LineOf(1), 4U);
  EXPECT_EQ(table.Cell(2, 1), "8");
}

TEST(CsvTable, GivesUpOnAFileThatIsNoTable) {
  std::string content = "A,B\n";
  for (int i = 0; i < 5000; ++i) {
    content += "x\"y\n";
  }
  EXPECT_EQ(Read(content).faults().size(), CsvTable::kMaxFaults);
  // A broken header leaves no column that could be meant.
  EXPECT_EQ(Read("A,\"B\"x\n1,2\n").column_count(), 0U);
  EXPECT_EQ(Read("").column_count(), 0U);
}

TEST(CsvTable, SaysWhichFileCannotBeRead) {
  const TableFile file("");
  for (const std::string& path : {file.folder() + "/missing.csv", file.folder()}) {
    try {
      const CsvTable table(path);
      FAIL() << "read " << path;
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(std::string(error.what()).rfind(path + ": ", 0), 0U) << error.what();
    }
  }
  const TableFile large("A\n");
  std::filesystem::resize_file(large.path(), CsvTable::kMaxFileBytes + 1);
  EXPECT_THROW(CsvTable{large.path()}, std::runtime_error);
}

}  // namespace
