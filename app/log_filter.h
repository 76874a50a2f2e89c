#pragma once

#include <QSortFilterProxyModel>
#include <QString>
#include <QStringList>

#include "log_lines.h"

/// The lines of a LogLines that carry a shown tag and contain a text. GUI thread only.
class LogFilter : public QSortFilterProxyModel {
  Q_OBJECT
  Q_PROPERTY(LogLines* lines READ lines WRITE SetLines NOTIFY linesChanged)
  Q_PROPERTY(QString text READ text WRITE SetText NOTIFY filterChanged)
  Q_PROPERTY(QStringList hiddenTags READ hidden_tags WRITE SetHiddenTags NOTIFY filterChanged)

 public:
  explicit LogFilter(QObject* parent = nullptr);

  LogLines* lines() const;
  /// Shows the lines of `lines`, which stays the caller's and may be null.
  void SetLines(LogLines* lines);
  const QString& text() const { return text_; }
  /// Shows only lines whose message contains `text`, in any letter case; empty shows all.
  void SetText(const QString& text);
  const QStringList& hidden_tags() const { return hidden_tags_; }
  /// Leaves out the lines with these tags (written without brackets).
  void SetHiddenTags(const QStringList& tags);

  /// Every shown line with time and tag, each ended by a line feed.
  Q_INVOKABLE QString ShownText() const { return TextOf(0, rowCount() - 1); }
  /// The shown lines from row `first` to row `last`, in the same way.
  QString TextOf(int first, int last) const;
  /// The row of the last shown line with this tag; -1 when there is none.
  Q_INVOKABLE int LastRowOf(const QString& tag) const;

 signals:
  void linesChanged();
  void filterChanged();

 protected:
  bool filterAcceptsRow(int source_row, const QModelIndex& source_parent) const override;

 private:
  QString text_;
  QStringList hidden_tags_;
};
