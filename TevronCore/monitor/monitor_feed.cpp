#include "monitor/monitor_feed.h"

#include <utility>

void MonitorFeed::Restart(std::vector<MonitorVariable> variables) {
  variables_ = std::move(variables);
  samples_.clear();
  first_ = 0;
  emit restarted();
}

void MonitorFeed::Add(MonitorSample sample) {
  constexpr int64_t kSetBackMs = 1000;
  if (!samples_.empty() && sample.time_ms <= samples_.back().time_ms) {
    if (samples_.back().time_ms - sample.time_ms > kSetBackMs) {
      Restart(variables_);
    } else {
      sample.time_ms = samples_.back().time_ms + 1;
    }
  }
  samples_.push_back(std::move(sample));
  const int64_t oldest_ms = samples_.back().time_ms - kSpanMs;
  while (samples_.size() > kMostSamples || samples_.front().time_ms < oldest_ms) {
    samples_.pop_front();
    ++first_;
  }
  emit sampled();
}

void MonitorFeed::SetRecording(const MonitorRecording& recording) {
  recording_ = recording;
  emit recordingChanged();
}
