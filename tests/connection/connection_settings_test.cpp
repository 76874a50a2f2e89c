#include "connection/connection_settings.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <fstream>

namespace {

auto Fields(const ConnectionSettings& s) {
  return std::make_tuple(s.lidar_ip, s.command_port, s.serial_port_485, s.serial_port_232,
                         s.point_cloud_baud_rate_bps, s.udp_port, s.host_port);
}

class ConnectionSettingsTest : public testing::Test {
 protected:
  ConnectionSettings Load(const QString& path) { return LoadConnectionSettings(path, &fault_); }

  std::string fault_;
  QTemporaryDir folder_;
  const QString path_ = folder_.filePath("RecvSettings.ini");
};

TEST_F(ConnectionSettingsTest, AreKeptButForTheUdpPort) {
  EXPECT_TRUE(SettingsFilePath().endsWith("/CorvanViewDataFiles/RecvSettings.ini"));
  ConnectionSettings settings{"10.0.0.7", "9400", "COM3", "COM4", 1, 115200, 4000, "5555"};
  ASSERT_EQ(SaveConnectionSettings(path_, settings, "Osprey"), "");
  EXPECT_FALSE(QSettings(path_, QSettings::IniFormat).contains("udp_port"));
  settings.udp_port = 2368;
  settings.host_port = "ANY";
  EXPECT_EQ(Fields(Load(path_)), Fields(settings));
  EXPECT_EQ(LoadHostPort(path_, "Osprey"), "5555");
  EXPECT_EQ(LoadHostPort(path_, "Orca"), std::nullopt);

  QSettings(path_, QSettings::IniFormat).setValue("udp_port", 2400);
  ASSERT_EQ(SaveConnectionSettings(path_, {}, "Orca"), "");
  EXPECT_EQ(Load(path_).udp_port, 2400);
}

TEST_F(ConnectionSettingsTest, WhatCannotBeReadLeavesTheDefaults) {
  const auto expect_defaults = [this](const std::string& content, bool is_told) {
    std::ofstream(path_.toStdString()) << content;
    fault_.clear();
    EXPECT_EQ(Fields(Load(path_)), Fields(ConnectionSettings())) << content.substr(0, 50);
    EXPECT_EQ(fault_.find(path_.toStdString()) != std::string::npos, is_told) << fault_;
    EXPECT_EQ(SaveConnectionSettings(path_, {}, "Orca").empty(), !is_told) << "nothing is lost";
    QFile::remove(path_);
  };
  for (const char* value : {"udp_port=0", "udp_port=65536", "point_cloud_baudrate=fast"}) {
    expect_defaults(value, false);
  }
  expect_defaults("device_ip_address=10.0.0.7\n[unterminated\nno pair here\n", true);
  expect_defaults("device_ip_address=10.0.0.7\n" + std::string(65536, '\n'), true);
}

TEST_F(ConnectionSettingsTest, OnlyPlainTextsAreTaken) {
  std::ofstream(path_.toStdString())
      << "[General]\ndevice_ip_address=@Variant(\\0\\0\\0\\x7f)\nrs485_com=\"\\x40Variant(x)\"\n"
         "rs232_com=a, b\ncmx_port=\"@@\\xe4\\\\\"\n[cmx_client_host_port]\nOrca%202=5555\n";
  const ConnectionSettings read = Load(path_);
  EXPECT_EQ(read.lidar_ip, "192.168.1.201");
  EXPECT_EQ(read.serial_port_485, "/dev/ttyUSB0");
  EXPECT_EQ(read.serial_port_232, "/dev/ttyUSB1");
  EXPECT_EQ(read.command_port, "@\u00e4\\");
  EXPECT_EQ(LoadHostPort(path_, "Orca 2"), "5555");
  // What is written can be read by any reader of such files, and nothing that was plain is lost.
  ASSERT_EQ(SaveConnectionSettings(path_, read, "Orca"), "");
  const QString copy = folder_.filePath("copy.ini");
  ASSERT_TRUE(QFile::copy(path_, copy));
  const QSettings other(copy, QSettings::IniFormat);
  EXPECT_EQ(other.value("cmx_port").toString(), QString::fromUtf8("@\u00e4\\"));
  EXPECT_EQ(other.value("cmx_client_host_port/Orca 2").toString(), "5555");
}

}  // namespace
