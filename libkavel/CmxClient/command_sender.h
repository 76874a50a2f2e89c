#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

namespace kavel::lidar {

/// Why an exchange failed. A positive code is the lidar's own return code; 0 for an exchange that
/// failed means that the lidar answered with another command and return code 0.
constexpr int32_t kNotConnected = -1;  ///< the client is not open; nothing was sent
constexpr int32_t kNoReply = -2;       ///< no header within the receive time-out, or the link broke
constexpr int32_t kReplyBrokeOff = -3;   ///< the payload did not arrive in full
constexpr int32_t kSendIncomplete = -4;  ///< the frame could not be sent whole
constexpr int32_t kAuthRefused = -5;     ///< refused before sending: the lidar wants authentication
constexpr int32_t kBadReply = -6;        ///< the reply's payload has an unexpected length
constexpr int32_t kBadArgument = -7;     ///< the caller's value is out of range; nothing was sent

/// Whether a command that failed so may have been carried out all the same: it was sent whole, and
/// no sound answer says what became of it.
constexpr bool MayBeCarriedOut(int32_t error) {
  return error == 0 || error == kNoReply || error == kReplyBrokeOff || error == kBadReply;
}

/// How far a long answer has come, and whether anybody still wants it. Any thread.
struct ReplyProgress {
  std::atomic<uint32_t> announced{0};  ///< bytes of the payload; 0 until its header has come
  std::atomic<uint32_t> received{0};
  /// Set it, and the exchange ends with kReplyBrokeOff as soon as it has received something, and
  /// after one receive time-out in any case.
  std::atomic<bool> unwanted{false};
};

/// One command to the lidar and its answer. Everything that talks to a lidar does so through this
/// interface, so that authentication or a recording can stand in between.
class CommandSender {
 public:
  virtual ~CommandSender() = default;

  /// True while commands can be sent. Any thread.
  virtual bool IsOpen() = 0;

  /// Sends `payload` under the command code `cmd` and waits for the answer.
  ///
  /// Returns 0 when the lidar accepted, -1 otherwise. On success `result` holds the answer's
  /// payload, preceded by the frame's header if `with_header`; an empty payload without header
  /// leaves `result` as it was. On failure `result` is left as it was, except that a refused answer
  /// with `with_header` leaves its header there.
  /// `*error` (may be null) is the reason of this very exchange, whatever other threads do with the
  /// same sender: 0 on success, else one of the codes above. Test the returned value for success,
  /// not `*error`: see the meaning of 0 above.
  /// Any thread; exchanges of several threads follow one another.
  virtual int32_t QueryCommand(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result,
                               uint8_t cmd, bool with_header, int32_t* error) = 0;

  int32_t QueryCommand(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result,
                       uint8_t cmd, bool with_header) {
    return QueryCommand(payload, result, cmd, with_header, nullptr);
  }

  /// As `QueryCommand` without the header, kept out of what shows the bytes of exchanges to the
  /// user: for periodic checks, which would flood it.
  virtual int32_t QueryQuietly(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result,
                               uint8_t cmd, int32_t* error) {
    return QueryCommand(payload, result, cmd, false, error);
  }

  /// As `QueryQuietly`, with `timeout_ms` (not 0) for sending and for the answer in the place of
  /// the sender's own time-outs, for this exchange alone: a lidar takes its time over some
  /// commands. A sender that has no time-outs ignores it.
  virtual int32_t QueryWithin(uint32_t /*timeout_ms*/, const std::vector<uint8_t>& payload,
                              std::vector<uint8_t>& result, uint8_t cmd, int32_t* error) {
    return QueryQuietly(payload, result, cmd, error);
  }

  /// As `QueryQuietly`, for an answer that may be long: what came of it is told while it comes.
  /// Where the line hands an answer over as a whole, `progress` is not touched.
  virtual int32_t QueryLong(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result,
                            uint8_t cmd, ReplyProgress& /*progress*/, int32_t* error) {
    return QueryQuietly(payload, result, cmd, error);
  }
};

}  // namespace kavel::lidar
