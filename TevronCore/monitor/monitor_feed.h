#pragma once

#include <QObject>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "monitor/monitor_sample.h"

/// The recording that runs, or the last one that did.
struct MonitorRecording {
  bool running = false;
  bool fresh = true;     ///< the last line holds what the lidar told just then
  std::string file;      ///< whole path; empty while nothing was recorded
  int64_t samples = 0;   ///< lines behind the header
  int seconds_left = 0;  ///< whole seconds, rounded up; 0 when it does not run
};

/// What the monitor page said over the last hour, for whoever draws it. TevronManager::Monitor()
/// gives the one of the program; it lives as long as the manager.
///
/// Every reading of the monitor page, whoever asked for it, becomes one sample. The first one that
/// brings nothing, and the loss of the link, become one as well, in which no value is fresh. For
/// the owner's thread (that of the manager), on which every signal is emitted after the change that
/// it tells.
class MonitorFeed : public QObject {
  Q_OBJECT

 public:
  /// Samples that are kept, and for how long. At one reading a second the hour counts.
  static constexpr size_t kMostSamples = 20000;
  static constexpr int64_t kSpanMs = int64_t{60} * 60 * 1000;

  using QObject::QObject;

  /// The variables of the monitor page that hold numbers, in page order; none without a monitor
  /// page.
  const std::vector<MonitorVariable>& variables() const { return variables_; }

  /// The samples are numbered from 0 since `restarted`. Those from begin() to before end() are
  /// held, in the order of their times, no two of which are the same.
  uint64_t begin() const { return first_; }
  uint64_t end() const { return first_ + samples_.size(); }
  /// `number` has to be one of these. Valid until the next signal.
  const MonitorSample& At(uint64_t number) const { return samples_[number - first_]; }

  const MonitorRecording& recording() const { return recording_; }

  // For the monitor itself.

  /// Begins anew, without samples.
  void Restart(std::vector<MonitorVariable> variables);
  /// Adds a reading. A clock that was set back by more than a second begins the samples anew, with
  /// the same variables.
  void Add(MonitorSample sample);
  void SetRecording(const MonitorRecording& recording);

 signals:
  /// Other variables (another model or hardware version), or the same without their samples.
  void restarted();
  /// end() has grown, begin() perhaps as well.
  void sampled();
  /// Once a line, at the beginning and at the end.
  void recordingChanged();

 private:
  std::vector<MonitorVariable> variables_;
  std::deque<MonitorSample> samples_;
  uint64_t first_ = 0;
  MonitorRecording recording_;
};
