#pragma once

#include <QString>
#include <QTemporaryDir>

/// A throw-away install root with a copy of the tables that ship, and the current directory while
/// it lives: what the program finds under "./Config". One at a time.
class TestInstall {
 public:
  TestInstall();
  ~TestInstall();
  TestInstall(const TestInstall&) = delete;
  TestInstall& operator=(const TestInstall&) = delete;

  QString root() const { return root_.path(); }
  QString config() const { return root_.path() + "/Config"; }

  /// Writes a file under Config, in place of the one that ships.
  void Write(const QString& name, const QByteArray& content) const;
  /// The content of a file under Config.
  QByteArray Read(const QString& name) const;

 private:
  QTemporaryDir root_;
  QString previous_directory_;
};
