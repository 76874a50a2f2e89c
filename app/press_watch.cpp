#include "press_watch.h"

#include <QCoreApplication>
#include <QEvent>

PressWatch::PressWatch(QObject* parent) : QObject(parent) {
  QCoreApplication::instance()->installEventFilter(this);
}

bool PressWatch::eventFilter(QObject* watched, QEvent* event) {
  // A window gets it first, and hands it to its items as other events.
  if (watched->isWindowType() &&
      (event->type() == QEvent::KeyPress || event->type() == QEvent::MouseButtonPress)) {
    emit pressed();
  }
  return false;
}
