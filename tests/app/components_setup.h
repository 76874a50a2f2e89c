#pragma once

#include <QApplication>
#include <QObject>
#include <QResource>

#include "startup.h"

/// Gives the control tests the program's own palette and its compiled-in screens.
class ComponentSetup : public QObject {
  Q_OBJECT

 public slots:
  void applicationAvailable() {
    Q_INIT_RESOURCE(resources);
    QApplication::setPalette(ApplicationPalette());
  }
};
