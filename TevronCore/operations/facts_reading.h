#pragma once

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "CmxClient/command_sender.h"
#include "operations/device_facts.h"
#include "operations/link_state.h"
#include "operations/user_report.h"

/// Reads once what a serial-attached lidar says about itself, on a thread of its own: over a slow
/// line this takes too long for the window to wait.
class FactsReading {
 public:
  /// Starts at once. `state` has to outlive the object; `done` is called on the reading thread and
  /// must not destroy the object.
  FactsReading(std::shared_ptr<kavel::lidar::CommandSender> sender, const LinkState& state,
               int connect_type, std::shared_ptr<UserReport> report,
               std::function<void(DeviceFacts)> done);
  /// Waits for the thread, whose exchange in progress has to be ended by whoever owns the sender.
  ~FactsReading();
  FactsReading(const FactsReading&) = delete;
  FactsReading& operator=(const FactsReading&) = delete;

 private:
  std::thread thread_;
};
