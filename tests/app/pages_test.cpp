#include <QApplication>
#include <QObject>
#include <QResource>
#include <QtQml>
#include <QtQuickTest>

#include "app/fake_manager.h"
#include "screen_types.h"
#include "startup.h"

/// Gives the tests of the page and of the link the compiled-in screens and a manager to play with.
class PagesSetup : public QObject {
  Q_OBJECT

 public slots:
  static void applicationAvailable() {
    Q_INIT_RESOURCE(resources);
    RegisterScreenTypes();
    qmlRegisterType<FakeManager>("TevronTest", 1, 0, "FakeManager");
    QApplication::setPalette(ApplicationPalette());
  }
};

QUICK_TEST_MAIN_WITH_SETUP(pages, PagesSetup)

#include "pages_test.moc"
