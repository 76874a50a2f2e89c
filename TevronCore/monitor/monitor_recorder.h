#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "monitor/monitor_feed.h"
#include "monitor/monitor_reader.h"
#include "session/lidar_model.h"
#include "session/stop_signal.h"
#include "session/user_report.h"

/// One recording of the monitor page into a file, on a thread of its own: reads the page, writes
/// the values of its variables as a line, waits, until the time is over or it is told to stop. It
/// goes on without a connection, with the values as they stand. Each line is added whole or not at
/// all; the first that is not ends the recording.
class MonitorRecorder {
 public:
  struct Order {
    std::shared_ptr<const LidarModel> model;  ///< has a monitor page
    std::string file;                         ///< replaced when it exists
    std::chrono::seconds duration;
    std::chrono::seconds interval;  ///< between the end of one reading and the next
  };

  /// Called on the recorder's thread; must not destroy it.
  struct Handlers {
    std::function<void(const MonitorRecording&)> written;  ///< a line, or the header
    std::function<void()> ended;  ///< by itself or not: the file is closed, nothing else follows
  };

  /// Starts at once. `reader` has to outlive the object. What became of the file is told to
  /// `report`, after `ended`.
  MonitorRecorder(Order order, const MonitorReader& reader, std::shared_ptr<UserReport> report,
                  Handlers handlers);
  /// Stops it and waits for the thread, whose exchange in progress has to be ended by whoever owns
  /// the sender.
  ~MonitorRecorder();
  MonitorRecorder(const MonitorRecorder&) = delete;
  MonitorRecorder& operator=(const MonitorRecorder&) = delete;

  /// Ends the recording, as soon as an exchange in progress has ended. Does not wait.
  void Stop() { stop_.Raise(); }

 private:
  enum class End { kSaved, kNotCreated, kNotWritten };

  void Run();
  End Record();
  void Read();
  std::string Line() const;
  bool IsOver(std::chrono::steady_clock::time_point end) const;

  const Order order_;
  const MonitorReader& reader_;
  const std::shared_ptr<UserReport> report_;
  const Handlers handlers_;
  const std::vector<const VarInfo*> vars_;
  MonitorRecording recording_;  ///< of the recorder's thread, as problem_ is
  std::string problem_;         ///< why the file could not be written; "" when it could
  StopSignal stop_;
  std::thread thread_;
};
