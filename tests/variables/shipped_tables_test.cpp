#include <gtest/gtest.h>

#include <set>

#include "variables/command_code.h"
#include "variables/feature_config.h"
#include "variables/model_list.h"
#include "variables/page_variants.h"
#include "variables/str_parser.h"

namespace {

const std::string kConfig = TEVRON_SHIPPED_CONFIG;

std::string TableOf(const std::string& model) { return kConfig + "/varID/" + model + ".csv"; }

class ShippedTable : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override { parser_.ExtractConfigInfo(TableOf(GetParam())); }
  ConfigParser parser_;
};

TEST_P(ShippedTable, HasNoFaultAndTheVariablesThatOthersAskFor) {
  for (const TableFault& fault : parser_.Faults()) {
    ADD_FAILURE() << fault.text;
  }
  std::vector<std::string> errors;
  PagesAsVariants(parser_, PageModel(parser_), &errors);
  EXPECT_TRUE(errors.empty()) << errors.front();

  ASSERT_NE(parser_.FindByName("PN"), nullptr);
  ASSERT_NE(parser_.FindByName("SN"), nullptr);
  EXPECT_EQ(PageModel(parser_).PositionOf(*parser_.FindByName("PN")).level1, 0);
  ASSERT_NE(parser_.FindByName("Restart"), nullptr);
  EXPECT_EQ(parser_.FindByName("Restart")->set_cmd, "0x10");
  ASSERT_NE(parser_.FindByName("Reset"), nullptr);
  EXPECT_EQ(parser_.FindByName("Reset")->set_cmd, "0x25");
  // The screens warn of a mismatch unless part or serial number name the model's family.
  const std::string family = GetParam().substr(0, GetParam().find('-'));
  EXPECT_NE(parser_.FindByName("PN")->default_val.find(family), std::string::npos);
}

// What a screen lets the user change has to be accepted as it stands.
TEST_P(ShippedTable, DefaultsOfChangeableVariablesCanBeWritten) {
  for (const VarInfo* var : parser_.InTableOrder()) {
    if (!CanBeChanged(*var)) {
      continue;
    }
    SCOPED_TRACE(var->var_name);
    EXPECT_EQ(CreateStrParser(var->var_type)->Parse(var->default_val, var->set_coefficient).size(),
              static_cast<size_t>(var->offset));
    EXPECT_FALSE(var->var_type == "uint32" || var->var_type == "uint64") << "takes nothing but 0";
  }
}

INSTANTIATE_TEST_SUITE_P(Models, ShippedTable, testing::ValuesIn(ListModels(kConfig + "/varID")),
                         [](const auto& model) {
                           std::string name = model.param;
                           name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
                           return name;
                         });

TEST(ShippedTables, AreTheFiveModels) {
  EXPECT_EQ(ListModels(kConfig + "/varID"),
            (std::vector<std::string>{"Kiva-CMX", "Lumo", "Lumo-CMX", "Orca", "Osprey"}));
}

TEST(ShippedTables, OrcaUsesEverythingThatATableCanSay) {
  ConfigParser parser;
  parser.ExtractConfigInfo(TableOf("Orca"));
  EXPECT_GE(parser.InTableOrder().size(), 60U);
  EXPECT_GE(PageModel(parser).page_count(), 6);
  std::set<std::string> types;
  std::set<int32_t> kinds;
  bool long_command = false;
  bool dependent = false;
  bool hidden = false;
  bool payload = false;
  for (const VarInfo* var : parser.InTableOrder()) {
    types.insert(var->var_type);
    kinds.insert(var->type);
    long_command |= var->get_cmd.size() >= kLongCommandTextLength;
    dependent |= var->type == kSwitch && !var->switch_var_id.empty();
    hidden |= var->hidden;
    payload |= !var->read_payload.empty();
  }
  EXPECT_EQ(types.size(), 15U);
  EXPECT_EQ(kinds, (std::set<int32_t>{0, 1, 2, 3, 5}));
  EXPECT_TRUE(long_command && dependent && hidden && payload);

  const std::vector<const VarInfo*> fov = parser.WrittenBy("0x22");
  ASSERT_EQ(fov.size(), 1U);
  EXPECT_EQ(fov[0]->get_cmd, "0x2C");
  EXPECT_EQ(fov[0]->offset, 42);
  EXPECT_EQ(fov[0]->function_module, "FOV");
  EXPECT_FALSE(parser.WrittenBy("0x21").empty());
}

TEST(ShippedTables, FeaturesAreThoseOfTheModels) {
  const std::string features = kConfig + "/feature_config.csv";
  EXPECT_TRUE(IsHostPortUiEnabled(features, "Osprey"));
  EXPECT_FALSE(IsHostPortUiEnabled(features, "Orca"));
  EXPECT_EQ(StaleInputFor(features, "Orca"), kavel::lidar::StaleInput::kAfterTrouble);
  EXPECT_EQ(StaleInputFor(features, "Lumo"), kavel::lidar::StaleInput::kAlways);
}

}  // namespace
