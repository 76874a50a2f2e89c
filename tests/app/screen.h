#pragma once

#include <QColor>
#include <QList>
#include <QQuickItem>
#include <QQuickView>
#include <QString>
#include <QUrl>

#include "support/qt_wait_for.h"
#include "support/test_install.h"
#include "tevron_manager.h"

/// The program's whole scene on a manager of its own, in a window that takes real mouse and key
/// events. One at a time; the settings file of the test's home is removed first.
class Screen {
 public:
  /// Opens the scene with the model `model` chosen, and waits until it is painted and active.
  explicit Screen(const QString& model = QStringLiteral("Orca"));

  /// Chooses a model, as the window does once nothing speaks against it.
  void Choose(const QString& model);

  /// The visible item with this object name, in the scene or in an open box; null without one.
  QQuickItem* Find(const QString& name) const;
  /// An object of the scene that is no visible item: a timer, a list of lines.
  QObject* FindObject(const QString& name) const;
  /// A property of the visible item `name`; invalid when there is no such item.
  QVariant Value(const QString& name, const char* property) const;
  QString Text(const QString& name) const { return Value(name, "text").toString(); }

  /// Clicks into the middle of the item, which has to be visible and enabled.
  void Click(const QString& name);
  void Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
  void Type(const QString& text);
  /// The name of the item that has the keyboard, and whether a mark in view says so.
  QString FocusName() const;
  bool IsFocusMarked() const;
  /// Drops files onto the item, as out of a file manager.
  void Drop(const QString& name, const QList<QUrl>& urls);
  /// Clicks into a field and types over what it holds, without leaving it.
  void TypeInto(const QString& name, const QString& text);

  /// Types address and port of a lidar on this machine, clicks Connect and waits for the lamp.
  bool ConnectTo(quint16 port);
  bool connected() const;
  QColor LampColor() const;

  /// The message of the box that is open; empty without one.
  QString BoxMessage() const;
  /// Waits for a box that holds `text`.
  bool WaitForBox(const QString& text) const;
  /// Waits for a notice of success that holds `text`.
  bool WaitForNotice(const QString& text) const;
  /// Waits for a box that holds `text`, and for its end after the button of this name was clicked;
  /// "Escape" presses that key, and "Enter" the other once the safe answer has the keyboard.
  bool Answer(const QString& text, const QString& by = QStringLiteral("dialogAccept"));
  /// Clicks the main button of the open box; false when another box is open after that.
  bool CloseBox();
  /// Asks the scene for something, as the window does.
  void Ask(const char* function) { QMetaObject::invokeMethod(view_.rootObject(), function); }
  /// Every line that the log window shows.
  QString LogText() const;

 private:
  TestInstall install_;
  TevronManager manager_;
  QQuickView view_;
};
