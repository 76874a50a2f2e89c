#pragma once

#include <QTemporaryDir>
#include <stdexcept>

/// A home that goes with its object, so that the settings of whoever runs a test by hand are never
/// touched. Made before there is an application.
class ThrowawayHome {
 public:
  ThrowawayHome() {
    if (!folder_.isValid()) {  // the paths below would be the machine's own
      throw std::runtime_error("cannot make a home: " + folder_.errorString().toStdString());
    }
    const QByteArray home = folder_.path().toLocal8Bit();
    qputenv("HOME", home);
    qputenv("XDG_CONFIG_HOME", home + "/.config");
    qputenv("XDG_DATA_HOME", home + "/.local/share");
  }

 private:
  const QTemporaryDir folder_;
};
