#include "CmxClient/stream_window.h"

#include <algorithm>

#include "CmxClient/command_sender.h"
#include "Wire/return_code.h"

namespace kavel::lidar {

uint32_t StreamWindow::Next() const {
  if (failure_ != 0) {
    return 0;
  }
  for (const Flight& flight : flights_) {
    if (flight.lost) {
      return flight.piece;
    }
  }
  return flights_.size() < kMaxInFlight && next_ <= piece_count_ ? next_ : 0;
}

void StreamWindow::Sent(uint32_t piece, uint8_t frame, Time due) {
  const auto is_piece = [piece](const Flight& flight) { return flight.piece == piece; };
  auto flight = std::find_if(flights_.begin(), flights_.end(), is_piece);
  if (flight == flights_.end()) {
    flights_.emplace_back();
    flight = flights_.end() - 1;
    flight->piece = piece;
    next_ = piece + 1;
  }
  ++flight->sendings;
  flight->frame = frame;
  flight->order = ++last_order_;
  flight->due = due;
  flight->lost = false;
  by_frame_[frame] = {piece, last_order_};
}

bool StreamWindow::Acknowledged(uint8_t frame, uint32_t piece) {
  const Sending sending = by_frame_[frame];
  if (sending.order == 0 || sending.piece != piece) {
    return false;
  }
  const auto is_piece = [piece](const Flight& flight) { return flight.piece == piece; };
  const auto flight = std::find_if(flights_.begin(), flights_.end(), is_piece);
  const bool is_news = flight != flights_.end();
  if (is_news) {
    flights_.erase(flight);
  }
  LoseAllBefore(sending.order);
  return is_news;
}

void StreamWindow::Damaged(uint8_t frame) {
  const Sending sending = by_frame_[frame];
  if (sending.order == 0) {
    return;
  }
  for (Flight& flight : flights_) {
    // A newer sending of the piece may still do.
    if (flight.order == sending.order) {
      Lose(flight, kDamagedPiece);
    }
  }
  LoseAllBefore(sending.order);
}

std::vector<uint8_t> StreamWindow::Expire(Time now) {
  std::vector<uint8_t> given_up;
  for (Flight& flight : flights_) {
    if (!flight.lost && flight.due <= now) {
      Lose(flight, kNoReply);
      given_up.push_back(flight.frame);
    }
  }
  return given_up;
}

StreamWindow::Time StreamWindow::NextDue() const {
  Time next = Time::max();
  for (const Flight& flight : flights_) {
    if (!flight.lost) {
      next = std::min(next, flight.due);
    }
  }
  return next;
}

void StreamWindow::LoseAllBefore(uint64_t order) {
  for (Flight& flight : flights_) {
    if (flight.order < order) {
      Lose(flight, kNoReply);
    }
  }
}

void StreamWindow::Lose(Flight& flight, int32_t reason) {
  if (flight.lost) {
    return;
  }
  flight.lost = true;
  if (flight.sendings == kMaxSendings && failure_ == 0) {
    failure_ = reason;
  }
}

}  // namespace kavel::lidar
