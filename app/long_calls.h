#pragma once

#include <QJSValue>
#include <QObject>

/// What the screens ask of the lidar while the window waits. A window that waits paints nothing, so
/// that it has to say beforehand that it will: when the call before took long, so will this one,
/// and the window is painted with `waiting` before it begins. With a lidar that answers at once it
/// costs nothing. GUI thread only.
class LongCalls : public QObject {
  Q_OBJECT
  /// A call runs of which that was known.
  Q_PROPERTY(bool waiting READ waiting NOTIFY waitingChanged)

 public:
  using QObject::QObject;

  bool waiting() const { return waiting_; }

  /// Calls the function `call`, and throws what it throws.
  Q_INVOKABLE void Run(const QJSValue& call);

 signals:
  void waitingChanged();

 private:
  void SetWaiting(bool waiting);

  bool waiting_ = false;
  bool was_long_ = false;  ///< the last call
};
