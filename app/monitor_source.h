#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <thread>

#include "monitor/monitor_feed.h"
#include "monitor/monitor_file.h"
#include "plot/plot_data.h"

/// What the monitor's screen draws: the values that the lidar tells, and those of a recording that
/// was opened. GUI thread only; a recording is read on a thread of its own, for which the
/// destructor waits.
class MonitorSource : public QObject {
  Q_OBJECT
  /// The program's TevronManager, whose Monitor() is shown; with any other object there are no
  /// values of a lidar.
  Q_PROPERTY(QObject* manager READ manager WRITE SetManager NOTIFY managerChanged)
  /// What the lidar tells.
  Q_PROPERTY(PlotData* live READ live CONSTANT)
  /// What the opened recording holds.
  Q_PROPERTY(PlotData* recorded READ recorded CONSTANT)
  /// Samples of each that lie further apart than this are not joined by a line, in milliseconds.
  Q_PROPERTY(double recordedBridge READ recorded_bridge NOTIFY opened)
  Q_PROPERTY(double liveBridge READ live_bridge CONSTANT)
  /// The name of the opened recording, without its folder; empty when none is open.
  Q_PROPERTY(QString openFile READ open_file NOTIFY opened)
  /// What was left out of it, one sentence each.
  Q_PROPERTY(QStringList faults READ faults NOTIFY opened)
  /// Whether a recording is being read.
  Q_PROPERTY(bool opening READ opening NOTIFY openingChanged)
  /// Of the recording that is being written: its path, lines so far, whole seconds left, and
  /// whether the last line holds what the lidar told just then.
  Q_PROPERTY(QString recordFile READ record_file NOTIFY recordingChanged)
  Q_PROPERTY(int recordSamples READ record_samples NOTIFY recordingChanged)
  Q_PROPERTY(int recordSecondsLeft READ record_seconds_left NOTIFY recordingChanged)
  Q_PROPERTY(bool recordFresh READ record_fresh NOTIFY recordingChanged)

 public:
  explicit MonitorSource(QObject* parent = nullptr);
  ~MonitorSource() override;

  QObject* manager() const { return manager_; }
  void SetManager(QObject* manager);
  /// The same for a feed by itself, which may be null.
  void SetFeed(MonitorFeed* feed);

  PlotData* live() { return &live_; }
  PlotData* recorded() { return &recorded_; }
  double recorded_bridge() const { return recorded_bridge_ms_; }
  static double live_bridge() { return kLiveBridgeMs; }
  const QString& open_file() const { return open_file_; }
  const QStringList& faults() const { return faults_; }
  bool opening() const { return opening_; }
  QString record_file() const;
  int record_samples() const { return static_cast<int>(recording().samples); }
  int record_seconds_left() const { return recording().seconds_left; }
  bool record_fresh() const { return recording().fresh; }

  /// Whether `live` holds the row of a page that is captioned so.
  Q_INVOKABLE bool Draws(const QString& caption) const;

  /// Reads a recording; opened() or failed() tells how it went. Does nothing while another one is
  /// being read.
  Q_INVOKABLE void Open(const QUrl& url);
  /// Lets go of the opened recording.
  Q_INVOKABLE void Close();

 signals:
  void managerChanged();
  void recordingChanged();
  void openingChanged();
  void opened();
  void failed(const QString& reason);

 private:
  // The page in view is read every three seconds; two readings may fail before a line breaks off.
  static constexpr double kLiveBridgeMs = 10000;

  const MonitorRecording& recording() const;
  void TakeVariables();
  void TakeSamples();
  void TakeFile(const QString& name, const MonitorFile& file);
  void EndReading();

  QPointer<QObject> manager_;
  QPointer<MonitorFeed> feed_;
  uint64_t taken_ = 0;  ///< the number of the next sample of the feed
  PlotData live_;
  PlotData recorded_;
  double recorded_bridge_ms_ = kLiveBridgeMs;
  QString open_file_;
  QStringList faults_;
  bool opening_ = false;
  std::thread reading_;
};
