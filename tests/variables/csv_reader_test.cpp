#include "variables/csv_reader.h"

#include <gtest/gtest.h>

#include "support/table_fixture.h"

namespace {

// The rows, each its cells between bars; of a broken one its line and the reason.
std::vector<std::string> Rows(const std::string& content) {
  CsvReader reader(TableFile(content).path());
  std::vector<std::string> rows;
  for (auto event = reader.Next(); event != CsvReader::Event::kEnd; event = reader.Next()) {
    std::string row = event == CsvReader::Event::kRow
                          ? ""
                          : std::to_string(reader.line()) + ": " + reader.reason();
    for (size_t column = 0; column < reader.cell_count(); ++column) {
      row.append("|").append(reader.Cell(column));
    }
    rows.push_back(row);
  }
  return rows;
}

using Texts = std::vector<std::string>;

TEST(CsvReader, ReadsWhatAnEditorOfTablesMayWrite) {
  EXPECT_EQ(Rows("A,B\r\n1,2\r\n3,4\n\r\n\n5,6"), (Texts{"|1|2", "|3|4", "|5|6"}));
  EXPECT_EQ(Rows("A,B\r1,2\r3,4"), (Texts{"|1|2", "|3|4"}));
  EXPECT_EQ(Rows("A,B,C\n1\n1,2,3,4\n"), (Texts{"|1", "|1|2|3|4"}));
  EXPECT_EQ(Rows("A,B\n\"a,b\",\"two\r\nlines\"\n  pad ,\"say \"\"hello\"\"\"\n"),
            (Texts{"|a,b|two\r\nlines", "|  pad |say \"hello\""}));
  EXPECT_EQ(CsvReader(TableFile("\xEF\xBB\xBFGet,B\n").path()).header().FindColumn("Get"), 0U);
}

TEST(CsvReader, TellsABrokenRowAndReadsOnBehindItsFirstLine) {
  const std::string quote =
      "3: a quotation mark stands where none may be; quote the whole cell and double the quotation "
      "marks inside";
  const std::string cases[][2] = {
      {"3,\"open", quote + "|3"},
      {"4, \"\"\"x", quote + "|4"},
      {"\"two\nlines\"x", quote},
      {"6," + std::string(5000, 'x'),
       "3: a cell is longer than 4 KiB; write less, or close the quotation mark that opens it|6"},
      {"7,\"" + std::string(70000, '\n'),
       "3: a cell is longer than 4 KiB; write less, or close the quotation mark that opens it|7"},
      {std::string(300, ','),
       "3: more than 256 cells; a row has no more of them than the header, and a cell with a comma "
       "stands in quotation marks" +
           std::string(256, '|')},
  };
  for (const auto& [broken, told] : cases) {
    const Texts rows = Rows("A,B\n1,2\n" + broken + "\n\"5\",6\n7,8\n");
    ASSERT_GE(rows.size(), 4U) << told;
    EXPECT_EQ(rows[1], told);
    EXPECT_EQ(rows[rows.size() - 2], "|5|6") << told;
    EXPECT_EQ(rows.back(), "|7|8") << told;
  }
  EXPECT_EQ(
      Rows("A,B\n1,\"open\n"),
      (Texts{
          "2: the quotation mark that opens a cell is never closed; write one behind the cell|1"}));
  CsvReader reader(TableFile("A,B\n1,\"two\nlines\"\n\n3,4\n").path());
  reader.Next();
  reader.Next();
  EXPECT_EQ(reader.line(), 5U);
}

TEST(CsvReader, GivesUpOnAFileThatIsNoTable) {
  std::string content = "A,B\n";
  for (int i = 0; i < 5000; ++i) {
    content += "x\"y\n";
  }
  EXPECT_EQ(Rows(content).size(), CsvReader::kMaxBrokenRows);
  // A broken header leaves no column that could be meant.
  for (const std::string& header : {std::string("A,\"B\"x"), std::string(1 << 20, ',')}) {
    CsvReader reader(TableFile(header + "\n1,2\n").path());
    EXPECT_TRUE(reader.header().names.empty());
    EXPECT_EQ(reader.Next(), CsvReader::Event::kBrokenRow);
    EXPECT_EQ(reader.Next(), CsvReader::Event::kEnd);
  }
}

}  // namespace
