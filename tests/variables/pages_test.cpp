#include "variables/pages.h"

#include <gtest/gtest.h>

#include "variables/page_variants.h"
#include "variables/table_file.h"

namespace {

class PagesTest : public testing::Test {
 protected:
  void SetUp() override {
    const TableFile file(std::string(kTableHeader) +
                         "0,page,Scan,How it turns\n"
                         "2,1,0x01,0x02,1,Speed,1,uint8,3,1|3,rpm,,Slow|Fast,Scan\n"
                         "2,2,0x01,0x02,2,Reserved,0,uint8,0,hidden,,,,Scan\n"
                         "2,3,0x01,0x02,3,Filter,1,uint8,0,switch,,,,Scan\n"
                         "3,1,0x03,,,Serial,0,string,abc,,,,,Device,8\n"
                         "1,1,0x04,0x05,1,Gain,1,uint8,5,switch:1..9,,,Off|On|Twice,Scan\n"
                         "3,2,0x03,,,Secret,0,uint8,0,hidden,,,,Keys\n"
                         "3,3,0x03,,,Loose,0,uint8,0\n"
                         "3,4,0x03,,,Block,0,uint8,0,monitor,,,,Device\n"
                         "2,4,0x01,0x02,4,Offset,1,int8,0,,mm,,,Scan\n");
    parser_.ExtractConfigInfo(file.path());
    pages_ = PageModel(parser_);
  }

  ConfigParser parser_;
  PageModel pages_;
};

TEST_F(PagesTest, SpreadsTheVariablesInTableOrder) {
  EXPECT_EQ(PageNames(pages_), (QVariantList{"Scan", "Device"}));
  EXPECT_EQ(pages_.pages()[0].description, "How it turns");
  ASSERT_EQ(pages_.pages()[0].groups.size(), 2U);
  EXPECT_EQ(pages_.pages()[0].groups[0].id, "2");
  EXPECT_EQ(pages_.At(0, 0, 2), parser_.FindByName("Offset"));
  EXPECT_EQ(pages_.At(0, 1, 0), parser_.FindByName("Gain"));
  EXPECT_EQ(pages_.VariablesOf(0).size(), 4U);
  EXPECT_EQ(pages_.monitor_page(), 1);

  const PagePosition gain = pages_.PositionOf(*parser_.FindByName("Gain"));
  EXPECT_EQ(gain.level1, 0);
  EXPECT_EQ(gain.level2, 1);
  EXPECT_EQ(gain.level3, 0);
  EXPECT_FALSE(pages_.PositionOf(*parser_.FindByName("Reserved")).valid());
  EXPECT_FALSE(pages_.PositionOf(*parser_.FindByName("Loose")).valid());
}

TEST_F(PagesTest, AnyIndexMayBeAskedFor) {
  for (const int index : {-1, 2, 1000000}) {
    EXPECT_EQ(pages_.At(index, 0, 0), nullptr);
    EXPECT_EQ(pages_.At(0, index, 0), nullptr);
    EXPECT_EQ(pages_.At(1, 0, index), nullptr);
    EXPECT_TRUE(pages_.VariablesOf(index).empty());
  }
  EXPECT_EQ(PageModel().page_count(), 0);
  EXPECT_EQ(PageModel().monitor_page(), -1);
}

TEST_F(PagesTest, RowsCarryCaptionKindAndIndices) {
  const QVariantList rows = PageRows(pages_)[0].toList();
  ASSERT_EQ(rows.size(), 4);
  EXPECT_EQ(rows[0].toList(), (QVariantList{"Speed (rpm)", 3, 0, 0, 0}));
  EXPECT_EQ(rows[1].toList(), (QVariantList{"Filter", 2, 0, 0, 1}));
  EXPECT_EQ(rows[2].toList(), (QVariantList{"Offset (mm)", 1, 0, 0, 2}));
  EXPECT_EQ(rows[3].toList(), (QVariantList{"Gain", 2, 0, 1, 0}));
}

TEST_F(PagesTest, LeavesShowTheVariableAndItsValue) {
  parser_.StoreReading(*parser_.FindByName("Speed"), "1", {1});
  parser_.Edit(*parser_.FindByName("Offset"), "-7");
  std::vector<std::string> errors;
  const QVariantList map = PagesAsVariants(parser_, pages_, &errors);
  ASSERT_EQ(map.size(), 2);
  const QVariantList group = map[0].toList()[0].toList();
  ASSERT_EQ(group.size(), 3);

  const QVariantMap speed = group[0].toMap();
  EXPECT_EQ(speed["current_val"], "1");
  EXPECT_EQ(speed["default_val"], "3");
  EXPECT_EQ(speed["permission"], 1);
  EXPECT_EQ(speed["option_num"], 2);
  EXPECT_EQ(speed["options"].toList(), (QVariantList{"Slow", "Fast"}));
  EXPECT_EQ(speed["option_index"], 0);
  EXPECT_EQ(speed["varname_value_to_option"].toMap()["3"], "Fast");
  EXPECT_EQ(speed["type"], 3);
  EXPECT_EQ(speed["edited"], false);
  EXPECT_EQ(speed["page_description"], "How it turns");
  EXPECT_EQ(group[1].toMap()["switch_index"], "0");
  EXPECT_EQ(group[2].toMap()["current_val"], "-7");
  EXPECT_EQ(group[2].toMap()["edited"], true);
  EXPECT_EQ(map[0].toList()[1].toList()[0].toMap()["switch_index"], "1");
  EXPECT_EQ(map[1].toList()[0].toList()[0].toMap()["editable"], false);

  EXPECT_EQ(errors, (std::vector<std::string>{
                        "config file error, Please check the configuration of type 2 of Gain"}));
}

TEST_F(PagesTest, LeavesHaveEveryKeyThatTheScreensRead) {
  const QVariantMap leaf = VariableMap(*parser_.FindByName("Serial"), {});
  for (const char* key : {"var_id",
                          "get_cmd",
                          "set_cmd",
                          "var_type",
                          "var_name",
                          "index",
                          "get_start_pos",
                          "set_start_pos",
                          "offset",
                          "permission",
                          "default_val",
                          "current_val",
                          "switch_index",
                          "visible",
                          "option_num",
                          "type",
                          "varname_value_to_option",
                          "options",
                          "hint",
                          "unit",
                          "range_min",
                          "range_max",
                          "length_limit",
                          "edited",
                          "editable",
                          "timer_update",
                          "option_values",
                          "option_index",
                          "group_id",
                          "page"}) {
    EXPECT_TRUE(leaf.contains(key)) << key;
  }
}

}  // namespace
