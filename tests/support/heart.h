#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include "support/qt_wait_for.h"

/// Beats on the thread that makes it, which is the window's, and tells for how long something held
/// that thread. Made behind the application object.
class Heart {
 public:
  Heart() {
    QObject::connect(&timer_, &QTimer::timeout, [this] { Beat(); });
    timer_.start(5);
    since_beat_.start();
  }

  /// Says what the window is at from now on. What it is at with "" is not looked at.
  void Enter(const char* step) {
    Beat();
    step_ = step;
  }

  /// Lets it beat for a while.
  void Go() const {
    const int until = beats_ + 20;
    WaitFor([&] { return beats_ >= until; });
  }

  /// Forgets what was longest so far.
  void Forget() { longest_ms_ = 0; }

  qint64 longest_ms() const { return longest_ms_; }
  const char* where() const { return longest_step_; }

 private:
  void Beat() {
    ++beats_;
    const qint64 gap_ms = since_beat_.restart();
    if (gap_ms > longest_ms_ && *step_ != '\0') {
      longest_ms_ = gap_ms;
      longest_step_ = step_;
    }
  }

  QTimer timer_;
  QElapsedTimer since_beat_;
  int beats_ = 0;
  qint64 longest_ms_ = 0;
  const char* step_ = "";
  const char* longest_step_ = "";
};
