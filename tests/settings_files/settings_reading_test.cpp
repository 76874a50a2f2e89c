#include "settings_files/settings_reading.h"

#include "settings_bench.h"

namespace {

using kavel::lidar::kNoReply;

TEST(SettingsReadingTest, WhatTheUserIsTypingIsNotTheLidars) {
  SettingsBench bench("Orca");
  bench.model->table->Edit(bench["Spin Rate"], "1200");
  const SettingsFile file = bench.Read();
  EXPECT_EQ(file.Find("Spin Rate")->text, "600");
  EXPECT_EQ(bench.model->table->ValueOf(bench["Spin Rate"]).text, "1200");
  EXPECT_EQ(file.Find("FOV Table")->text, "0, 360, 0, 360, 0, 360, 0, 360, 0, 360");
  EXPECT_TRUE(file.Find("FOV Table")->writable);
  EXPECT_EQ(file.Find("Scan Reserved")->page, "");
  EXPECT_EQ(file.Find("Event Log"), nullptr);
}

TEST(SettingsReadingTest, WhatCannotBeReadIsUnreadWithItsReason) {
  SettingsBench bench("Orca");
  bench.device.before = [](uint8_t cmd) { return cmd == 0x34 ? 5 : cmd == 0x11 ? kNoReply : 0; };
  const SettingsFile file = bench.Read();
  EXPECT_EQ(file.Find("Standby")->unread, "lidar return code 5 (authentication required)");
  EXPECT_EQ(file.Find("Spin Rate")->unread, "no answer from the lidar");
  EXPECT_FALSE(file.Find("Spin Rate")->was_read()) << "a default is nothing that the lidar said";
  EXPECT_TRUE(file.Find("IMU Rate")->was_read());
}

TEST(SettingsReadingTest, EndsSoonWithTheLinkOrWhenItIsStopped) {
  SettingsBench bench("Orca");
  const size_t all = SavedVariables(*bench.model->table).size();
  const auto unread = [](const SettingsReading& reading) {
    return std::count_if(reading.file.values.begin(), reading.file.values.end(),
                         [](const SavedValue& value) { return !value.was_read(); });
  };
  const auto commands = [&bench] { return bench.device.sent.size(); };
  SettingsReading reading = ReadSettings(bench.lidar(), {[&] { return commands() == 2; }, nullptr});
  EXPECT_EQ(reading.ended, "it was stopped");
  EXPECT_FALSE(reading.lost);
  EXPECT_EQ(reading.file.values.size(), all);
  EXPECT_EQ(commands(), 2U);

  bench.device.before = [&](uint8_t) { return commands() < 5 ? 0 : kNoReply; };
  reading = ReadSettings(bench.lidar());
  EXPECT_EQ(reading.ended, "the lidar is silent");
  EXPECT_TRUE(reading.lost);
  EXPECT_EQ(commands(), 6U);
  EXPECT_GT(unread(reading), 0);

  bench.device.open = false;
  reading = ReadSettings(bench.lidar());
  EXPECT_EQ(reading.ended, "the lidar is not connected");
  EXPECT_EQ(static_cast<size_t>(unread(reading)), all) << "bytes of an earlier reading are none";
  bench.device.open = true;
  bench.state.upgrading = true;
  reading = ReadSettings(bench.lidar());
  EXPECT_EQ(reading.ended, "Please wait for the lidar to upgrade completely");
  EXPECT_FALSE(reading.lost);
  EXPECT_EQ(commands(), 6U);
}

}  // namespace
