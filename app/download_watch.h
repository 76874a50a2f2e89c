#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QUrl>

#include "downloads/download_status.h"

class TevronManager;

/// What the screens show of downloads: the folder that they go to, and how far that of the
/// operation log is. The manager announces its beginning and nothing of its progress, so that it is
/// looked at ten times a second while it runs, and not at all otherwise. GUI thread only.
class DownloadWatch : public QObject {
  Q_OBJECT
  /// The manager; anything else never downloads.
  Q_PROPERTY(QObject* manager READ manager WRITE SetManager NOTIFY managerChanged)
  /// Where downloads go, as a path; the one that was chosen last, also in an earlier session.
  Q_PROPERTY(QString folder READ folder NOTIFY folderChanged)
  Q_PROPERTY(QUrl folderUrl READ folder_url NOTIFY folderChanged)
  /// Why nothing can be saved there, a sentence; empty when it can.
  Q_PROPERTY(QString folderProblem READ folder_problem NOTIFY folderChanged)
  Q_PROPERTY(bool running READ running NOTIFY changed)
  Q_PROPERTY(bool cancelling READ cancelling NOTIFY changed)
  /// What is being fetched, and how much of it is there; empty while nothing runs.
  Q_PROPERTY(QString progress READ progress NOTIFY changed)
  /// From 0 to 1 over all parts; a part whose size is not known counts when it is there.
  Q_PROPERTY(double fraction READ fraction NOTIFY changed)

 public:
  explicit DownloadWatch(QObject* parent = nullptr);

  QObject* manager() const;
  void SetManager(QObject* manager);

  const QString& folder() const { return folder_; }
  QUrl folder_url() const { return QUrl::fromLocalFile(folder_); }
  const QString& folder_problem() const { return folder_problem_; }
  bool running() const { return now_.running; }
  bool cancelling() const { return now_.cancelling; }
  QString progress() const;
  double fraction() const;

  /// Takes the folder, given by its path or its URL, and remembers one that can be used.
  Q_INVOKABLE void ChooseFolder(const QString& text);
  /// Looks at the folder again, which may have vanished since: true when it can be used.
  Q_INVOKABLE bool LookAtFolder();
  /// Ends the download of the operation log.
  Q_INVOKABLE void Cancel();

 public slots:
  /// Looks now.
  void Look();

 signals:
  void managerChanged();
  void folderChanged();
  void changed();

 private:
  QPointer<TevronManager> manager_;
  QString folder_;
  QString folder_problem_;
  DownloadSnapshot now_;
  QTimer timer_;
};
