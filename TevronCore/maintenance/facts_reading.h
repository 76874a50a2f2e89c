#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

#include "CmxClient/command_sender.h"
#include "maintenance/device_facts.h"
#include "session/link_state.h"
#include "session/stop_signal.h"
#include "session/user_report.h"

/// Reads on request what a serial-attached lidar says about itself, on a thread of its own: over a
/// slow line this takes too long for the window to wait.
class FactsReading {
 public:
  /// A lidar that restarts is left alone this long: it may still answer before it goes down.
  static constexpr std::chrono::milliseconds kRestartBegins{1000};
  /// Pause between two looks whether it is back.
  static constexpr std::chrono::milliseconds kRestartPoll{500};
  /// After this it is asked all the same, so that the user hears that it is silent.
  static constexpr std::chrono::seconds kRestartPatience{30};

  /// Reads nothing before the first request. `state` has to outlive the object; `done` is called on
  /// the reading thread after each reading, with what could not be read as it was before, and must
  /// not destroy the object.
  FactsReading(std::shared_ptr<kavel::lidar::CommandSender> sender, const LinkState& state,
               ConnectType connect_type, std::shared_ptr<UserReport> report,
               std::function<void(DeviceFacts)> done);
  /// Waits for the thread, whose exchange in progress has to be ended by whoever owns the sender.
  ~FactsReading();
  FactsReading(const FactsReading&) = delete;
  FactsReading& operator=(const FactsReading&) = delete;

  /// Reads as soon as the reading in progress, if any, is over. Requests that come meanwhile are
  /// answered by one reading.
  void Request();
  /// The same, but failures go to the log alone: the user has asked for something else.
  void RequestQuietly();
  /// As Request, once the lidar is back from a restart that has just been ordered.
  void RequestAfterRestart();

 private:
  enum class Due { kNothing, kQuietly, kNow, kAfterRestart };

  void Require(Due due);
  void Run();
  void WaitUntilBack();

  const std::shared_ptr<kavel::lidar::CommandSender> sender_;
  const LinkState& state_;
  const ConnectType connect_type_;
  const std::shared_ptr<UserReport> report_;
  const std::function<void(DeviceFacts)> done_;
  StopSignal stop_;
  Due due_ = Due::kNothing;  ///< what stop_ tells
  std::thread thread_;
};
