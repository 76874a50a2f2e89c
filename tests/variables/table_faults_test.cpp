#include "support/table_fixture.h"
#include "variables/fault_list.h"

namespace {

class TableFaults : public TableTest {
 protected:
  // What is said of the line, behind the file's name and the line; a warning has a "?" before it.
  std::string Told(size_t line) const {
    std::string told;
    for (const TableFault& fault : parser_.Faults()) {
      if (fault.line == line) {
        const std::string place = file_->path() + ", line " + std::to_string(line) + ": ";
        EXPECT_EQ(fault.text.rfind(place, 0), 0U) << fault.text;
        const bool is_warning = fault.severity == TableFault::Severity::kWarning;
        told += (told.empty() ? "" : " + ") + std::string(is_warning ? "?" : "") +
                fault.text.substr(place.size());
      }
    }
    return told;
  }

  // Whether the variable is read, written, and can be changed: "rwc".
  std::string StateOf(const std::string& name) const {
    const VarInfo* var = parser_.FindByName(name);
    if (var == nullptr) {
      return "none";
    }
    EXPECT_EQ(var->read == nullptr, var->get_cmd.empty());
    EXPECT_EQ(var->write == nullptr, var->set_cmd.empty());
    const bool is_written = var->write != nullptr && var->write->obstacle.empty();
    return std::string(var->read != nullptr ? "r" : "-") + (is_written ? "w" : "-") +
           (CanBeChanged(*var) ? "c" : "-");
  }
};

TEST_F(TableFaults, RowsThatShareOrLackANameAreTold) {
  const std::string cases[][3] = {
      {"1,,0x01,,,Lost,0,uint8\n",
       "(): WARNING: something with config file - Some var lacks \"GroupID\" or \"Index\"\n"
       "---Detailed Infomation: file path = PATH, var name = Lost\n",
       "GroupID or Index is empty; write both. The row is left out"},
      {"1,2,0x07,0x08,1,\"B\"x,0,uint8\n", "(): error with csv_reader_, loc = PATH:3\n",
       "a quotation mark stands where none may be; quote the whole cell and double the quotation "
       "marks inside"},
      {"1,1,0x01,0x02,3,Later,1,uint16\n",
       "(): ERROR with config file. There are vars with the same var_id. Some of them will be "
       "overwritten\nConfigParser::ExtractConfigInfo(): --- Details: file path = PATH, var_id "
       "=1-1, "
       "var_name = Later\n",
       "GroupID and Index 1-1 are those of line 2; write another Index. This row replaces that one "
       "until then"},
      {"1,2,0x03,0x04,1,First,1,uint8\n", "First_0x04 is used in other cmd\n",
       "VarName \"First\" is that of line 2; write another. It is shown as \"First_0x04\" until "
       "then"},
  };
  for (const auto& [row, printed, fault] : cases) {
    Load("1,1,0x01,0x02,1,First,1,u32\n" + row + "1,9,0x01,0x02,4,Last,1,uint8\n");
    if (const size_t path = output_.find(file_->path()); path != std::string::npos) {
      output_.replace(path, file_->path().size(), "PATH");
    }
    EXPECT_EQ(output_, "ConfigParser::ExtractConfigInfo" + printed);
    EXPECT_EQ(Told(3), fault);
    const bool is_replaced = parser_.FindByName("Later") != nullptr;
    EXPECT_EQ(StateOf("Last"), is_replaced ? "r--" : "rwc");
    EXPECT_EQ(parser_.Find("1-1"), &Var(is_replaced ? "Later" : "First"));
    EXPECT_EQ(parser_.FindByName("First") == nullptr, is_replaced);
    EXPECT_EQ(Var("Last").set_start_pos, is_replaced ? 2 : 4) << "a replaced row takes no room";
  }
}

// What is said of the row, what is left of its variable, and of the one behind it in both payloads.
TEST_F(TableFaults, ARowIsToldAndNothingIsSentThatMayBeWrong) {
  const std::string cases[][4] = {
      // Ids and names.
      {"1,one,0x01,0x02,2,A,1,uint8", "Index \"one\" is no whole number; write digits", "rwc",
       "rwc"},
      {"01,2,0x01,0x02,2,A,1,uint8", "without blanks and leading zeros", "rwc", "rwc"},
      {"1,2,0x01,0x02,2,,1,uint8", "VarName is empty; write", "none", "rwc"},
      {"1,2,0x01,0x02,2, A,1,uint8", "?VarName \" A\" has blanks around it", "none", "rwc"},
      {"1,2,0x05,,,HWVER,0,raw,,,,,,,12", "VarLen of HWVER is 12; write 16", "none", "rwc"},
      {",,,,", "?the row has only empty cells; remove it", "none", "rwc"},
      // What the bytes of the row mean.
      {"1,2,0x01,0x02,2,A,1,uint24,,,,,,,3", "VarType \"uint24\" is unknown; write", "rw-", "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint24", "VarType \"uint24\" is unknown; write", "---", "---"},
      {"1,2,0x01,0x02,2,A,1,uint8,,,,\"0,5\"", "Coefficient \"0,5\" is no number", "rw-", "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint8,,1|2,,0.5,,,,,0", "SetCoefficient \"0\" is no", "rw-", "rwc"},
      {"1,2,0x01,0x02,2,A,1,int8,,,,0.5,,,,,-0.5", "?Coefficient and SetCoefficient", "rwc", "rwc"},
      {"1,2,0x01,0x02,2,A,0,DT,,,,,,,9", "VarLen \"9\" does not fit DT; write 1 to 8", "rw-",
       "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint16,,,,,,,4", "VarLen \"4\" does not fit uint16; write 2", "r--",
       "r--"},
      {"1,2,0x01,0x02,2,A,1,uint16,,,,,,,two", "from 0 to 10240; write 2 or nothing", "none",
       "---"},
      {"1,2,0x01,0x02,2,A,0,raw,,,,,,,4000000000", "write the length in bytes", "none", "---"},
      // Codes.
      {"1,2,red,0x02,2,A,1,uint8", "Get \"red\" is no command code; write 0x00 to 0xFF", "---",
       "---"},
      {"1,2,0x2G,,,A,0,uint8", "Get \"0x2G\" is no command code", "---", "---"},
      {"1,2,0x01,0x100,2,A,1,uint8", "Set \"0x100\" has an odd number of digits; write", "r--",
       "r--"},
      {"1,2,0x01,12abc,2,A,1,uint8", "Set \"12abc\" has an odd number of digits", "r--", "r--"},
      {"1,2,0x01,256,2,A,1,uint8", "Set \"256\" is no command code", "r--", "r--"},
      {"1,2,0x01,-1,2,A,1,uint8", "Set \"-1\" is no command code", "r--", "r--"},
      {"1,2,0x01,2 x,2,A,1,uint8", "Set \"2 x\" is no command code", "r--", "r--"},
      {"1,2,0x01,0x80000000,2,A,1,uint8", "write at most 0x7FFFFFFF", "r--", "r--"},
      {"1,2,0x01,A50102,2,A,1,uint8", "no command code; write \"0xA50102\"", "r--", "r--"},
      {"1,2,5A0102,,,A,0,uint8", "?Get \"5A0102\" is sent as hexadecimal digits; write", "r--",
       "rwc"},
      {"1,2,0x01,0x01,2,A,1,uint8", "Set 0x01 is the Get of line 2 as well; write another", "---",
       "---"},
      {"1,2,0x02,0x02,2,A,1,uint8", "Get 0x02 is the Set of line 2 as well", "---", "---"},
      // What is written.
      {"1,2,0x01,0x02,1,A,1,uint8", "SetIndex 1 of 0x02 does not ascend; write", "r--", "r--"},
      {"1,2,0x01,0x02,two,A,1,uint8", "SetIndex \"two\" is no whole number; write", "r--", "r--"},
      {"1,2,,0x02,2,A,1,uint8", "a variable with Set and without Get has to be raw; write", "-wc",
       "rwc"},
      {"1,2,0x01,0x5A01,2,A,1,uint8,,,,,,,,,,,0x0g", "\"0x0g\" is no row of hexadecimal pairs",
       "r--", "rwc"},
      {"1,2,0x01,0x5A01,2,A,1,uint8,,,,,,,,,,,123", "\"123\" is no row of hexadecimal pairs", "r--",
       "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint8,,,,,,,,,,,01", "is not sent with the short command 0x02", "r--",
       "r--"},
      {"1,2,0x01,,,A,0,uint8,,,,,,,,,,,01", "?SetCmdPayload is not sent without Set", "r--", "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint8,,,,,,,,,,0x0g", "?GetCmdPayload \"0x0g\" is no row of", "r--",
       "r--"},
      {"1,2,,,,A,0,uint8,,,,,,,,,,01", "?GetCmdPayload is not sent without Get", "---", "rwc"},
      // Controls.
      {"1,2,0x01,,,A,1,uint8", "?Permission lets the user change what no Set writes", "r--", "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint32", "a user save is 0; write u32", "rwc", "rwc"},
      {"1,2,0x01,0x02,2,A,1,string", "?Permission lets the user change a string", "rw-", "rwc"},
      {"1,2,0x01,0x02,2,A,yes,uint8", "Permission \"yes\" is no whole number; write 0", "rw-",
       "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint8,,,,,,,,x", "TimerUpdate \"x\" is no whole number; write 1", "rwc",
       "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint8,3,1|2", "DefaultValue \"3\" is none of the Options; write", "rwc",
       "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint8,3,4..9", "?DefaultValue \"3\" is outside the range", "rwc",
       "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint8,,1|two", "It is a text field until then", "rwc", "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint8,1,switch,,,Off", "OptionDescription has 1 label for a switch",
       "rwc", "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint8,1,,,,Off|On", "?OptionDescription labels nothing but", "rwc",
       "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint8,1,1|2,,,One|", "?OptionDescription has an empty label", "rwc",
       "rwc"},
      {"1,2,0x01,0x02,2,A,1,uint8,,1..5@9-9", "Options: 9-9 is no switch; write", "rwc", "rwc"},
      // Cells in other columns than they should be.
      {"1,2,0x01,0x02,2,A, b,1,uint8", "the cells up to VarType have 1 comma too many; a cell",
       "none", "---"},
      {"1,2,0x01,2,A,1,uint8", "the cells up to VarType lack a comma", "none", "---"},
      {"1,2,0x01,0x02,2,A,1,uint16,0,5,,m,0.5,,Scan,2,0,,,", "VarLen has the text \"Scan\"", "none",
       "---"},
      {"1,2,0x01,0x02,2,A,1,uint8,,,,,,,,,,,,,more", "the row has 21 cells where the header has 19",
       "none", "---"},
      {"1,2,0x01,0x02,2,A,1,uint8,,,,,,,,,,,,,,,", "", "rwc", "rwc"},
      {"1,2,0x01,0x02,2,A,1,\"uint8\"x", "a quotation mark stands where none may be", "none",
       "---"},
      {"1,2,0x01,0x02,2,Z\xFCrich,1,uint8", "the text is not UTF-8", "none", "rwc"},
  };
  for (const auto& [row, told, own, others] : cases) {
    SCOPED_TRACE(row);
    Load("1,1,0x01,0x02,1,Before,1,uint8\n" + row +
         "\n1,3,0x01,0x02,3,Behind,1,uint8\n2,1,0x03,0x04,1,Far,1,uint8\n");
    EXPECT_NE((' ' + Told(3)).find(told.empty() ? " " : told), std::string::npos) << Told(3);
    EXPECT_EQ(told.empty(), Told(3).empty());
    const std::string all = Told(3);
    const std::string cause = all.substr(0, all.find(" + \"A\" cannot be "));
    EXPECT_EQ(cause.find(" + "), std::string::npos) << "once is enough: " << all;
    EXPECT_EQ(StateOf("A"), own);
    EXPECT_EQ(StateOf("Before"), others);
    EXPECT_EQ(StateOf("Behind"), others);
    EXPECT_EQ(StateOf("Far"), "rwc");
  }
  EXPECT_NE(parser_.FindByName("Z\uFFFDrich"), nullptr);
}

TEST_F(TableFaults, ALongCommandHasOneFixedPayload) {
  const std::string cases[][3] = {{"0x01", "0x01", ""},
                                  {"01", "", ""},
                                  {"01", "02", "another than that of line 2"},
                                  {"", "02", "another than that of line 2"}};
  for (const auto& [first, second, told] : cases) {
    std::string rows = "1,1,0x01,0x5A01,1,A,1,uint8,,,,,,,,,,,";
    rows.append(first).append("\n1,2,0x01,0x5A01,2,B,1,uint8,,,,,,,,,,,").append(second);
    Load(rows.append("\n"));
    EXPECT_NE((' ' + Told(3)).find(told), std::string::npos) << Told(3);
    EXPECT_EQ(StateOf("A"), told.empty() ? "rwc" : "r--") << told;
    EXPECT_EQ(Var("A").write->fixed_payload.empty(), first.empty());
  }
  // A download carries it however short its command is, which is then a row of digits itself.
  Load(
      "0,log,Trace\n1,1,0x41,,,Trace,0,raw,,,,,,,0,,,,0x01\n"
      "1,2,,100,1,Config File,0,raw,,,,,,,0,,,,0x01\n1,3,0x44,,,Operation "
      "Log,0,raw,,,,,,,0,,,,x\n");
  EXPECT_EQ(StateOf("Trace"), "r--");
  EXPECT_EQ(StateOf("Config File") + StateOf("Operation Log"), "------");
}

TEST_F(TableFaults, TheRowThatIsLikelyWrongIsNamed) {
  Load(
      "1,1,0x01,0x02,1,A,1,uint8\n1,2,0x01,0x02,2,B,1,uint8\n1,3,0x02,0x02,3,C,1,uint8\n"
      "1,4,0x01,0x02,4,D,1,uint8\n2,1,0x03,0x04,1,Far,1,uint8\n");
  EXPECT_EQ(Told(4).rfind("Get 0x02 is the Set of line 2 as well; write another code", 0), 0U);
  for (const char* name : {"A", "B", "C", "D"}) {
    EXPECT_EQ(StateOf(name), "---") << name;
  }
  EXPECT_EQ(StateOf("Far"), "rwc");
}

TEST_F(TableFaults, AHeaderWithAColumnTwiceWritesNothing) {
  const std::string header(kTableHeader, sizeof(kTableHeader) - 2);
  LoadFile(header + ",Set,getcmdpayload\n1,1,0x01,0x02,1,A,1,uint8\n");
  EXPECT_EQ(Told(1),
            "the column Set stands twice; leave one of them. Nothing is written until then + "
            "?the column \"getcmdpayload\" is ignored; write GetCmdPayload");
  EXPECT_EQ(StateOf("A"), "r--");
}

TEST_F(TableFaults, SoManyAreTold) {
  std::string rows;
  for (size_t i = 0; i < 3 * FaultList::kMost; ++i) {
    rows.append("1,").append(std::to_string(i)).append(",red,,,,0,uint24\n");
  }
  Load(rows);
  const auto& faults = parser_.Faults();
  ASSERT_EQ(faults.size(), FaultList::kMost + 1);
  EXPECT_EQ(faults.back().text.rfind(file_->path() + ": ", 0), 0U);
  EXPECT_NE(faults.back().text.find(" more; mend these first"), std::string::npos);
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
  EXPECT_EQ(
      Told(200002),
      "more than 200000 rows; write fewer. The rest is left out, and nothing is written until "
      "then");
  EXPECT_EQ(parser_.InTableOrder().size(), kMaxTableRows);
  EXPECT_EQ(Var("Variable 199999").get_start_pos, 399998);
}

TEST_F(TableFaults, WhatTheReaderRefusesIsNamedWithItsPlace) {
  const std::string error = "ConfigParser::ExtractConfigInfo(): error with csv_reader_, loc = ";
  LoadFile("\"GroupID\"x,Index\n1,1\n");
  EXPECT_EQ(output_, error + file_->path() + ":1\n");
  EXPECT_EQ(Told(1).rfind("a quotation mark ", 0), 0U);

  const std::string missing = file_->config().path() + "/none.csv";
  testing::internal::CaptureStdout();
  parser_.ExtractConfigInfo(missing);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), error + missing + "\n");
  ASSERT_EQ(parser_.Faults().size(), 1U);
  EXPECT_EQ(parser_.Faults()[0].text.rfind(missing + ": ", 0), 0U);
}

}  // namespace
