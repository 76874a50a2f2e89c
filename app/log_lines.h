#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QTimer>
#include <deque>
#include <vector>

/// The lines of the log window, oldest first, at most kMaximumLines of them. Lines are taken in
/// bundles, so that a flood of raw bytes costs the window one update per bundle and not one per
/// line. GUI thread only.
class LogLines : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(int count READ count NOTIFY countChanged)

 public:
  static constexpr int kMaximumLines = 5000;

  enum Role {
    kTagRole = Qt::UserRole + 1,  ///< "tag": INFO, SUCCESS, WARNING, ERROR, CMX, BYTESFLOW …
    kTextRole,                    ///< "text": the message alone
    kTimeRole,                    ///< "time": local time of arrival, hh:mm:ss.zzz
    kLineRole,                    ///< "line": time, tag in brackets and message, as copied
  };

  explicit LogLines(QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;
  int count() const { return static_cast<int>(lines_.size()); }

  /// Adds one line with the tag `tag` (without brackets). It shows up within one bundle's time;
  /// when the log is full the oldest lines go. A failure that comes twice in a row within a bundle
  /// is one line: many are reported as a message and as a line.
  Q_INVOKABLE void Append(const QString& text, const QString& tag);
  /// Drops every line, also those that were not shown yet.
  Q_INVOKABLE void Clear();

 signals:
  void countChanged();

 private:
  struct Line {
    QString time;
    QString tag;
    QString text;
  };

  void ShowBundle();
  void DropOldest(int lines);

  std::deque<Line> lines_;
  std::vector<Line> bundle_;
  QTimer bundle_timer_;
};
