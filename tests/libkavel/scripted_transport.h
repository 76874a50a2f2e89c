#pragma once

#include <algorithm>
#include <deque>
#include <new>

#include "CmxClient/client_base.h"
#include "support/bytes.h"

namespace kavel::lidar::testing {

/// A transport in memory. Each block is what one receive brings, so that a test decides where the
/// stream is cut; when none is left, a receive reports a time-out at once.
class ScriptedTransport : public ClientBase {
 public:
  std::deque<Bytes> waiting;  ///< there before the command leaves
  std::deque<Bytes> answer;   ///< arrives once it has left; an empty block: peer closed
  Bytes babble;               ///< what every receive brings when nothing else is left
  bool out_of_memory = false;
  int32_t short_by = 0;  ///< bytes that a send leaves unsent
  std::vector<Bytes> sent;
  std::vector<uint32_t> timeouts;  ///< receive time-outs in the order in which they were set
  size_t largest_receive = 0;

  bool Open(const std::string&, uint16_t, bool, const char*, const char*, const char*) override {
    return true;
  }
  bool TryOpen(uint16_t, const std::string&, uint16_t, bool, const char*, const char*, const char*,
               uint32_t) override {
    return true;
  }
  void Close() override { open_ = false; }
  bool IsOpened() override { return open_; }

  int32_t Send(uint8_t* data, uint16_t length, int32_t) override {
    sent.emplace_back(data, data + length);
    waiting.insert(waiting.end(), answer.begin(), answer.end());
    answer.clear();
    return length - short_by;
  }

  int32_t Receive(uint8_t* buffer, uint32_t length, int32_t) override {
    largest_receive = std::max<size_t>(largest_receive, length);
    if (out_of_memory) {
      throw std::bad_alloc();
    }
    if (waiting.empty() && babble.empty()) {
      return -1;
    }
    if (waiting.empty()) {
      waiting.push_back(babble);
    }
    Bytes& block = waiting.front();
    const size_t count = std::min<size_t>(block.size(), length);
    std::copy_n(block.begin(), count, buffer);
    block.erase(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(count));
    if (block.empty()) {
      waiting.pop_front();
    }
    return static_cast<int32_t>(count);
  }

  bool SetReceiveTimeout(uint32_t) override { return true; }
  int32_t SetTimeout(uint32_t recv_ms, uint32_t) override {
    timeouts.push_back(recv_ms);
    return 0;
  }
  void SetReceiveBufferSize(const uint32_t&) override {}

 private:
  bool open_ = true;
};

}  // namespace kavel::lidar::testing
