#include "variables/config_parser.h"

#include <gtest/gtest.h>

#include "variables/table_file.h"

namespace {

class ConfigParserTest : public testing::Test {
 protected:
  // Loads the rows under the usual header and returns what was written to standard output.
  std::string Load(const std::string& rows) { return LoadFile(kTableHeader + rows); }

  std::string LoadFile(const std::string& content) {
    file_ = std::make_unique<TableFile>(content);
    testing::internal::CaptureStdout();
    parser_.ExtractConfigInfo(file_->path());
    return testing::internal::GetCapturedStdout();
  }

  std::unique_ptr<TableFile> file_;
  ConfigParser parser_;
};

TEST_F(ConfigParserTest, FillsARecordFromEveryColumn) {
  EXPECT_EQ(
      Load("4,11,0x11,0x12,1,Start,1,int16,2.50,-100..100,deg,0.5,,Scan,2,1,0.25,0x0aFF,01\n"), "");
  const VarInfo* var = parser_.Find("4-11");
  ASSERT_NE(var, nullptr);
  EXPECT_EQ(var->index, 11);
  EXPECT_EQ(var->get_cmd, "0x11");
  EXPECT_EQ(var->set_cmd, "0x12");
  EXPECT_EQ(var->var_type, "int16");
  EXPECT_EQ(var->var_name, "Start");
  EXPECT_EQ(var->unit_suffix, " (deg)");
  EXPECT_EQ(var->offset, 2);
  EXPECT_EQ(var->permission, 1);
  EXPECT_EQ(var->check_enable, 1);
  EXPECT_EQ(var->coefficient, 0.5F);
  EXPECT_EQ(var->set_coefficient, 0.25F);
  EXPECT_EQ(var->default_val, "2.50");
  EXPECT_EQ(var->current_val, "2.50");
  EXPECT_EQ(var->function_module, "Scan");
  EXPECT_TRUE(var->timer_update);
  EXPECT_EQ(var->read_payload, (std::vector<uint8_t>{0x0A, 0xFF}));
  EXPECT_EQ(var->set_payload, (std::vector<uint8_t>{0x01}));
  EXPECT_EQ(var->line, 2U);
  EXPECT_EQ(parser_.FindByName("Start"), var);
  EXPECT_TRUE(parser_.Faults().empty());
}

TEST_F(ConfigParserTest, EmptyCellsHaveTheirDefaults) {
  Load("1,1,,,,A,,double,,,,,,,,,\n1,2,,,,B,,string,,,,0.5,,,,,\n1,3,,,,C,,raw,,,,,,,7,,\n");
  const VarInfo* var = parser_.Find("1-1");
  ASSERT_NE(var, nullptr);
  EXPECT_EQ(var->offset, 8);
  EXPECT_EQ(var->permission, 0);
  EXPECT_EQ(var->check_enable, 0);
  EXPECT_EQ(var->coefficient, 1.0F);
  EXPECT_EQ(var->unit_suffix, "");
  EXPECT_FALSE(var->timer_update);
  EXPECT_TRUE(var->read_payload.empty());
  EXPECT_EQ(parser_.Find("1-2")->offset, 1);
  EXPECT_EQ(parser_.Find("1-2")->length_limit, 1);
  EXPECT_EQ(parser_.Find("1-2")->set_coefficient, 0.5F);
  EXPECT_EQ(parser_.Find("1-3")->length_limit, 7);
}

TEST_F(ConfigParserTest, PlacesVariablesOneBehindTheOther) {
  Load(
      "1,1,0x01,,,A,0,uint16,,,,,,,,,,0x01\n"
      "1,2,0x01,,,B,0,uint8,,,,,,,,,,0x02\n"
      "1,3,0x01,0x02,1,C,1,uint32,,,,,,,,,,0x01\n"
      "1,4,0x01,0x02,2,D,1,MAC,,,,,,,,,,0x01\n"
      "1,5,0x01,0x02,3,E,1,uint8,,hidden,,,,,,,,0x02\n");
  const auto place = [this](const char* id) {
    const VarInfo* var = parser_.Find(id);
    return std::pair(var->get_start_pos, var->set_start_pos);
  };
  EXPECT_EQ(place("1-1"), std::pair(0, 0));
  EXPECT_EQ(place("1-2"), std::pair(0, 0));
  EXPECT_EQ(place("1-3"), std::pair(2, 0));
  EXPECT_EQ(place("1-4"), std::pair(6, 4));
  EXPECT_EQ(place("1-5"), std::pair(1, 10));
  EXPECT_EQ(
      parser_.WrittenBy("0x02"),
      (std::vector<const VarInfo*>{parser_.Find("1-3"), parser_.Find("1-4"), parser_.Find("1-5")}));
  EXPECT_TRUE(parser_.WrittenBy("0x01").empty());
}

TEST_F(ConfigParserTest, AnswersWhereAVariableLies) {
  Load(
      "1,1,0x01,0x02,1,A,1,uint16,,,,,,,,,\n"
      "1,2,0x03,0x02,2,B,1,uint8,,,,,,,,,\n"
      "1,3,,,,C,1,uint8,,,,,,,,,\n");
  int32_t pos = -1;
  int32_t len = -1;
  EXPECT_TRUE(parser_.GetVarPosOffset("0x02", "1-2", 9, pos, len));
  EXPECT_EQ(pos, 2);
  EXPECT_EQ(len, 1);
  EXPECT_TRUE(parser_.GetVarPosOffset("0x03", "1-2", 9, pos, len));
  EXPECT_EQ(pos, 0);

  testing::internal::CaptureStdout();
  EXPECT_FALSE(parser_.GetVarPosOffset("0x02", "9-9", 1, pos, len));
  EXPECT_FALSE(parser_.GetVarPosOffset("0x02", "1-3", 1, pos, len));
  EXPECT_FALSE(parser_.GetVarPosOffset("0x77", "1-1", 1, pos, len));
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "ConfigParser::GetVarPosOffset(): ERROR. This var_id does not exist. Detail: var_id = "
            "9-9, file_path = " +
                file_->path() +
                "\n"
                "ConfigParser::GetVarPosOffset(): this var not supported. var_name = C\n"
                "ConfigParser::GetVarPosOffset(): don't have this command\n");
}

