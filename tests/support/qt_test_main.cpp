#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <clocale>
#ifdef QT_WIDGETS_LIB
#include <QApplication>
using Application = QApplication;
#else
#include <QCoreApplication>
using Application = QCoreApplication;
#endif

// For tests that need an event loop, and a window where they link widgets. The home is thrown away
// at the end, so that the settings of whoever runs the program by hand are never touched.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const QTemporaryDir home;
  qputenv("HOME", home.path().toLocal8Bit());
  qputenv("XDG_CONFIG_HOME", (home.path() + "/.config").toLocal8Bit());
  qputenv("XDG_DATA_HOME", (home.path() + "/.local/share").toLocal8Bit());
  const Application application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  return RUN_ALL_TESTS();
}
