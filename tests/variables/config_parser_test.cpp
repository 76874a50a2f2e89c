#include "variables/config_parser.h"

#include "variables/table_test.h"

namespace {

using Bytes = std::vector<uint8_t>;
using ConfigParserTest = TableTest;

TEST_F(ConfigParserTest, FillsARecordFromEveryColumn) {
  Load("4,11,0x11,0x12,1,Start,1,int16,2.50,-100..100,deg,0.5,,Scan,2,1,0.25,0x0aFF,01\n");
  EXPECT_EQ(output_, "");
  const VarInfo* var = parser_.Find("4-11");
  ASSERT_NE(var, nullptr);
  EXPECT_EQ(var->index, 11);
  EXPECT_EQ(var->get_cmd + var->set_cmd, "0x110x12");
  EXPECT_EQ(var->var_type, "int16");
  EXPECT_EQ(var->var_name + var->unit_suffix, "Start (deg)");
  EXPECT_EQ(var->permission, 1);
  EXPECT_EQ(var->check_enable, 1);
  EXPECT_EQ(var->coefficient, 0.5F);
  EXPECT_EQ(var->set_coefficient, 0.25F);
  EXPECT_EQ(var->default_val, "2.50");
  EXPECT_EQ(var->current_val, "2.50");
  EXPECT_EQ(var->function_module, "Scan");
  EXPECT_TRUE(var->timer_update);
  EXPECT_EQ(var->read_payload, (Bytes{0x0A, 0xFF}));
  EXPECT_EQ(var->set_payload, Bytes{0x01});
}

TEST_F(ConfigParserTest, EmptyCellsHaveTheirDefaults) {
  Load("1,1,,,,A,,double,,,,,,,,,\n1,2,,,,B,,string,,,,0.5,,,,,\n1,3,,,,C,,raw,,,,,,,7,,\n");
  EXPECT_EQ(Var("A").offset, 8);
  EXPECT_EQ(Var("A").check_enable, 0);
  EXPECT_EQ(Var("A").coefficient, 1.0F);
  EXPECT_EQ(Var("A").unit_suffix, "");
  EXPECT_EQ(Var("B").offset, 1);
  EXPECT_EQ(Var("B").set_coefficient, 0.5F);
  EXPECT_EQ(Var("C").length_limit, 7);
}

// A column order of one's own, a byte-order mark and none of the optional columns.
TEST_F(ConfigParserTest, FindsColumnsByName) {
  LoadFile(
      "\xEF\xBB\xBFVarLen,Index,GroupID,Get,Set,SetIndex,VarName,Permission,VarType,DefaultValue,"
      "Options,Unit,Coefficient,OptionDescription,FunctionModule,TimerUpdate,SetCoefficient\n"
      "7,1,5,0x01,,,A,0,raw\n");
  EXPECT_EQ(Var("A").var_id, "5-1");
  EXPECT_EQ(Var("A").offset, 7);
}

TEST_F(ConfigParserTest, PlacesVariablesOneBehindTheOther) {
  Load(
      "1,1,0x01,,,A,0,uint16,,,,,,,,,,0x01\n"
      "1,2,0x01,,,B,0,uint8,,,,,,,,,,0x02\n"
      "1,3,0x01,0x02,1,C,1,uint32,,,,,,,,,,0x01\n"
      "1,4,0x01,0x02,2,D,1,MAC,,,,,,,,,,0x01\n"
      "1,5,0x01,0x02,3,E,1,uint8,,hidden,,,,,,,,0x02\n"
      "1,6,,,,F,1,uint8\n");
  using Place = std::pair<int32_t, int32_t>;
  const auto place = [this](const char* cmd, const char* id) {
    Place found(-1, -1);
    EXPECT_TRUE(parser_.GetVarPosOffset(cmd, id, 9, found.first, found.second));
    return found;
  };
  EXPECT_EQ(place("0x01", "1-1"), Place(0, 2));
  EXPECT_EQ(place("0x01", "1-2"), Place(0, 1));
  EXPECT_EQ(place("0x01", "1-4"), Place(6, 6));
  EXPECT_EQ(place("0x01", "1-5"), Place(1, 1));
  EXPECT_EQ(place("0x02", "1-4"), Place(4, 6));
  EXPECT_EQ(place("0x02", "1-5"), Place(10, 1));
  EXPECT_EQ(parser_.WrittenBy("0x02"),
            (std::vector<const VarInfo*>{&Var("C"), &Var("D"), &Var("E")}));

  int32_t pos = -1;
  int32_t len = -1;
  testing::internal::CaptureStdout();
  EXPECT_FALSE(parser_.GetVarPosOffset("0x02", "9-9", 1, pos, len));
  EXPECT_FALSE(parser_.GetVarPosOffset("0x02", "1-6", 1, pos, len));
  EXPECT_FALSE(parser_.GetVarPosOffset("0x77", "1-1", 1, pos, len));
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "ConfigParser::GetVarPosOffset(): ERROR. This var_id does not exist. Detail: var_id = "
            "9-9, file_path = " +
                file_->path() +
                "\nConfigParser::GetVarPosOffset(): this var not supported. var_name = F\n"
                "ConfigParser::GetVarPosOffset(): don't have this command\n");
}

