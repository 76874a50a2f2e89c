#pragma once

#include <QObject>
#include <QString>

/// Puts text on the desktop's clipboard for the screens. GUI thread only.
class Clipboard : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  Q_INVOKABLE void Copy(const QString& text) const;
};
