#include <gtest/gtest.h>

#include "variables/input_hint.h"
#include "variables/model_list.h"
#include "variables/monitor_tables.h"
#include "variables/page_variants.h"

namespace {

const std::string kTables = TEVRON_SHIPPED_CONFIG "/varID/";

// That they are free of faults is for the virtual lidar's check of the tables to say.
TEST(ShippedTables, HaveTheVariablesThatOthersAskFor) {
  EXPECT_EQ(ListModels(kTables),
            (std::vector<std::string>{"Kiva-CMX", "Lumo", "Lumo-CMX", "Orca", "Osprey"}));
  for (const std::string& model : ListModels(kTables)) {
    SCOPED_TRACE(model);
    ConfigParser parser;
    parser.ExtractConfigInfo(kTables + model + ".csv");
    std::vector<std::string> errors;
    PagesAsVariants(parser, PageModel(parser), &errors);
    EXPECT_TRUE(errors.empty()) << errors.front();
    for (const char* name : {"PN", "SN", "Restart", "Reset"}) {
      ASSERT_NE(parser.FindByName(name), nullptr) << name;
    }
    EXPECT_EQ(PageModel(parser).PositionOf(*parser.FindByName("PN")).level1, 0);
    EXPECT_EQ(parser.FindByName("Restart")->set_cmd, "0x10");
    EXPECT_EQ(parser.FindByName("Reset")->set_cmd, "0x25");
    // The screens warn of a mismatch unless part or serial number name the model's family.
    const std::string family = model.substr(0, model.find('-'));
    EXPECT_NE(parser.FindByName("PN")->default_val.str().find(family), std::string::npos);
    for (const VarInfo* var : parser.InTableOrder()) {
      EXPECT_NE(InputHint(*var).rfind("Only ", 0), 0U) << var->var_name;
    }
  }
}

TEST(ShippedTables, GiveEveryHardwareVersionADozenValuesToDrawAndNoNameTwice) {
  const std::pair<const char*, std::vector<std::string>> models[] = {{"Orca", {"A1", "B2"}},
                                                                     {"Osprey", {"C1"}}};
  for (const auto& [model, versions] : models) {
    ConfigParser own;
    own.ExtractConfigInfo(kTables + model + ".csv");
    EXPECT_EQ(ListMonitorVersions(own.path()), versions);
    for (const std::string& version : versions) {
      TableFaults faults;
      const auto table = WithMonitorTable(own, version, &faults);
      ASSERT_NE(table, nullptr) << version;
      EXPECT_TRUE(faults.empty()) << faults.front().text;
      const PageModel pages(*table);
      EXPECT_GE(DrawableVariables(pages, pages.monitor_page()).size(), 12U) << version;
      for (const VarInfo* var : table->InTableOrder()) {
        EXPECT_EQ(table->FindByName(var->var_name), var) << var->var_name;
      }
    }
  }
}

}  // namespace
