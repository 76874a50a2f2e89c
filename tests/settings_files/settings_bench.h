#pragma once

#include <gtest/gtest.h>

#include "settings_files/settings_reading.h"
#include "support/device_sender.h"
#include "support/recorded_report.h"
#include "support/table_fixture.h"
#include "support/test_install.h"

inline SavedValue Value(const std::string& name, std::optional<std::string> text,
                        std::optional<Bytes> bytes = {}, bool writable = true) {
  SavedValue value;
  value.name = name;
  value.text = std::move(text);
  value.bytes = std::move(bytes);
  value.writable = writable;
  return value;
}

inline SettingsFile File(std::vector<SavedValue> values) {
  SettingsFile file;
  file.values = std::move(values);
  return file;
}

/// A lidar of a model that ships, and what work on its settings needs.
class SettingsBench {
 private:
  const TestInstall install_;

 public:
  explicit SettingsBench(const std::string& name)
      : model(LoadLidarModel(ConfigFolder("./Config"), name)), device(name) {
    state.connected = true;
  }

  SettingsLidar lidar() { return {device, *model, state, failures, report}; }
  SettingsFile Read() {
    const SettingsReading reading = ReadSettings(lidar());
    EXPECT_EQ(reading.ended, "");
    return reading.file;
  }
  const VarInfo& operator[](const std::string& name) const { return FindVar(*model->table, name); }

  const std::shared_ptr<LidarModel> model;
  DeviceSender device;
  LinkState state;
  ReadFailures failures;
  RecordedReport report;
};
