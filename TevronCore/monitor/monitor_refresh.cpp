#include "monitor/monitor_refresh.h"

#include <utility>

MonitorRefresh::MonitorRefresh(const MonitorReader& reader, std::function<void()> tried)
    : reader_(reader), tried_(std::move(tried)), thread_([this] { Run(); }) {}

MonitorRefresh::~MonitorRefresh() {
  stop_.Raise();
  thread_.join();
}

void MonitorRefresh::SetModel(std::shared_ptr<const LidarModel> model) {
  stop_.Tell([&] { model_ = std::move(model); });
}

void MonitorRefresh::Run() {
  std::shared_ptr<const LidarModel> model;
  const auto is_on = [&] {
    model = model_;
    return model != nullptr;
  };
  while (!stop_.WaitUntil(is_on)) {
    reader_.Read(*model, "MonitorRefresh");
    tried_();
    if (stop_.WaitFor(kInterval)) {
      return;
    }
  }
}
