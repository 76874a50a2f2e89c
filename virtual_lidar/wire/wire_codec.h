#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "wire/message.h"

/// The device's side of one framing: finds requests in what a client sent, and frames the answers.
/// One object a link, because half a frame may be waiting in it.
class WireCodec {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;
  /// A client that stops in the middle of a frame for this long has given it up; what follows is
  /// read as the start of a new frame.
  static constexpr std::chrono::milliseconds kHalfFrameLife{1000};

  virtual ~WireCodec() = default;

  /// Takes received bytes and returns the requests that they complete, in order. Bytes that belong
  /// to no frame are skipped. Never throws for bad input, and never holds more than the longest
  /// frame and what came with it.
  std::vector<DeviceRequest> Feed(const uint8_t* data, size_t size, TimePoint now) {
    if (now - last_byte_ > kHalfFrameLife) {
      Forget();
    }
    last_byte_ = now;
    return Collect(data, size);
  }

  /// Frames one answer.
  virtual std::vector<uint8_t> Encode(const DeviceReply& reply) const = 0;
  /// Frames one answer as a version of the protocol does that this line does not speak.
  virtual std::vector<uint8_t> EncodeForeign(const DeviceReply& reply) const = 0;
  /// How many bytes of a framed answer stand in front of its payload.
  virtual size_t HeaderSize(const std::vector<uint8_t>& frame) const = 0;
  /// Makes a framed answer unrecognisable by flipping bits of one byte.
  virtual void Damage(std::vector<uint8_t>* frame) const = 0;
  /// Makes a framed answer announce more payload than it holds.
  virtual void OverstateLength(std::vector<uint8_t>* frame) const = 0;

 protected:
  virtual std::vector<DeviceRequest> Collect(const uint8_t* data, size_t size) = 0;
  /// Drops the frame that has begun.
  virtual void Forget() = 0;

 private:
  TimePoint last_byte_;
};
