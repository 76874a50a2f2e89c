#include "CmxClient/owed_answers.h"

#include <algorithm>

#include "Wire/big_endian.h"

namespace kavel::lidar {

void OwedAnswers::Sent(bool is_liveness) {
  if (is_liveness) {
    ++after_;
    return;
  }
  others_ = true;
  before_ += after_;
  after_ = 0;
}

void OwedAnswers::Answered(bool is_liveness) {
  if (is_liveness) {
    LivenessAnswered();
    return;
  }
  others_ = false;
  before_ = 0;
  after_ = 0;
}

void OwedAnswers::LivenessAnswered() {
  if (before_ > 0) {
    --before_;
  } else if (after_ > 0) {
    --after_;
    others_ = false;
  }
}

void OwedAnswers::LookThrough(const uint8_t* data, size_t size, uint8_t liveness) {
  const uint8_t* const end = data + size;
  while (data != end) {
    if (payload_left_ > 0) {
      const uint64_t skipped = std::min<uint64_t>(payload_left_, static_cast<uint64_t>(end - data));
      payload_left_ -= skipped;
      data += skipped;
      continue;
    }
    if (header_.empty()) {
      data = FindCmxHeader(*layout_, data, end);
      if (data == end) {
        return;
      }
    }
    header_.push_back(*data++);
    // The first byte of an identifier may have been followed by anything, another first byte too.
    if (header_.size() == 2 && header_[1] != layout_->identifier_2) {
      header_.clear();
      --data;
    }
    if (header_.size() == layout_->size) {
      TakeHeader(liveness);
    }
  }
}

void OwedAnswers::TakeHeader(uint8_t liveness) {
  payload_left_ = ReadBigEndian32(header_.data() + layout_->payload_length_at);
  if (header_[layout_->command_at] == liveness) {
    LivenessAnswered();
  }
  header_.clear();
}

void OwedAnswers::Forget() {
  header_.clear();
  payload_left_ = 0;
}

}  // namespace kavel::lidar
