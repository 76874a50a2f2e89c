#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kavel::lidar {

/// Which piece of a firmware stream goes out next, and what the answers say of those on their way.
///
/// A piece may have several sendings, each with the number of its frame. The line keeps the order:
/// an answer to one sending shows that every earlier one has had its answer or never will. Pure,
/// and for one thread.
class StreamWindow {
 public:
  using Time = std::chrono::steady_clock::time_point;

  static constexpr size_t kMaxInFlight = 4;
  static constexpr int kMaxSendings = 4;

  /// Pieces are numbered from 1 to `piece_count`.
  explicit StreamWindow(uint32_t piece_count) : piece_count_(piece_count) {}

  /// The piece to send now: a lost one first. 0 when there is none, or one was lost for good.
  uint32_t Next() const;

  /// `piece` has left in frame `frame`, which has an answer by `due` or is lost.
  void Sent(uint32_t piece, uint8_t frame, Time due);

  /// Frame `frame` was answered with the number of its piece. True when the piece was on its way
  /// until now; false for a second answer, and for one that belongs to nothing sent here.
  bool Acknowledged(uint8_t frame, uint32_t piece);

  /// Frame `frame` was answered with `kDamagedPiece`.
  void Damaged(uint8_t frame);

  /// Whatever is due is lost. Returns the frames that were given up.
  std::vector<uint8_t> Expire(Time now);

  /// When the next of those on their way is due; far ahead when there is none.
  Time NextDue() const;

  bool Done() const { return flights_.empty() && next_ > piece_count_; }

  /// 0, or why a piece was lost for good: the reason of its last sending.
  int32_t failure() const { return failure_; }

 private:
  struct Sending {
    uint32_t piece = 0;
    uint64_t order = 0;  ///< from 1; 0: nothing was sent in this frame
  };
  struct Flight {
    uint32_t piece = 0;
    int sendings = 0;
    uint8_t frame = 0;   ///< of the last sending
    uint64_t order = 0;  ///< of the last sending
    Time due;
    bool lost = false;
  };

  void Lose(Flight& flight, int32_t reason);
  void LoseAllBefore(uint64_t order);

  const uint32_t piece_count_;
  uint32_t next_ = 1;
  uint64_t last_order_ = 0;
  std::vector<Flight> flights_;
  std::array<Sending, 256> by_frame_{};
  int32_t failure_ = 0;
};

}  // namespace kavel::lidar
