#include "connection/connection_settings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <fstream>

namespace {

class ConnectionSettingsTest : public testing::Test {
 protected:
  ConnectionSettings Load(const QString& path) { return LoadConnectionSettings(path, &fault_); }

  std::string fault_;
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
  const ConnectionSettings read = Load(path_);
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
  EXPECT_EQ(2400, Load(path_).udp_port);
}

TEST_F(ConnectionSettingsTest, WhatCannotBeReadLeavesTheDefaults) {
  QSettings(path_, QSettings::IniFormat).setValue("point_cloud_baudrate", "fast");
  EXPECT_EQ(3000000, Load(path_).point_cloud_baud_rate_bps);
  for (const int port : {-1, 0, 65536}) {
    QSettings(path_, QSettings::IniFormat).setValue("udp_port", port);
    EXPECT_EQ(2368, Load(path_).udp_port) << port;
  }
  EXPECT_EQ(fault_, "");
  EXPECT_FALSE(SaveConnectionSettings("/proc/none/settings.ini", {}, "Orca"));
}

TEST_F(ConnectionSettingsTest, AFileThatIsNoneLeavesTheDefaultsAndIsTold) {
  const QString path = folder_.filePath("bad.ini");
  const std::string bad[] = {"device_ip_address=10.0.0.7\n[unterminated\nno pair here\n",
                             "device_ip_address=10.0.0.7\n" + std::string(64 * 1024, '\n')};
  for (const std::string& content : bad) {
    std::ofstream(path.toStdString()) << content;
    EXPECT_EQ(Load(path).lidar_ip, "192.168.1.201");
    EXPECT_NE(fault_.find(path.toStdString()), std::string::npos);
    fault_.clear();
    QFile::remove(path);
  }
  ASSERT_EQ(mkfifo(path.toLocal8Bit(), 0600), 0);  // would wait for a writer for ever
  Load(path);
  EXPECT_NE(fault_, "");
  EXPECT_FALSE(SaveConnectionSettings(path, {}, "Orca"));
}

TEST_F(ConnectionSettingsTest, OnlyPlainTextsAreTaken) {
  const QString path = folder_.filePath("typed.ini");
  std::ofstream(path.toStdString())
      << "[General]\ndevice_ip_address=@Variant(\\0\\0\\0\\x7f)\nrs485_com=\"\\x40Variant(x)\"\n"
         "rs232_com=a, b\ncmx_port=\"@@\\xe4\\\\\"\n[cmx_client_host_port]\nOrca%202=5555\n";
  const ConnectionSettings read = Load(path);
  EXPECT_EQ(read.lidar_ip, "192.168.1.201");
  EXPECT_EQ(read.serial_port_485, "/dev/ttyUSB0");
  EXPECT_EQ(read.serial_port_232, "/dev/ttyUSB1");
  EXPECT_EQ(read.command_port, "@\u00e4\\");
  EXPECT_EQ(LoadHostPort(path, "Orca 2"), "5555");
  // What is written can be read by any reader of such files, and nothing that was plain is lost.
  ASSERT_TRUE(SaveConnectionSettings(path, read, "Orca"));
  const QString copy = folder_.filePath("copy.ini");
  ASSERT_TRUE(QFile::copy(path, copy));
  const QSettings other(copy, QSettings::IniFormat);
  EXPECT_EQ(other.value("cmx_port").toString(), QString::fromUtf8("@\u00e4\\"));
  EXPECT_EQ(other.value("cmx_client_host_port/Orca 2").toString(), "5555");
}

}  // namespace
