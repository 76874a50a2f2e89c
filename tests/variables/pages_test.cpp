#include "variables/pages.h"

#include "support/table_fixture.h"
#include "variables/page_variants.h"

namespace {

class PagesTest : public TableTest {
 protected:
  void SetUp() override {
    Load(
        "0,page,Scan,How it turns\n"
        "0,group,1,Amplifier\n"
        "2,1,0x01,0x02,1,Speed,1,uint8,3,1|3,rpm,,Slow|Fast,Scan\n"
        "2,2,0x01,0x02,2,Reserved,0,uint8,0,hidden,,,,Scan\n"
        "2,3,0x01,0x02,3,Filter,1,uint8,0,switch,,,,Scan\n"
        "3,1,0x03,,,Serial,0,string,abc,,,,,Device,8\n"
        "1,1,0x04,0x05,1,Gain,1,uint8,5,switch:1..9,,,Off|On|Twice,Scan\n"
        "3,2,0x03,,,Secret,0,uint8,0,hidden,,,,Keys\n"
        "3,3,0x03,,,Loose,0,uint8,0\n"
        "3,4,0x03,,,Block,0,uint8,0,monitor,,,,Device\n"
        "2,4,0x01,0x02,4,Offset,1,int8,0,,mm,,,Scan\n");
    pages_ = PageModel(parser_);
  }

  PageModel pages_;
};

TEST_F(PagesTest, SpreadsTheVariablesInTableOrder) {
  EXPECT_EQ(PageNames(pages_), (QVariantList{"Scan", "Device"}));
  EXPECT_EQ(
      PageRows(pages_)[0].toList(),
      (QVariantList{QVariantList{"Speed (rpm)", 3, 0, 0, 0}, QVariantList{"Filter", 2, 0, 0, 1},
                    QVariantList{"Offset (mm)", 1, 0, 0, 2}, QVariantList{"Gain", 2, 0, 1, 0}}));
  EXPECT_EQ(pages_.monitor_page(), 1);
  EXPECT_EQ(pages_.At(0, 1, 0), &Var("Gain"));
  EXPECT_FALSE(pages_.PositionOf(Var("Reserved")).valid());
  EXPECT_FALSE(pages_.PositionOf(Var("Loose")).valid());
  for (const int index : {-1, 2, 1000000}) {
    EXPECT_EQ(pages_.At(index, 0, 0), nullptr);
    EXPECT_EQ(pages_.At(0, index, 0), nullptr);
    EXPECT_EQ(pages_.At(1, 0, index), nullptr);
    EXPECT_TRUE(pages_.VariablesOf(index).empty());
  }
}

TEST_F(PagesTest, LeavesShowTheVariableAndItsValue) {
  parser_.StoreReading(Var("Speed"), "1", {1});
  parser_.Edit(Var("Offset"), "-7");
  std::vector<std::string> errors;
  const QVariantList pages = PagesAsVariants(parser_, pages_, &errors);
  const auto shown = [&pages](int level2, int level3, const char* key) {
    return pages[0].toList()[level2].toList()[level3].toMap()[key];
  };
  EXPECT_EQ(shown(0, 0, "current_val"), "1");
  EXPECT_EQ(shown(0, 0, "options"), (QVariantList{"Slow", "Fast"}));
  EXPECT_EQ(shown(0, 0, "option_index"), 0);
  EXPECT_EQ(shown(0, 0, "varname_value_to_option").toMap()["3"], "Fast");
  EXPECT_EQ(shown(0, 0, "page_description"), "How it turns");
  EXPECT_EQ(shown(0, 0, "group_caption"), "");
  EXPECT_EQ(shown(1, 0, "group_caption"), "Amplifier");
  EXPECT_EQ(shown(0, 1, "switch_index"), "0");
  EXPECT_EQ(shown(0, 2, "current_val"), "-7");
  EXPECT_EQ(shown(0, 2, "edited"), true);
  EXPECT_EQ(shown(1, 0, "switch_index"), "1");
  EXPECT_EQ(errors, (std::vector<std::string>{
                        "config file error, Please check the configuration of type 2 of Gain"}));
}

}  // namespace