TEST_F(ConfigParserTest, TheSharedSecretKeyHasTheLengthThatIsAskedFor) {
  Load("1,1,,0x02,1,A,1,raw,,,,,,,3,,\n1,2,,0x02,2,Shared Secret Key,1,raw,,,,,,,4,,\n");
  ASSERT_EQ(parser_.Find("1-2")->set_start_pos, 3);
  int32_t pos = -1;
  int32_t len = -1;
  EXPECT_TRUE(parser_.GetVarPosOffset("0x02", "1-2", 32, pos, len));
  EXPECT_EQ(pos, 0);
  EXPECT_EQ(len, 32);
  EXPECT_EQ(parser_.Find("1-2")->set_start_pos, 0);
  EXPECT_EQ(parser_.Find("1-2")->offset, 32);
}

TEST_F(ConfigParserTest, KeepsRowsOfGroupZeroAsDirectives) {
  Load("0,page,,Scan,,\"How it turns, and more\"\n1,1,0x01,,,A,0,uint8\n0,future\n");
  EXPECT_EQ(parser_.Directives(), (std::vector<std::vector<std::string>>{
                                      {"page", "Scan", "How it turns, and more"}, {"future"}}));
  EXPECT_EQ(parser_.InTableOrder().size(), 1U);
}

TEST_F(ConfigParserTest, ReadsPayloadCellsForgivingly) {
  Load(
      "1,1,0x01,,,A,0,uint8,,,,,,,,,,ff01\n"
      "1,2,0x01,,,B,0,uint8,,,,,,,,,,0Xff01\n"
      "1,3,0x01,,,C,0,uint8,,,,,,,,,,0x1\n"
      "1,4,0x01,,,D,0,uint8,,,,,,,,,,ff0g\n");
  const auto payload = [this](const char* id) { return parser_.Find(id)->read_payload; };
  EXPECT_EQ(payload("1-1"), (std::vector<uint8_t>{0xFF, 0x01}));
  EXPECT_EQ(payload("1-2"), (std::vector<uint8_t>{0xFF, 0x01}));
  EXPECT_TRUE(payload("1-3").empty());  // no prefix in a cell this short
  EXPECT_TRUE(payload("1-4").empty());
}

TEST_F(ConfigParserTest, LoadsWithoutTheOptionalColumnsAndInAnyOrder) {
  const std::string content =
      "VarLen,Index,GroupID,Get,Set,SetIndex,VarName,Permission,VarType,DefaultValue,Options,Unit,"
      "Coefficient,OptionDescription,FunctionModule,TimerUpdate,SetCoefficient\n"
      "2,1,5,0x01,,,A,0,uint16\n";
  EXPECT_EQ(LoadFile("\xEF\xBB\xBF" + content), "");
  ASSERT_NE(parser_.Find("5-1"), nullptr);
  EXPECT_EQ(parser_.Find("5-1")->offset, 2);
}

TEST_F(ConfigParserTest, AMissingColumnStopsTheLoadAndLeavesNothing) {
  Load("1,1,0x01,,,A,0,uint8\n0,page,Scan,Text\n");
  std::string header = kTableHeader;
  header.replace(header.find("VarLen,"), 7, "");
  const TableFile broken(header + "1,2,0x01,,,B,0,uint8\n");
  try {
    parser_.ExtractConfigInfo(broken.path());
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Can't find a column named VarLen");
  }
  EXPECT_TRUE(parser_.InTableOrder().empty());
  EXPECT_TRUE(parser_.Directives().empty());
  EXPECT_EQ(parser_.Find("1-1"), nullptr);
  EXPECT_EQ(parser_.path(), broken.path());
}

TEST_F(ConfigParserTest, ASecondTableReplacesTheFirst) {
  Load("1,1,0x01,0x02,1,A,1,uint8\n1,2,0x01,0x02,1,B,1,uint8\n0,page,Scan,Text\n");
  EXPECT_FALSE(parser_.Faults().empty());
  Load("1,1,0x03,0x04,1,C,1,uint16\n");
  EXPECT_TRUE(parser_.Faults().empty());
  EXPECT_TRUE(parser_.Directives().empty());
  EXPECT_EQ(parser_.FindByName("A"), nullptr);
  EXPECT_TRUE(parser_.WrittenBy("0x02").empty());
  ASSERT_EQ(parser_.InTableOrder().size(), 1U);
  EXPECT_EQ(parser_.InTableOrder()[0]->var_name, "C");
}

TEST_F(ConfigParserTest, LoadsAHundredThousandRows) {
  std::string rows;
  for (int i = 0; i < 100000; ++i) {
    rows += std::to_string(i / 100 + 1) + "," + std::to_string(i % 100) + ",0x" +
            std::to_string(i / 1000 + 100) + ",,,Variable " + std::to_string(i) +
            ",0,uint16,0,,mm,0.5,,Page " + std::to_string(i / 10000) + ",2,0,\n";
  }
  EXPECT_EQ(Load(rows), "");
  ASSERT_EQ(parser_.InTableOrder().size(), 100000U);
  EXPECT_EQ(parser_.Find("1000-99")->get_start_pos, 1998);
}

}  // namespace
