#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Wire/cmx_header.h"

namespace kavel::lidar {

/// What a lidar may still send for commands that were given up: the bookkeeping behind
/// `CmxExchange`, which explains it.
///
/// Answers come in the order of their commands, each may be missing or come twice, and those to
/// liveness commands cannot be told apart. One that comes is therefore counted for the earliest
/// that it can belong to, and after a liveness command has left, only one is counted: a second one
/// may be a copy of the first.
class OwedAnswers {
 public:
  enum class Kind {
    kLiveness,  ///< all its answers say the same
    kSameCode,  ///< with the code of the liveness command, but not that command
    kOther
  };

  explicit OwedAnswers(const CmxHeaderLayout* layout) : layout_(layout) {}

  /// A command leaves.
  void Sent(Kind kind);
  /// Its answer is there, or for a liveness command one to any that was sent.
  void Answered(Kind kind);
  /// Bytes came, or are on their way, that are no answer.
  void Strayed();

  /// Since a liveness command left last, an answer to one has been counted.
  bool HasCounted() const { return !may_count_; }
  /// More may come than answers to liveness commands.
  bool Others() const { return others_; }
  /// Whether the answers to liveness commands that may still come can be told from that to a
  /// command of this kind.
  bool MayFollow(Kind kind) const { return kind != Kind::kSameCode || before_ + after_ == 0; }

  /// Looks through bytes that nobody waits for and counts the whole answers to `liveness` among
  /// them. A frame may be spread over any number of calls, until `Forget`.
  void LookThrough(const uint8_t* data, size_t size, uint8_t liveness);
  /// What comes next does not continue the bytes that were looked through.
  void Forget();

 private:
  void CountLiveness();
  void EndFrame(uint8_t liveness);

  const CmxHeaderLayout* const layout_;
  bool others_ = false;
  size_t before_ = 0;  ///< answers to liveness commands in front of the last of the others
  size_t after_ = 0;   ///< and behind it
  bool may_count_ = false;
  std::vector<uint8_t> header_;
  uint64_t payload_left_ = 0;
};

}  // namespace kavel::lidar
