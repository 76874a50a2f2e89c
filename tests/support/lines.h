#pragma once

#include <string>
#include <vector>

#include "CmxClient/log_sink.h"

/// Keeps the lines that it is handed, in order. For one thread.
struct CollectedLines : kavel::lidar::LogSink {
  void WriteLine(const std::string& line) override { lines.push_back(line); }

  std::vector<std::string> lines;
};
