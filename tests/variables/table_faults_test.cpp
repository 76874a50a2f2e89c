#include "support/table_fixture.h"

namespace {

class TableFaults : public TableTest {
 protected:
  // The one fault of the table behind the file's name.
  std::string OnlyFault() {
    const std::vector<TableFault>& faults = parser_.Faults();
    return faults.size() == 1 ? faults[0].text.substr(file_->path().size()) : "no or more faults";
  }
};

TEST_F(TableFaults, RowsThatShareOrLackANameAreTold) {
  const std::string cases[][3] = {
      {"1,,0x01,,,Lost,0,uint8\n",
       "(): WARNING: something with config file - Some var lacks \"GroupID\" or \"Index\"\n"
       "---Detailed Infomation: file path = PATH, var name = Lost\n",
       ", line 3: GroupID or Index is empty; the row is left out"},
      {"1,2,0x07,0x08,1,\"B\"x,0,uint8\n", "(): error with csv_reader_, loc = PATH:3\n",
       ", line 3: a quotation mark stands where none may be; quote the whole cell and double the "
       "quotation marks inside"},
      {"1,1,0x01,0x02,3,Later,1,uint16\n",
       "(): ERROR with config file. There are vars with the same var_id. Some of them will be "
       "overwritten\nConfigParser::ExtractConfigInfo(): --- Details: file path = PATH, var_id "
       "=1-1, "
       "var_name = Later\n",
       ", line 3: GroupID and Index 1-1 are those of line 2, which this row replaces"},
      {"1,2,0x03,0x04,1,First,1,uint8\n", "First_0x04 is used in other cmd\n",
       ", line 3: VarName \"First\" is taken by an earlier row; this one is shown as "
       "\"First_0x04\""},
  };
  for (const auto& [row, printed, fault] : cases) {
    Load("1,1,0x01,0x02,1,First,1,uint32\n" + row + "1,9,0x01,0x02,4,Last,1,uint8\n");
    if (const size_t path = output_.find(file_->path()); path != std::string::npos) {
      output_.replace(path, file_->path().size(), "PATH");
    }
    EXPECT_EQ(output_, "ConfigParser::ExtractConfigInfo" + printed);
    EXPECT_EQ(OnlyFault(), fault);
    const bool is_replaced = parser_.FindByName("Later") != nullptr;
    EXPECT_EQ(parser_.Find("1-1"), &Var(is_replaced ? "Later" : "First"));
    EXPECT_EQ(parser_.FindByName("First") == nullptr, is_replaced);
    EXPECT_EQ(Var("Last").set_start_pos, is_replaced ? 2 : 4) << "a replaced row takes no room";
  }
}

TEST_F(TableFaults, NamesTheRowAndTheReason) {
  const std::string cases[][2] = {
      {"1,one,0x01,,,A,0,uint8", "Index \"one\" is no whole number; 0 is used"},
      {"one,1,0x01,,,A,0,uint8", "GroupID \"one\" is no whole number"},
      {"1,1,0x01,,,A,0,uint24", "VarType \"uint24\" is unknown"},
      {"1,1,0x01,,,,0,uint8", "VarName is empty"},
      {"1,1,0x01,,,A,0,uint8,,,,\"0,5\"", "\"0,5\" is no number other than 0; 1 is used"},
      {"1,1,0x01,,,A,0,uint8,,,,0.5,,,,,0", "\"0\" is no number other than 0; 0.5 is used"},
      {"1,1,0x01,,,A,0,uint16,,,,,,,4", "VarLen \"4\" does not fit uint16, which takes 2"},
      {"1,1,0x01,,,A,0,uint16,,,,,,,two", "is no whole number from 0 to 10240; 2 is used"},
      {"1,1,0x01,,,A,0,raw,,,,,,,4000000000", "from 0 to 10240; the row is left out"},
      {"1,1,red,,,A,0,uint8", "Get \"red\" is no command code: invalid stoi argument"},
      {"1,1,0x2G,,,A,0,uint8", "Get \"0x2G\" is no command code from 0 to 255"},
      {"1,1,,0x02,1,A,1,uint8", "a variable with Set and without Get has to be raw"},
      {"1,1,0x01,,,A,0,uint8,3,1|2", "DefaultValue \"3\" is none of the Options"},
      {"1,1,0x01,,,A,0,uint8,,1|two", "the variable becomes a text field"},
      {"1,1,0x01,,,A,0,uint8,,1..5@9-9", "Options: 9-9 is no switch; the value is always checked"},
      {"1,1,0x01,,,A,0,uint8,,,,,,,,,,01,,more", "the row has more cells than the header"},
      {"1,1,0x01,0x02,1,A,1,uint8,,,,,,,,,,,0x0g", "\"0x0g\" is no row of hexadecimal pairs"},
      {"8,1,0x09,0x02,2,A,1,uint8\n1,2,0x01,0x02,2,B,1,uint8",
       "SetIndex 2 of 0x02 does not ascend"},
      {"1,1,0x01,0x09,1,A,1,uint8", "the code 0x09 stands both in Get and in Set"},
      {"1,1,0x01,,,\"A\"x,0,uint8", "a quotation mark stands where none may be"},
  };
  for (const auto& [rows, fault] : cases) {
    Load("9,9,0x09,,,Z,0,uint8\n" + rows + "\n");
    EXPECT_NE(OnlyFault().find(fault), std::string::npos) << OnlyFault() << " instead of " << fault;
    EXPECT_EQ(OnlyFault().rfind(", line ", 0), 0U);
    EXPECT_NE(parser_.Find("9-9"), nullptr) << "the rest of the table is missing: " << rows;
  }
}

// The row between is left out. Whoever lies behind it keeps its place, or is out of use.
TEST_F(TableFaults, ARowThatIsLeftOutShiftsNobody) {
  const std::string cases[][2] = {
      {"1,,0x01,0x02,2,B,1,uint16", "1 3 line 3 of the table is broken"},
      {"1,2,1,2,2,B,1,uint16,,,,,,,2,,,,\"\"x", "1 3 line 3 of the table is broken"},
      {"1,2,0x01,0x02,2,B,1,raw,,,,,,,long", "out of use"},
      {"1,2,0x01,0x02,2,\"B\"x,1,uint16", "out of use"},
      {"\"1\"x,2,0x01,0x02,2,B,1,uint16", "out of use"},
  };
  for (const auto& [row, outcome] : cases) {
    Load("1,1,0x01,0x02,1,A,1,uint8\n" + row +
         "\n1,3,0x01,0x02,3,C,1,uint8\n1,4,0x03,0x04,1,D,1,uint8\n");
    EXPECT_EQ(parser_.FindByName("B"), nullptr);
    const VarInfo& last = Var("C");
    const bool in_use = last.read != nullptr && last.write != nullptr;
    EXPECT_EQ(in_use ? std::to_string(Var("A").offset) + ' ' + std::to_string(last.set_start_pos) +
                           ' ' + last.write->obstacle
                     : "out of use",
              outcome)
        << row;
    EXPECT_FALSE(CanBeChanged(last)) << row;
    EXPECT_EQ(in_use, last.get_start_pos == 3) << row;
    EXPECT_EQ(in_use, !Var("A").get_cmd.empty() && !parser_.WrittenBy("0x02").empty()) << row;
    EXPECT_TRUE(CanBeChanged(Var("D"))) << row;
  }
}

TEST_F(TableFaults, RowsBeyondTheBoundAreLeftOut) {
  std::string rows;
  for (size_t i = 0; i <= kMaxTableRows; ++i) {
    const std::string number = std::to_string(i);
    rows.append("1,").append(number).append(",0x01,,,Variable ").append(number);
    rows += ",0,uint16,,,mm,0.5,,Page,2,0,\n";
  }
  Load(rows);
  EXPECT_EQ(OnlyFault(), ", line 200002: more than 200000 rows; the rest is left out");
  EXPECT_EQ(parser_.InTableOrder().size(), kMaxTableRows);
  EXPECT_EQ(Var("Variable 199999").get_start_pos, 399998);
}

TEST_F(TableFaults, WhatTheReaderRefusesIsNamedWithItsPlace) {
  const std::string error = "ConfigParser::ExtractConfigInfo(): error with csv_reader_, loc = ";
  LoadFile("\"GroupID\"x,Index\n1,1\n");
  EXPECT_EQ(output_, error + file_->path() + ":1\n");
  EXPECT_EQ(OnlyFault().rfind(", line 1: a quotation mark ", 0), 0U);

  const std::string missing = file_->folder() + "/none.csv";
  testing::internal::CaptureStdout();
  parser_.ExtractConfigInfo(missing);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), error + missing + "\n");
  ASSERT_EQ(parser_.Faults().size(), 1U);
  EXPECT_EQ(parser_.Faults()[0].text.rfind(missing + ": ", 0), 0U);
}

}  // namespace
