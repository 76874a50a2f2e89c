#pragma once

#include <QApplication>
#include <QObject>
#include <QResource>
#include <QtQml>

#include "app/fake_manager.h"
#include "screen_types.h"
#include "startup.h"
#include "support/throwaway_home.h"

/// Gives the Qt Quick tests the program's palette, its compiled-in screens, and a manager that only
/// takes notes.
class QuickSetup : public QObject {
  Q_OBJECT

 public slots:
  static void applicationAvailable() {
    Q_INIT_RESOURCE(resources);
    RegisterScreenTypes();
    qmlRegisterType<FakeManager>("TevronTest", 1, 0, "FakeManager");
    QApplication::setPalette(ApplicationPalette());
  }

 private:
  const ThrowawayHome home_;
};
