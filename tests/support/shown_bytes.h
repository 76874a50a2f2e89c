#pragma once

#include <string>
#include <vector>

#include "CmxClient/byte_sink.h"

/// Keeps what it is told of exchanges, in the form in which it is shown. For one thread.
struct ShownBytes : kavel::lidar::ByteSink {
  void Sent(const Request&, const std::vector<uint8_t>& frame) override {
    lines.push_back(kavel::lidar::SentLine(frame));
  }
  void Received(const std::vector<uint8_t>& bytes) override {
    lines.push_back(kavel::lidar::ReceivedLine(bytes));
  }
  void Failed(int32_t error) override { lines.push_back(kavel::lidar::FailedLine(error)); }

  std::vector<std::string> lines;
};
