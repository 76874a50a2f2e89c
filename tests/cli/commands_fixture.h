#pragma once

#include <gtest/gtest.h>

#include "cli/tevronctl_process.h"
#include "support/test_install.h"
#include "support/virtual_lidar_process.h"

/// Commands over a throw-away install root.
class Commands : public testing::Test {
 protected:
  static QStringList At(const VirtualLidarProcess& lidar, const QString& model = "Orca") {
    return {"--model", model, "--host", "127.0.0.1:" + QString::number(lidar.port())};
  }
  static QJsonObject ValueOf(const Tevronctl& ended, const QString& name) {
    const QJsonArray values = ended.Json()["values"].toArray();
    for (const QJsonValue& value : values) {
      if (value["name"] == name) {
        return value.toObject();
      }
    }
    return {};
  }

  TestInstall install_;
};
