#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <clocale>

// For tests that need an event loop and no window. The home is thrown away at the end, so that the
// settings of whoever runs the program by hand are never touched.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const QTemporaryDir home;
  qputenv("HOME", home.path().toLocal8Bit());
  qputenv("XDG_CONFIG_HOME", (home.path() + "/.config").toLocal8Bit());
  qputenv("XDG_DATA_HOME", (home.path() + "/.local/share").toLocal8Bit());
  const QCoreApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  return RUN_ALL_TESTS();
}
