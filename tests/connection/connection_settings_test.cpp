#include "connection/connection_settings.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

namespace {

class ConnectionSettingsTest : public testing::Test {
 protected:
  QTemporaryDir folder_;
  const QString path_ = folder_.filePath("CorvanViewDataFiles/RecvSettings.ini");
};

TEST_F(ConnectionSettingsTest, AreKeptButForTheUdpPort) {
  EXPECT_TRUE(SettingsFilePath().endsWith("/CorvanViewDataFiles/RecvSettings.ini"));
  ConnectionSettings settings;
  settings.lidar_ip = "10.0.0.7";
  settings.command_port = "9400";
  settings.point_cloud_baud_rate_bps = 1;
  settings.serial_port_485 = "COM3";
  settings.serial_port_232 = "COM4";
  settings.udp_port = 4000;
  settings.host_port = "5555";
  ASSERT_TRUE(SaveConnectionSettings(path_, settings, "Osprey"));

  EXPECT_FALSE(QSettings(path_, QSettings::IniFormat).contains("udp_port"));
  const ConnectionSettings read = LoadConnectionSettings(path_);
  EXPECT_EQ("10.0.0.7", read.lidar_ip);
  EXPECT_EQ("9400", read.command_port);
  EXPECT_EQ(1, read.point_cloud_baud_rate_bps);
  EXPECT_EQ(2368, read.udp_port);
  EXPECT_EQ("COM3", read.serial_port_485);
  EXPECT_EQ("COM4", read.serial_port_232);
  EXPECT_EQ("5555", LoadHostPort(path_, "Osprey"));
  EXPECT_EQ(std::nullopt, LoadHostPort(path_, "Orca"));

  QSettings(path_, QSettings::IniFormat).setValue("udp_port", 2400);
  ASSERT_TRUE(SaveConnectionSettings(path_, {}, "Orca"));
  EXPECT_EQ(2400, LoadConnectionSettings(path_).udp_port);
}

TEST_F(ConnectionSettingsTest, WhatCannotBeReadLeavesTheDefaults) {
  QSettings(path_, QSettings::IniFormat).setValue("point_cloud_baudrate", "fast");
  EXPECT_EQ(3000000, LoadConnectionSettings(path_).point_cloud_baud_rate_bps);
  for (const int port : {-1, 0, 65536}) {
    QSettings(path_, QSettings::IniFormat).setValue("udp_port", port);
    EXPECT_EQ(2368, LoadConnectionSettings(path_).udp_port) << port;
  }
  QFile file(folder_.filePath("broken.ini"));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("device_ip_address=10.0.0.7\n[unterminated\nno pair here\n");
  file.close();
  EXPECT_EQ("192.168.1.201", LoadConnectionSettings(file.fileName()).lidar_ip);
  EXPECT_FALSE(SaveConnectionSettings("/proc/none/settings.ini", {}, "Orca"));
}

}  // namespace
