#pragma once

#include <atomic>
#include <string>

#include "CmxClient/log_sink.h"
#include "session/user_report.h"

/// Shows the raw bytes of every exchange in the log window while the user wants to see them.
///
/// Given to a client as its log sink. All members may be called on any thread; `report` has to
/// outlive the sink.
class ByteFlowSink : public kavel::lidar::LogSink {
 public:
  explicit ByteFlowSink(UserReport& report) : report_(report) {}

  /// Off until switched on.
  void SetOn(bool on) { on_ = on; }
  bool IsOn() const { return on_; }

  /// How many commands were shown since the start of the program: the "SEND: " lines let through.
  int CommandCount() const { return command_count_; }

  void WriteLine(const std::string& line) override;

 private:
  UserReport& report_;
  std::atomic<bool> on_{false};
  std::atomic<int> command_count_{0};
};

/// While one lives, the exchanges of its own thread stay out of every ByteFlowSink; other threads'
/// are shown as before. For the periodic link check, which would flood the log.
class ByteFlowMute {
 public:
  ByteFlowMute();
  ~ByteFlowMute();
  ByteFlowMute(const ByteFlowMute&) = delete;
  ByteFlowMute& operator=(const ByteFlowMute&) = delete;
};
