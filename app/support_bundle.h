#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>
#include <QVariantList>
#include <vector>

#include "support_bundle/support_bundle.h"

class TevronManager;

/// A support bundle, from what it would hold to the file. GUI thread only.
class SupportBundle : public QObject {
  Q_OBJECT
  /// The manager; with anything else nothing can be done.
  Q_PROPERTY(QObject* manager READ manager WRITE SetManager NOTIFY managerChanged)
  /// What was listed last: maps with "name", "what", "size" in words, and "leftOut", the reason why
  /// it is not packed; empty where it is.
  Q_PROPERTY(QVariantList entries READ entries NOTIFY listed)

 public:
  explicit SupportBundle(QObject* parent = nullptr);
  ~SupportBundle() override;

  QObject* manager() const;
  void SetManager(QObject* manager);
  QVariantList entries() const;

  /// Gathers what would be packed, the lines of `log` (a LogLines) among it, and tells by listed.
  /// A lidar that is connected is read first; when the user cancels that nothing is told.
  Q_INVOKABLE void List(QObject* log);
  /// A name for the file.
  Q_INVOKABLE QString SuggestedName() const;
  /// Writes what was listed. The manager tells how that went.
  Q_INVOKABLE void Save(const QUrl& file);

 signals:
  void managerChanged();
  void listed();

 private:
  void Take(const BundleSources& sources);

  QPointer<TevronManager> manager_;
  std::vector<BundleEntry> entries_;
};