TEST_F(ConfigParserTest, TheSharedSecretKeyHasTheLengthThatIsAskedFor) {
  Load("1,1,,0x02,1,A,1,raw,,,,,,,3,,\n1,2,,0x02,2,Shared Secret Key,1,raw,,,,,,,4,,\n");
  int32_t pos = -1;
  int32_t len = -1;
  EXPECT_TRUE(parser_.GetVarPosOffset("0x02", "1-2", 32, pos, len));
  EXPECT_EQ(pos, 0);
  EXPECT_EQ(len, 32);
  EXPECT_EQ(Var("Shared Secret Key").set_start_pos, 0);
  EXPECT_EQ(Var("Shared Secret Key").offset, 32);
}

TEST_F(ConfigParserTest, KeepsRowsOfGroupZeroAsDirectives) {
  Load("0,page,,Scan,,\"How it turns, and more\"\n1,1,0x01,,,A,0,uint8\n0,future\n");
  EXPECT_EQ(parser_.Directives(), (std::vector<std::vector<std::string>>{
                                      {"page", "Scan", "How it turns, and more"}, {"future"}}));
  EXPECT_EQ(parser_.InTableOrder().size(), 1U);
}

TEST_F(ConfigParserTest, AMissingColumnStopsTheLoadAndLeavesNothing) {
  Load("1,1,0x01,0x02,1,A,1,uint8\n0,page,Scan,Text\n1,,\n");
  std::string header = kTableHeader;
  header.replace(header.find("VarLen,"), 7, "");
  const TableFile broken(header + "1,2,0x01,,,B,0,uint8\n");
  try {
    parser_.ExtractConfigInfo(broken.path());
    ADD_FAILURE();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Can't find a column named VarLen");
  }
  EXPECT_TRUE(parser_.InTableOrder().empty());
  EXPECT_TRUE(parser_.Directives().empty());
  EXPECT_TRUE(parser_.Faults().empty());
  EXPECT_TRUE(parser_.WrittenBy("0x02").empty());
  EXPECT_EQ(parser_.FindByName("A"), nullptr);
}

TEST_F(ConfigParserTest, LoadsAHundredThousandRows) {
  std::string rows;
  for (int i = 0; i < 100000; ++i) {
    const std::string hundreds = std::to_string(i / 100 + 1);
    rows += hundreds + "," + std::to_string(i % 100) + "," + std::to_string(i / 1000 + 100) +
            ",,,Variable " + std::to_string(i) + ",0,uint16,0,,mm,0.5,,Page,2,0,\n";
  }
  Load(rows);
  EXPECT_EQ(output_, "");
  ASSERT_EQ(parser_.InTableOrder().size(), 100000U);
  EXPECT_EQ(parser_.Find("1000-99")->get_start_pos, 1998);
}

}  // namespace
