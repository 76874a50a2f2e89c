#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QTimer>
#include <deque>
#include <vector>

/// The lines of the log window, oldest first, at most kMaximumLines of them with at most
/// kMaximumLength characters. Lines are taken in bundles, so that a flood of raw bytes costs the
/// window one update per bundle and not one per line. GUI thread only.
class LogLines : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(int count READ count NOTIFY changed)
  /// The last message; raw bytes are none. Empty texts as long as there was none.
  Q_PROPERTY(QString lastTime READ last_time NOTIFY changed)
  Q_PROPERTY(QString lastTag READ last_tag NOTIFY changed)
  Q_PROPERTY(QString lastText READ last_text NOTIFY changed)
  Q_PROPERTY(bool hasErrors READ has_errors NOTIFY changed)
  /// Whether the user sees the lines; while that is so none of them counts as unseen.
  Q_PROPERTY(bool inView READ in_view WRITE SetInView NOTIFY changed)
  /// Warnings and errors that came since the lines were last in view, repeated ones each time.
  Q_PROPERTY(int unseenWarnings READ unseen_warnings NOTIFY changed)
  Q_PROPERTY(int unseenErrors READ unseen_errors NOTIFY changed)

 public:
  static constexpr int kMaximumLines = 5000;
  static constexpr int kMaximumLength = 4 * 1024 * 1024;  ///< of all messages together
  /// What a window lays out of one line; the rest is copied and saved all the same.
  static constexpr int kShownLength = 4096;

  enum Role {
    kTagRole = Qt::UserRole + 1,  ///< "tag": INFO, SUCCESS, WARNING, ERROR, CMX, BYTESFLOW …
    kTextRole,                    ///< "text": the message alone
    kTimeRole,                    ///< "time": local time of arrival, hh:mm:ss.zzz
    kLineRole,                    ///< "line": time, tag in brackets and message, as copied
    kShownRole,                   ///< "shown": time to the second, tag and message, shortened
  };

  explicit LogLines(QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;
  int count() const { return static_cast<int>(lines_.size()); }
  QString last_time() const { return last_.time.left(kShownTimeLength); }
  const QString& last_tag() const { return last_.tag; }
  QString last_text() const;
  bool has_errors() const { return errors_ > 0; }
  bool in_view() const { return in_view_; }
  void SetInView(bool in_view);
  int unseen_warnings() const { return unseen_warnings_; }
  int unseen_errors() const { return unseen_errors_; }

  /// Adds one line with the tag `tag` (without brackets). It shows up within one bundle's time;
  /// when the log is full the oldest lines go. A message that repeats the one before it is counted
  /// there ("x 12") and moves its time; raw bytes never are. A failure that comes twice in a row
  /// within a bundle is one: many are reported as a message and as a line.
  Q_INVOKABLE void Append(const QString& text, const QString& tag);
  /// Drops every line, also those that were not shown yet.
  Q_INVOKABLE void Clear();

 signals:
  void changed();

 private:
  static constexpr int kShownTimeLength = 8;

  struct Line {
    QString time;
    QString tag;
    QString text;
    int times = 1;
  };

  static bool IsError(const Line& line);
  void ShowBundle();
  void CountUnseen(const Line& line);
  void JoinRepetition();
  void MakeRoom(int lines, int length);

  std::deque<Line> lines_;
  std::vector<Line> bundle_;
  int length_ = 0;
  int bundle_length_ = 0;
  int errors_ = 0;  ///< lines of them, in lines_
  Line last_;
  bool in_view_ = false;
  int unseen_warnings_ = 0;
  int unseen_errors_ = 0;
  QTimer bundle_timer_;
};
