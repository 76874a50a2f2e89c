#include "settings_files/settings_diff.h"

#include "settings_bench.h"

namespace {

std::string Shown(const SettingsDiff& diff) {
  std::string shown;
  for (const DiffRow& row : diff.rows) {
    shown += row.name + ": " + TextOf(row.kind) + " [" + row.left + "|" + row.right + "] ";
  }
  return shown + (diff.equal ? "equal" : "not equal");
}

TEST(SettingsDiffTest, ComparesByNameAndBytes) {
  const SettingsFile left = File({Value("Rounded", "0.02", Bytes{1}), Value("Old", "1", Bytes{1}),
                                  Value("Longer", "1", Bytes{1}), Value("Raw", {}, Bytes{0xAB}),
                                  Value("Silent", {}, {}), Value("Same", "1", Bytes{1})});
  const SettingsFile right =
      File({Value("New", "2", {}), Value("Same", "1", Bytes{1}), Value("Silent", "1", Bytes{1}),
            Value("Raw", {}, Bytes{0xCD}), Value("Longer", "1", Bytes{0, 1}),
            Value("Rounded", "0.02", Bytes{2})});
  EXPECT_EQ(Shown(CompareSettings(left, right, nullptr)),
            "Rounded: differs [0.02|0.02] Old: only left [1|] Longer: equal [1|1] "
            "Raw: differs [ab|cd] Silent: unread [|1] Same: equal [1|1] New: only right [|2] "
            "not equal");
  const SettingsDiff readings =
      CompareSettings(File({Value("Up-time", "1", Bytes{1}, false)}),
                      File({Value("Up-time", "2", Bytes{2}, false)}), nullptr);
  EXPECT_TRUE(readings.equal) << "what nobody sets differs always";
  EXPECT_EQ(readings.Count(DiffKind::kDiffers, false), 1U);
}

TEST(SettingsDiffTest, ATextWrittenByHandCountsAsWhatItWouldBe) {
  const auto table = LoadRows(
      "1,1,0x30,0x31,1,Speed,1,uint16,600,,,0.5,,Settings\n"
      "1,2,0x30,0x31,2,Mode,1,uint8,0,0|1,,,Slow|Fast,Settings\n");
  const SettingsFile lidar =
      File({Value("Speed", "350.00", Bytes{0x02, 0xBC}), Value("Mode", "1", Bytes{1})});
  const SettingsFile edited =
      File({Value("Speed", "350", Bytes{0x02, 0x58}), Value("Mode", "Fast", Bytes{0})});
  EXPECT_TRUE(CompareSettings(edited, lidar, table.get()).equal);
  const SettingsFile impossible =
      File({Value("Speed", "fast", Bytes{0x02, 0xBC}), Value("Mode", "1", Bytes{1})});
  EXPECT_EQ(CompareSettings(impossible, lidar, table.get()).Count(DiffKind::kDiffers, true), 1U);
}

}  // namespace
