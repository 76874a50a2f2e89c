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
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopped_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void FactsReading::Request() { Require(Due::kNow); }

void FactsReading::RequestAfterRestart() { Require(Due::kAfterRestart); }

void FactsReading::Require(Due due) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    due_ = std::max(due_, due);  // a reading after the restart serves every other request too
  }
  changed_.notify_all();
}

void FactsReading::Run() {
  DeviceFacts facts;
  for (Due due = WaitForRequest(); due != Due::kNothing; due = WaitForRequest()) {
    if (due == Due::kAfterRestart) {
      WaitUntilBack();
    }
    facts = Maintenance({sender_.get(), state_, connect_type_}, *report_).ReadFacts(facts);
    done_(facts);
  }
}

FactsReading::Due FactsReading::WaitForRequest() {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return stopped_ || due_ != Due::kNothing; });
  return stopped_ ? Due::kNothing : std::exchange(due_, Due::kNothing);
}

void FactsReading::WaitUntilBack() {
  const auto patience_ends = std::chrono::steady_clock::now() + kRestartPatience;
  std::chrono::milliseconds pause = kRestartBegins;
  while (!StoppedWithin(pause) && std::chrono::steady_clock::now() < patience_ends) {
    if (LidarAnswers(*sender_)) {
      return;
    }
    pause = kRestartPoll;
  }
}

bool FactsReading::StoppedWithin(std::chrono::milliseconds duration) {
  std::unique_lock<std::mutex> lock(mutex_);
  return changed_.wait_for(lock, duration, [this] { return stopped_; });
}
