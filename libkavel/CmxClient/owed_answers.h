#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Wire/cmx_header.h"

namespace kavel::lidar {

/// What a lidar may still send for commands that were given up: the bookkeeping behind
/// `CmxExchange`, which explains it.
///
/// Answers come in the order of their commands, each may be missing, and those to liveness commands
/// cannot be told apart. One that comes is therefore booked to the earliest that it can belong to.
class OwedAnswers {
 public:
  explicit OwedAnswers(const CmxHeaderLayout* layout) : layout_(layout) {}

  /// A command leaves.
  void Sent(bool is_liveness);
  /// Its answer is there: nothing that was sent before it is owed any more.
  void Answered(bool is_liveness);
  /// An answer to an earlier liveness command is there.
  void LivenessAnswered();
  /// Bytes came, or are on their way, that are no answer.
  void Strayed() { others_ = true; }

  bool None() const { return !others_ && before_ + after_ == 0; }
  /// All that may come is answers to liveness commands.
  bool OnlyLiveness() const { return !others_; }

  /// Looks through bytes that nobody waits for and books the answers to `liveness` among them. A
  /// frame may be spread over any number of calls, until `Forget`.
  void LookThrough(const uint8_t* data, size_t size, uint8_t liveness);
  /// What comes next does not continue the bytes that were looked through.
  void Forget();

 private:
  void TakeHeader(uint8_t liveness);

  const CmxHeaderLayout* const layout_;
  bool others_ = false;  ///< something else than answers to liveness commands
  size_t before_ = 0;    ///< liveness commands sent before the last other command
  size_t after_ = 0;     ///< and after it
  std::vector<uint8_t> header_;
  uint64_t payload_left_ = 0;
};

}  // namespace kavel::lidar
