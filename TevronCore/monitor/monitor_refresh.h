#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

#include "monitor/monitor_reader.h"
#include "session/lidar_model.h"
#include "session/stop_signal.h"

/// Reads the monitor page once a second while it is turned on, on a thread of its own: a silent
/// lidar holds up nobody else.
class MonitorRefresh {
 public:
  static constexpr std::chrono::seconds kInterval{1};

  /// Turned off at first. `reader` has to outlive the object; `tried` is called on its thread every
  /// second, whether the lidar was asked and answered or not, and must not destroy it.
  MonitorRefresh(const MonitorReader& reader, std::function<void()> tried);
  /// Waits for the thread, whose exchange in progress has to be ended by whoever owns the sender.
  ~MonitorRefresh();
  MonitorRefresh(const MonitorRefresh&) = delete;
  MonitorRefresh& operator=(const MonitorRefresh&) = delete;

  /// What is read from the next time on; null turns it off. The first reading is at once.
  void SetModel(std::shared_ptr<const LidarModel> model);

 private:
  void Run();

  const MonitorReader& reader_;
  const std::function<void()> tried_;
  StopSignal stop_;
  std::shared_ptr<const LidarModel> model_;  ///< guarded by stop_
  std::thread thread_;
};
