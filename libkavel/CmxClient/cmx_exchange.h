#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "CmxClient/byte_sink.h"
#include "CmxClient/client_base.h"
#include "CmxClient/command_sender.h"
#include "CmxClient/last_answer.h"
#include "CmxClient/owed_answers.h"
#include "CmxClient/stale_input.h"
#include "Wire/cmx_header.h"

namespace kavel::lidar {

/// One command and its answer over a byte transport: framing, time limits, and keeping the answers
/// apart.
///
/// The frames carry no number, so an answer that comes after its command was given up looks like
/// the answer to the next command with the same code. The stream keeps the order, though: once a
/// command that was sent later has its answer, everything before it has arrived or never will. With
/// `StaleInput::kAfterTrouble` a liveness command therefore goes ahead of the first command after
/// an exchange that ended without its answer, with another command's, or amid stray bytes, and what
/// comes before its answer is dropped. Where an answer to an earlier liveness command may still
/// come, the one that came may be that, and it is sent again, see `OwedAnswers`. When it gets none
/// within one receive time-out, the command is not sent and fails with `kSendIncomplete`: nobody
/// may take it for carried out. Further answers to liveness commands are passed over while another
/// command's is awaited. A command with the liveness command's code and a payload fails so, too, as
/// long as any of them is owed. An answer that is byte for byte the one before, though another
/// request was sent, may be a second copy of that one: the line is listened to for 50 ms more, and
/// an answer behind it, a refusal too, counts in its place.
///
/// One thread at a time, the two settings excepted, which any thread may change at any time.
class CmxExchange {
 public:
  using Clock = std::chrono::steady_clock;
  using Now = std::function<Clock::time_point()>;
  struct Timeouts {
    uint32_t recv_ms;
    uint32_t send_ms;
  };
  struct Outcome {
    bool accepted = false;
    int32_t error = 0;            ///< 0 or a reason, see command_sender.h
    std::vector<uint8_t> header;  ///< of the answer, also of one that refused
    std::vector<uint8_t> payload;
  };

  /// Longer payloads are refused when their header announces them.
  static constexpr uint32_t kMaxPayload = 64 * 1024 * 1024;

  /// `transport` may be null as long as nothing is run. With a protocol version other than 1 and 2
  /// every exchange fails with `kSendIncomplete`.
  CmxExchange(std::shared_ptr<ClientBase> transport, uint8_t protocol_version, Timeouts timeouts,
              Now now = Clock::now);

  /// Puts the time-outs in force.
  void UseTimeouts(Timeouts timeouts);
  Timeouts timeouts() const { return in_force_; }

  /// From the next exchange on; `kAlways` until then.
  void SetStaleInput(StaleInput mode) { stale_input_ = mode; }

  /// The command, without payload, that this lidar is known to answer. Until it is set, nothing
  /// goes ahead of a command.
  void SetLivenessCommand(uint8_t cmd) { liveness_ = cmd; }

  /// Runs one exchange. `sink` (may be null) is told of the frame that leaves; the transport tells
  /// it instead, of the answer too, when it takes it: see `told_by_transport`.
  ///
  /// The header has one receive time-out to arrive, however many other bytes come before it, and
  /// the payload from then on a receive time-out and one second for each 64 KiB announced; silence
  /// for a receive time-out ends the exchange as well. Memory grows with what arrives. Throws
  /// std::bad_alloc alone, and can be used on after it.
  /// `progress` (may be null) follows the answer's payload.
  Outcome Run(uint8_t cmd, const std::vector<uint8_t>& payload, ByteSink* sink,
              ReplyProgress* progress = nullptr);

  /// Whether the transport tells the sink of the last `Run` itself.
  bool told_by_transport() const { return told_by_transport_; }

 private:
  static constexpr int kNoLiveness = -1;

  bool CanBeFramed(const std::vector<uint8_t>& payload) const;
  bool IsLiveness(uint8_t cmd) const { return cmd == liveness_; }
  OwedAnswers::Kind KindOf(uint8_t cmd, const std::vector<uint8_t>& payload) const;
  bool Send(OwedAnswers::Kind kind, std::vector<uint8_t>& frame);

  bool ClearTheLine(OwedAnswers::Kind kind, bool expect_late);
  bool DropWaitingInput();
  void DrainUntilSilent(uint32_t limit_ms);
  bool FenceOff();
  void LookThrough(const uint8_t* data, int32_t size);

  void Receive(uint8_t cmd, OwedAnswers::Kind kind, Outcome& outcome);
  bool TakeAnswer(Outcome& outcome);
  void LookBehindCopy(uint8_t cmd, Outcome& outcome);
  bool ReceiveHeader(uint8_t cmd, std::vector<uint8_t>& header, bool& has_stray_bytes);
  bool FindHeader(Clock::time_point deadline, std::vector<uint8_t>& header, bool& has_stray_bytes);
  bool PassOver(uint8_t cmd, const std::vector<uint8_t>& header, Clock::time_point deadline);
  bool IsAnswerTo(uint8_t cmd, const std::vector<uint8_t>& header) const;
  uint32_t PayloadLengthIn(const std::vector<uint8_t>& header) const;
  bool ReceivePayload(std::vector<uint8_t>& payload, uint32_t length, Clock::time_point deadline,
                      ReplyProgress* progress);
  int32_t ReceiveBy(Clock::time_point deadline, uint8_t* buffer, size_t size);
  void ArmReceiveTimeout(uint32_t ms);

  const std::shared_ptr<ClientBase> transport_;
  const uint8_t protocol_version_;
  const CmxHeaderLayout* const layout_;
  const Now now_;
  Timeouts in_force_;
  uint32_t armed_recv_ms_;  ///< what the transport waits now; shorter than in force near a deadline
  std::atomic<StaleInput> stale_input_{StaleInput::kAlways};
  std::atomic<int> liveness_{kNoLiveness};
  bool told_by_transport_ = false;
  ReplyProgress* progress_ = nullptr;  ///< of the exchange that runs

  bool silent_ = true;  ///< the last exchange found no answer, or there was none yet
  OwedAnswers owed_;
  LastAnswer last_answer_;
};

}  // namespace kavel::lidar
