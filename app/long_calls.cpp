#include "long_calls.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QGuiApplication>
#include <QJSEngine>
#include <QQuickWindow>

namespace {

/// The user notices a wait of this length.
constexpr qint64 kLongMs = 150;

// What a window does when the screen is ready for its next frame.
void PaintNow() {
  for (QWindow* window : QGuiApplication::allWindows()) {
    if (window->isExposed() && qobject_cast<QQuickWindow*>(window) != nullptr) {
      QEvent frame(QEvent::UpdateRequest);
      QCoreApplication::sendEvent(window, &frame);
    }
  }
}

}  // namespace

void LongCalls::Run(const QJSValue& call) {
  if (was_long_) {
    SetWaiting(true);
    PaintNow();
  }
  QElapsedTimer time;
  time.start();
  const QJSValue result = QJSValue(call).call();
  was_long_ = time.elapsed() >= kLongMs;
  SetWaiting(false);
  if (result.isError()) {
    qjsEngine(this)->throwError(result.toString());
  }
}

void LongCalls::SetWaiting(bool waiting) {
  if (waiting != waiting_) {
    waiting_ = waiting;
    emit waitingChanged();
  }
}
