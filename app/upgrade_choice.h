#pragma once

#include <QObject>
#include <QString>
#include <QUrl>
#include <QVariantList>

/// The firmware file that the user has chosen, and what is wrong with it. GUI thread only.
class UpgradeChoice : public QObject {
  Q_OBJECT
  /// Empty while nothing is chosen.
  Q_PROPERTY(QUrl url READ url NOTIFY changed)
  /// The file's name without its folder, and its size in words; empty where it is not known.
  Q_PROPERTY(QString name READ name NOTIFY changed)
  Q_PROPERTY(QString size READ size NOTIFY changed)
  /// Why it cannot be sent, a sentence; empty when it can.
  Q_PROPERTY(QString problem READ problem NOTIFY changed)
  /// Whether the problem is that its URL does not end in ".patch", letter case included.
  Q_PROPERTY(bool misnamed READ misnamed NOTIFY changed)
  /// What a package holds: one text a component, with its size.
  Q_PROPERTY(QStringList components READ components NOTIFY changed)

 public:
  using QObject::QObject;

  const QUrl& url() const { return url_; }
  const QString& name() const { return name_; }
  const QString& size() const { return size_; }
  const QString& problem() const { return problem_; }
  bool misnamed() const { return misnamed_; }
  const QStringList& components() const { return components_; }

  /// Chooses the file and looks at it; with `package` as a package of components. True when it can
  /// be sent. A file that cannot stays chosen, so that its problem can be shown.
  Q_INVOKABLE bool Choose(const QUrl& url, bool package);
  /// Looks at the chosen file again: it may have changed since, or vanished.
  Q_INVOKABLE bool LookAgain();
  /// Chooses nothing.
  Q_INVOKABLE void Clear();

 signals:
  void changed();

 private:
  QUrl url_;
  bool package_ = false;
  QString name_;
  QString size_;
  QString problem_;
  bool misnamed_ = false;
  QStringList components_;
};
