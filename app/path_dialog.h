#pragma once

#include <QFileDialog>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QUrl>

/// Lets the user choose a folder, an existing file or a file to write: with the desktop's own
/// dialog, or with one made of widgets where the desktop has none. The dialog of Qt.labs.platform
/// gives, in the second case, the folder around the one that was chosen. GUI thread only.
class PathDialog : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString title MEMBER title_)
  /// Where it starts; the chosen folder, or that of the chosen file, from then on.
  Q_PROPERTY(QUrl folder MEMBER folder_ NOTIFY folderChanged)
  /// Patterns of the files to choose from, such as "Texts (*.txt)"; without any, a folder is
  /// chosen.
  Q_PROPERTY(QStringList nameFilters MEMBER name_filters_)
  /// A name for a file to write, which may exist: the user is asked before one is overwritten.
  /// Needs name filters.
  Q_PROPERTY(QString saveName MEMBER save_name_)

 public:
  explicit PathDialog(QObject* parent = nullptr);
  ~PathDialog() override;

  /// Returns at once; does nothing while the dialog is open.
  Q_INVOKABLE void open();

 signals:
  void folderChanged();
  void chosen(const QUrl& url);

 private:
  void Take(const QUrl& url);

  QString title_;
  QUrl folder_;
  QStringList name_filters_;
  QString save_name_;
  QPointer<QFileDialog> dialog_;
};
