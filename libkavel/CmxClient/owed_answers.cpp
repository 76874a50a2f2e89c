#include "CmxClient/owed_answers.h"

#include <algorithm>

#include "Wire/big_endian.h"

namespace kavel::lidar {

void OwedAnswers::Sent(Kind kind) {
  if (kind != Kind::kOther) {
    ++after_;
    may_count_ = true;
  }
  if (kind != Kind::kLiveness) {
    Strayed();
  }
}

void OwedAnswers::Strayed() {
  others_ = true;
  before_ += after_;
  after_ = 0;
}

void OwedAnswers::Answered(Kind kind) {
  if (kind == Kind::kLiveness) {
    CountLiveness();
    return;
  }
  others_ = false;
  before_ = 0;
  after_ = 0;
}

void OwedAnswers::CountLiveness() {
  if (!may_count_) {
    return;
  }
  may_count_ = false;
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
    if (header_.size() == layout_->size) {
      const uint64_t skipped = std::min<uint64_t>(payload_left_, static_cast<uint64_t>(end - data));
      payload_left_ -= skipped;
      data += skipped;
      EndFrame(liveness);
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
      payload_left_ = ReadBigEndian32(header_.data() + layout_->payload_length_at);
      EndFrame(liveness);
    }
  }
}

// Only a whole frame is an answer: the rest of its payload must not be taken for another one.
void OwedAnswers::EndFrame(uint8_t liveness) {
  if (payload_left_ > 0) {
    return;
  }
  if (header_[layout_->command_at] == liveness) {
    CountLiveness();
  }
  header_.clear();
}

void OwedAnswers::Forget() {
  header_.clear();
  payload_left_ = 0;
}

}  // namespace kavel::lidar
