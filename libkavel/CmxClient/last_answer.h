#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace kavel::lidar {

/// Remembers the last answer, to tell when the next one may be a second copy of it: frames carry no
/// number, so that the answers to two requests of one command differ by their bytes alone.
class LastAnswer {
 public:
  /// Takes note of an answer. True when it may be a copy of the one before: the same bytes, though
  /// another request of the same command was sent.
  bool MayBeCopied(uint8_t cmd, const std::vector<uint8_t>& request,
                   const std::vector<uint8_t>& answer) {
    const LastAnswer before = *this;
    *this = LastAnswer(cmd, HashOf(request), HashOf(answer));
    return !answer.empty() && before.cmd_ == cmd_ && before.request_ != request_ &&
           before.answer_ == answer_;
  }

  LastAnswer() = default;

 private:
  LastAnswer(uint8_t cmd, size_t request, size_t answer)
      : cmd_(cmd), request_(request), answer_(answer) {}

  static size_t HashOf(const std::vector<uint8_t>& bytes) {
    const auto* const text = reinterpret_cast<const char*>(bytes.data());
    return std::hash<std::string_view>()({text, bytes.size()});
  }

  int cmd_ = -1;  ///< none yet
  size_t request_ = 0;
  size_t answer_ = 0;
};

}  // namespace kavel::lidar
