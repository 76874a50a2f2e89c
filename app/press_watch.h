#pragma once

#include <QObject>

/// Tells of every press of a key or a mouse button in the program, before anybody has it. GUI
/// thread.
class PressWatch : public QObject {
  Q_OBJECT

 public:
  /// The application object has to exist.
  explicit PressWatch(QObject* parent = nullptr);
  bool eventFilter(QObject* watched, QEvent* event) override;

 signals:
  void pressed();
};
