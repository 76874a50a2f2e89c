#include <QApplication>
#include <QObject>
#include <QResource>
#include <QtQuickTest>

#include "startup.h"

/// Gives the control tests the program's own palette and its compiled-in screens.
class ComponentSetup : public QObject {
  Q_OBJECT

 public slots:
  static void applicationAvailable() {
    Q_INIT_RESOURCE(resources);
    QApplication::setPalette(ApplicationPalette());
  }
};

QUICK_TEST_MAIN_WITH_SETUP(components, ComponentSetup)

#include "components_test.moc"
