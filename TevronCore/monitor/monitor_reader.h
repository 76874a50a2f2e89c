#pragma once

#include <memory>
#include <string>

#include "pages/read_failures.h"
#include "session/current_sender.h"
#include "session/lidar_model.h"
#include "session/link_state.h"
#include "session/user_report.h"

/// Reads the monitor page over whatever connection there is at the time. Callable on any thread, on
/// several at once.
class MonitorReader {
 public:
  /// `sender`, `state` and `failures` have to outlive the reader.
  MonitorReader(const CurrentSender& sender, const LinkState& state, ReadFailures& failures,
                std::shared_ptr<UserReport> report)
      : sender_(sender), state_(state), failures_(failures), report_(std::move(report)) {}

  /// Takes the values of the page into the table of `model`. Empty when every one of them came;
  /// else why not, as the end of a sentence. Takes as long as the lidar's answers, and with a
  /// silent one no longer than two exchanges.
  std::string Read(const LidarModel& model, const char* caller) const;

 private:
  const CurrentSender& sender_;
  const LinkState& state_;
  ReadFailures& failures_;
  const std::shared_ptr<UserReport> report_;
};
