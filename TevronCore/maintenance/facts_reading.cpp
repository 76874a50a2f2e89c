#include "maintenance/facts_reading.h"

#include <algorithm>
#include <utility>

#include "connection/connection.h"
#include "maintenance/maintenance.h"

FactsReading::FactsReading(std::shared_ptr<kavel::lidar::CommandSender> sender,
                           const LinkState& state, ConnectType connect_type,
                           std::shared_ptr<UserReport> report,
                           std::function<void(DeviceFacts)> done)
    : sender_(std::move(sender)),
      state_(state),
      connect_type_(connect_type),
      report_(std::move(report)),
      done_(std::move(done)),
      thread_([this] { Run(); }) {}

FactsReading::~FactsReading() {
  stop_.Raise();
  thread_.join();
}

void FactsReading::Request() { Require(Due::kNow); }

void FactsReading::RequestQuietly() { Require(Due::kQuietly); }

void FactsReading::RequestAfterRestart() { Require(Due::kAfterRestart); }

void FactsReading::Require(Due due) {
  // A later reading, and one that is heard, serves every other request too.
  stop_.Tell([this, due] { due_ = std::max(due_, due); });
}

void FactsReading::Run() {
  DeviceFacts facts;
  Due due = Due::kNothing;
  const auto is_due = [this, &due] {
    due = std::exchange(due_, Due::kNothing);
    return due != Due::kNothing;
  };
  while (!stop_.WaitUntil(is_due)) {
    if (due == Due::kAfterRestart) {
      WaitUntilBack();
    }
    // The user has begun an upgrade meanwhile, and has not asked for facts that must wait for it.
    const bool is_quiet = due == Due::kQuietly || state_.upgrading;
    facts =
        Maintenance({sender_.get(), state_, connect_type_}, *report_).ReadFacts(facts, is_quiet);
    done_(facts);
  }
}

void FactsReading::WaitUntilBack() {
  const auto patience_ends = std::chrono::steady_clock::now() + kRestartPatience;
  std::chrono::milliseconds pause = kRestartBegins;
  while (!stop_.WaitFor(pause) && std::chrono::steady_clock::now() < patience_ends) {
    if (state_.upgrading || LidarAnswers(*sender_)) {
      return;
    }
    pause = kRestartPoll;
  }
}
