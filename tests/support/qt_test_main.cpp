#include <gtest/gtest.h>

#include <clocale>
#ifdef QT_WIDGETS_LIB
#include <QApplication>
using Application = QApplication;
#else
#include <QCoreApplication>
using Application = QCoreApplication;
#endif

#include "support/throwaway_home.h"

// For tests that need an event loop, and a window where they link widgets.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const ThrowawayHome home;
  const Application application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  return RUN_ALL_TESTS();
}
