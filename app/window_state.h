#pragma once

#include <QObject>
#include <QString>

/// How the user has left the areas of the window: which of them are folded, and how large the open
/// ones are. Kept in the settings file across starts; every change is written at once, and one that
/// cannot be written holds until the program ends. GUI thread only.
class WindowState : public QObject {
  Q_OBJECT
  /// At the first start both are folded: the page has the room.
  Q_PROPERTY(bool consoleFolded READ console_folded WRITE SetConsoleFolded NOTIFY changed)
  Q_PROPERTY(bool logFolded READ log_folded WRITE SetLogFolded NOTIFY changed)
  /// Pixels of the open area; 0 as long as the user has chosen no size.
  Q_PROPERTY(int consoleWidth READ console_width WRITE SetConsoleWidth NOTIFY changed)
  Q_PROPERTY(int logHeight READ log_height WRITE SetLogHeight NOTIFY changed)

 public:
  explicit WindowState(QObject* parent = nullptr);

  bool console_folded() const { return console_folded_; }
  bool log_folded() const { return log_folded_; }
  int console_width() const { return console_width_; }
  int log_height() const { return log_height_; }
  void SetConsoleFolded(bool folded);
  void SetLogFolded(bool folded);
  void SetConsoleWidth(int pixels);
  void SetLogHeight(int pixels);

 signals:
  void changed();

 private:
  template <class Value>
  void Change(Value* member, Value value, const char* key);

  bool console_folded_;
  bool log_folded_;
  int console_width_;
  int log_height_;
};
