#include "settings_files/settings_plan.h"

#include "settings_bench.h"

namespace {

class SettingsPlanTest : public testing::Test {
 protected:
  /// What is planned for one text: "write 1200", "skip", "block", each with its reason.
  std::string PlanOf(const SavedValue& value, const ApplyWish& wish = {}) {
    const ApplyPlan plan = PlanApply(*bench_.model, present_, File({value}), wish);
    const PlannedValue& planned = plan.values.at(0);
    switch (planned.step) {
      case PlannedValue::Step::kWrite:
        return "write " + planned.wanted + (planned.reason.empty() ? "" : ": " + planned.reason);
      case PlannedValue::Step::kSkip:
        return "skip: " + planned.reason;
      case PlannedValue::Step::kBlock:
        return "block: " + planned.reason;
    }
    return "";
  }
  std::string PlanOf(const std::string& name, const std::string& text, const ApplyWish& wish = {}) {
    return PlanOf(Value(name, text), wish);
  }

  SettingsBench bench_{"Orca"};
  const SettingsFile present_ = bench_.Read();
};

TEST_F(SettingsPlanTest, ChecksATextBeforeAnythingIsSent) {
  const char* const cases[][3] = {
      {"Minimum Distance", "30", "write 30"},
      {"Minimum Distance", "20", "skip: the lidar holds it already"},
      {"Minimum Distance", "4", "block: Outside 5 to 500"},
      {"Minimum Distance", "near", "block: A number from 5 to 500 is needed"},
      {"Minimum Distance", "", "block: A number from 5 to 500 is needed"},
      {"Range Offset", "1.3", "block: Would be stored as 1.25"},
      {"Range Offset", "1.5", "write 1.50"},
      {"Range Offset", "0.1", "block: Would be stored as 0"},
      {"Spin Rate", "700", "block: None of 300, 600, 1200"},
      {"Spin Rate", "fast", "block: None of 300, 600, 1200"},
      {"Spin Direction", "Counter-clockwise", "write 1"},
      {"IP Address", "10.0.0", "skip: network setting"},
      {"Noise Filter", "0", "write 0"},
      {"FOV Table", "0,90,0,360,0,360,0,360,0,360", "write 0, 90, 0, 360, 0, 360, 0, 360, 0, 360"},
      {"FOV Table", "0,90", "block: Ten angles from 0 to 360 with commas between are needed"},
      {"FOV Table", "0,361,0,360,0,360,0,360,0,360",
       "block: Ten angles from 0 to 360 with commas between are needed"},
      {"Device State", "2", "skip: read-only"},
      {"SN", "Orca1", "skip: read-only"},
      {"Colour", "red", "skip: not in this model"},
      {"Motor Torque", "1", "skip: not in this model"},
      {kSharedSecretKey, "00", "skip: key material"},
  };
  for (const auto& [name, text, plan] : cases) {
    EXPECT_EQ(PlanOf(name, text), plan) << name << " " << text;
  }
  SavedValue unread = Value("Spin Rate", {});
  unread.unread = "lidar return code 5";
  EXPECT_EQ(PlanOf(unread), "skip: unread in the file: lidar return code 5");
}

TEST_F(SettingsPlanTest, AWishSaysWhatIsWrittenBesides) {
  ApplyWish network;
  network.with_network = true;
  EXPECT_EQ(PlanOf("IP Address", "10.0.0.9", network), "write 10.0.0.9");
  EXPECT_EQ(PlanOf("IP Address", "10.0.0", network), "block: An address like 192.168.1.201");
  ApplyWish named;
  named.only = {"IP Address", "SN"};
  EXPECT_EQ(PlanOf("IP Address", "10.0.0.9", named), "write 10.0.0.9");
  EXPECT_EQ(PlanOf("Minimum Distance", "30", named), "skip: not asked for");
  EXPECT_EQ(PlanOf("SN", "Orca1", named), "block: read-only") << "asked for and not possible";
  EXPECT_EQ(PlanApply(*bench_.model, present_, File({}), named).values.at(1).reason,
            "not in the file");
  ApplyWish forced;
  forced.out_of_range = true;
  EXPECT_EQ(PlanOf("Minimum Distance", "4", forced), "write 4: Outside 5 to 500");
  EXPECT_EQ(PlanOf("Range Offset", "1.3", forced), "write 1.25: Would be stored as 1.25");
  EXPECT_EQ(PlanOf("Spin Rate", "700", forced), "write 700: None of 300, 600, 1200");
  EXPECT_EQ(PlanOf("Minimum Distance", "near", forced), "block: A number from 5 to 500 is needed");
}

TEST_F(SettingsPlanTest, ARangeCountsWhileItsSwitchIsOn) {
  const auto plan = [&](const std::string& vlan_id, const ApplyWish& wish) {
    const SettingsFile wanted = File({Value("VLAN Priority", "9"), Value("VLAN ID", vlan_id)});
    return PlanApply(*bench_.model, present_, wanted, wish).may_run();
  };
  ApplyWish network;
  network.with_network = true;
  EXPECT_TRUE(plan("0", network));
  EXPECT_FALSE(plan("5", network)) << "what is written counts, not what the lidar held";
  ApplyWish only;
  only.only = {"VLAN Priority"};
  EXPECT_TRUE(plan("5", only)) << "and of what is not written what the lidar holds";
}

TEST_F(SettingsPlanTest, BytesThatSayTheSameAreWrittenAsTheyAre) {
  SavedValue third = Value("Laser Power", "33.33", Bytes{0x42, 0x05, 0x55, 0x55});
  const auto bytes = [&] {
    return PlanApply(*bench_.model, present_, File({third}), {}).values.at(0).bytes;
  };
  EXPECT_EQ(bytes(), (Bytes{0x42, 0x05, 0x55, 0x55}));
  third.text = "50";
  EXPECT_EQ(bytes(), (Bytes{0x42, 0x48, 0, 0})) << "a text written by hand wins";
  third.text.reset();
  third.bytes = Bytes{1};
  EXPECT_EQ(PlanOf(third), "block: It has 1 bytes, and its place 4");
}

TEST_F(SettingsPlanTest, ComparesWhereTheSettingsComeFrom) {
  SettingsFile wanted = present_;
  wanted.table_sha256 = std::string(64, '0');
  wanted.firmware = "2020-01-01 v1.0.0.0";
  ApplyPlan plan = PlanApply(*bench_.model, present_, wanted, {});
  EXPECT_TRUE(plan.may_run());
  EXPECT_EQ(plan.warnings,
            (std::vector<std::string>{
                "The settings were read with another table of Orca: some may be missing, or mean "
                "something else here.",
                "The settings come from firmware 2020-01-01 v1.0.0.0, the lidar runs 2026-10-18 "
                "v2.7.1.0."}));
  wanted.model = "Osprey";
  plan = PlanApply(*bench_.model, present_, wanted, {});
  EXPECT_EQ(plan.refusal, "The settings are those of model Osprey, the lidar is Orca.");
  EXPECT_FALSE(plan.may_run());
}

}  // namespace
